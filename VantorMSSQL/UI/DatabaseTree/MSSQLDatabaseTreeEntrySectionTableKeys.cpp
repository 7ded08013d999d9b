#include "UI/DatabaseTree/MSSQLDatabaseTreeEntrySectionTableKeys.h"

#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryTableKey.h"

MSSQLDatabaseTreeEntrySectionTableKeys::MSSQLDatabaseTreeEntrySectionTableKeys(const QString &schema,
                                                                               const QString &tableName)
    : MSSQLRecordSection(
          {
              .errorDomain = "mssqsql.databaseTree.loadTableKeys",
              .retry = Retry::Never,
              .protocol = {.finishes = Finishes::OnMainQueue},
          },
          schema, tableName)
{
}

KNMenu MSSQLDatabaseTreeEntrySectionTableKeys::menu()
{
    return {QStringLiteral("Root"), {refreshMenuItem()}};
}

KNDatabaseTreeEntry::Ptr MSSQLDatabaseTreeEntrySectionTableKeys::entryFor(const MSSQLKeyRecord &record)
{
    return make<MSSQLDatabaseTreeEntryTableKey>(schema(), object(), record.keyName, record.isPrimaryKey);
}
