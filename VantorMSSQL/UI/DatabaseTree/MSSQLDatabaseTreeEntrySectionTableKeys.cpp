#include "UI/DatabaseTree/MSSQLDatabaseTreeEntrySectionTableKeys.h"

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
    auto key = make<KNDatabaseTreeEntry>();
    key->setDisplayName(record.keyName);
    key->setImage(record.isPrimaryKey ? QStringLiteral("DatabaseTree-PK")
                                      : QStringLiteral("DatabaseTree-Column"));
    return key;
}
