#include "UI/DatabaseTree/Triggers/MSSQLDatabaseTreeEntryTableTrigger.h"

#include "Foundation/KNAssert.h"
#include "Foundation/KNFormat.h"
#include "QueryLoader/StaticQueryLoader.h"
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
             actionItem("Modify", "addQueryTabWithQueryLoader:",
                        std::make_shared<StaticQueryLoader>(m_alterTriggerSQL)),
             createScriptAsMenu()}};
}

KNMenuItem MSSQLDatabaseTreeEntryTableTrigger::createScriptAsMenu() const
{
    return scriptAsMenuItem(
        {{"CREATE to", std::make_shared<StaticQueryLoader>(m_triggerSQL)},
         {"ALTER to", std::make_shared<StaticQueryLoader>(m_alterTriggerSQL)},
         {"DROP to", std::make_shared<StaticQueryLoader>(m_dropTriggerSQL)},
         {"DROP and CREATE to", std::make_shared<StaticQueryLoader>(m_dropAndCreateTriggerSQL)}});
}
