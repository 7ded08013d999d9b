#include "UI/DatabaseTree/Triggers/MSSQLDatabaseTreeEntrySectionTableTriggers.h"

#include "Foundation/KNFormat.h"
#include "SQL/KNSQLComment.h"
#include "Scripts/MSSQLModuleHeader.h"
#include "UI/DatabaseTree/Triggers/MSSQLDatabaseTreeEntryTableTrigger.h"

MSSQLDatabaseTreeEntrySectionTableTriggers::MSSQLDatabaseTreeEntrySectionTableTriggers(
    const QString &schema, const QString &tableName)
    : MSSQLCatalogSection({
          .errorDomain = "mssqsql.databaseTree.loadTriggers",
          .retry = Retry::Never,
          .protocol = {.finishes = Finishes::OnBackgroundThread},
      })
    , m_schema(schema)
    , m_tableName(tableName)
{
}

KNMenu MSSQLDatabaseTreeEntrySectionTableTriggers::menu()
{
    return {QStringLiteral("Root"),
            {newQueryMenuItem(),
             actionItem("New trigger", "addQueryTab:", MSSQLTreeCatalog::text(*this, "NewTrigger")),
             refreshMenuItem()}};
}

QString MSSQLDatabaseTreeEntrySectionTableTriggers::catalogQuery()
{
    return MSSQLTreeCatalog::text(
        *this, "List_TriggersForTableWithDetails",
        {{QStringLiteral("TABLE_NAME"), m_tableName}, {QStringLiteral("TABLE_SCHEMA"), m_schema}});
}

KNDatabaseTreeEntry::Ptr MSSQLDatabaseTreeEntrySectionTableTriggers::entryForRow(const DatabaseResultSet &row)
{
    const QString name = row.stringForColumnIndex(0);
    auto trigger = make<MSSQLDatabaseTreeEntryTableTrigger>(m_schema, name);
    const QString text = row.stringForColumnIndex(3);
    trigger->setTriggerSQL(
        text.isNull() ? KNSQLComment::inOneLine(KNFormat("-- Failed to load trigger SQL for %@.%@.%@.",
                                                         m_schema, m_tableName, name))
                      : MSSQLModuleHeader::withCurrentName(text.trimmed(), m_schema, name));
    return trigger;
}
