#include "UI/DatabaseTree/Triggers/MSSQLDatabaseTreeEntryTableTrigger.h"

#include "Foundation/KNAssert.h"
#include "Foundation/KNFormat.h"
#include "QueryLoader/StaticQueryLoader.h"
#include "Scripts/MSSQLCorrectedStatements.h"
#include "Scripts/MSSQLModuleHeader.h"
#include "Scripts/MSSQLScriptSubject.h"
#include "UI/DatabaseTree/MSSQLTreeCatalog.h"

MSSQLDatabaseTreeEntryTableTrigger::MSSQLDatabaseTreeEntryTableTrigger(const QString &schema,
                                                                       const QString &triggerName)
    : m_schema(schema)
    , m_triggerName(triggerName)
{
    setDisplayName(triggerName);
}

void MSSQLDatabaseTreeEntryTableTrigger::setTriggerSQL(const QString &triggerSQL)
{
    KNAssert(!m_triggerName.isNull(), "Trigger name must be set before the SQL can be set.",
             "UI/DatabaseTree/Triggers/MSSQLDatabaseTreeEntryTableTrigger");
    m_triggerSQL = triggerSQL;
    m_alterTriggerSQL = triggerSQL;
    const QLatin1String create("CREATE");
    if (const qsizetype at = triggerSQL.indexOf(create, 0, Qt::CaseInsensitive); at >= 0)
        m_alterTriggerSQL.replace(at, create.size(), QLatin1String("ALTER"));
    m_dropTriggerSQL = KNFormat("DROP TRIGGER %@\r\nGO", m_triggerName);
    m_dropAndCreateTriggerSQL = KNFormat("%@\r\n\r\n%@\r\nGO", m_dropTriggerSQL, m_triggerSQL);
}

KNMenu MSSQLDatabaseTreeEntryTableTrigger::menu()
{
    return {QStringLiteral("Test"),
            {newQueryMenuItem(),
             actionItem("New trigger", "addQueryTab:", MSSQLTreeCatalog::text(*this, "NewTrigger")),
             actionItem("Modify", "addQueryTabWithQueryLoader:", alterScript()), createScriptAsMenu()}};
}

KNMenuItem MSSQLDatabaseTreeEntryTableTrigger::createScriptAsMenu() const
{
    const qsizetype drop = m_dropTriggerSQL.size() + qsizetype(qstrlen("\r\n\r\n"));
    return scriptAsMenuItem(
        {{"CREATE to", script(m_triggerSQL, definitionReport())},
         {"ALTER to", alterScript()},
         {"DROP to", script(m_dropTriggerSQL, {})},
         {"DROP and CREATE to", script(m_dropAndCreateTriggerSQL, definitionReport(drop))}});
}

KNQueryLoaderPtr MSSQLDatabaseTreeEntryTableTrigger::script(const QString &text,
                                                            const KNQueryReport &report) const
{
    const MSSQLScriptSubject trigger{QStringLiteral("TRIGGER"), m_schema, m_triggerName,
                                     databaseConnectionDetails()};
    return trigger.script<StaticQueryLoader>(text, report);
}

KNQueryLoaderPtr MSSQLDatabaseTreeEntryTableTrigger::alterScript() const
{
    KNQueryReport report = definitionReport();
    const auto header = MSSQLModuleHeader::ofDefinition(m_alterTriggerSQL);
    if (header && header->verb != QLatin1String("ALTER")) {
        // The first CREATE may be in a comment before the statement.
        if (MSSQLCorrectedStatements::areUsed())
            return script(MSSQLModuleHeader::altering(m_triggerSQL), report);
        report.notices.append(QStringLiteral(
            "The statement below still creates the trigger: the word CREATE was replaced in a comment before "
            "it."));
    }
    return script(m_alterTriggerSQL, report);
}

KNQueryReport MSSQLDatabaseTreeEntryTableTrigger::definitionReport(qsizetype drop) const
{
    KNQueryReport report;
    if (MSSQLModuleHeader::ofDefinition(m_triggerSQL))
        return report;
    report.failure =
        KNError(QStringLiteral("mssqsql.databaseTree.loadTriggers"), 0,
                KNFormat("The definition of trigger %@.%@ is encrypted or may not be seen by this login.",
                         m_schema, m_triggerName));
    report.unsafeLength = drop;
    return report;
}

KNObjectPropertiesLoader MSSQLDatabaseTreeEntryTableTrigger::propertiesLoader() const
{
    return MSSQLTreeCatalog::objectProperties(*this, m_schema, m_triggerName);
}
