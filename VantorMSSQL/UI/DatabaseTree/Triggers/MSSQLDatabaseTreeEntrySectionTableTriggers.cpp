#include "UI/DatabaseTree/Triggers/MSSQLDatabaseTreeEntrySectionTableTriggers.h"

#include "Foundation/KNFormat.h"
#include "SQL/KNSQLComment.h"
#include "UI/DatabaseTree/Triggers/MSSQLDatabaseTreeEntryTableTrigger.h"

MSSQLDatabaseTreeEntrySectionTableTriggers::MSSQLDatabaseTreeEntrySectionTableTriggers(
    const QString &schema, const QString &tableName)
    : MSSQLRecordSection(
          {
              .errorDomain = "mssqsql.databaseTree.loadTriggers",
              .retry = Retry::Never,
              .protocol = {.finishes = Finishes::OnBackgroundThread},
          },
          schema, tableName)
{
}

KNMenu MSSQLDatabaseTreeEntrySectionTableTriggers::menu()
{
    return {QStringLiteral("Root"),
            {newQueryMenuItem(),
             actionItem("New trigger", "addQueryTab:", MSSQLTreeCatalog::text(*this, "NewTrigger")),
             refreshMenuItem()}};
}

KNDatabaseTreeEntry::Ptr MSSQLDatabaseTreeEntrySectionTableTriggers::entryFor(const MSSQLTriggerEntry &record)
{
    const QString &name = record.triggerName;
    auto trigger = make<MSSQLDatabaseTreeEntryTableTrigger>(schema(), name);
    trigger->setTriggerSQL(record.statement.isNull()
                               ? KNSQLComment::inOneLine(KNFormat(
                                     "-- Failed to load trigger SQL for %@.%@.%@.", schema(), object(), name))
                               : record.statement.trimmed());
    return trigger;
}
