#include "UI/DatabaseTree/MSSQLDatabaseTreeEntrySectionTableKeys.h"

#include "Foundation/KNFormat.h"

MSSQLDatabaseTreeEntrySectionTableKeys::MSSQLDatabaseTreeEntrySectionTableKeys(const QString &schema,
                                                                               const QString &tableName)
    : MSSQLCatalogSection({
          .errorDomain = "mssqsql.databaseTree.loadTableKeys",
          .retry = Retry::Never,
          .protocol = {.finishes = Finishes::OnMainQueue},
      })
    , m_schema(schema)
    , m_tableName(tableName)
{
}

KNMenu MSSQLDatabaseTreeEntrySectionTableKeys::menu()
{
    return {QStringLiteral("Root"), {refreshMenuItem()}};
}

QString MSSQLDatabaseTreeEntrySectionTableKeys::catalogQuery()
{
    return MSSQLTreeCatalog::text(*this, "List_KeysForTable",
                                  {{QStringLiteral("TABLE_NAME"), KNFormat("%@.%@", m_schema, m_tableName)},
                                   {QStringLiteral("SCHEMA"), m_schema},
                                   {QStringLiteral("TABLE"), m_tableName}});
}

KNDatabaseTreeEntry::Ptr MSSQLDatabaseTreeEntrySectionTableKeys::entryForRow(const DatabaseResultSet &row)
{
    auto key = make<KNDatabaseTreeEntry>();
    key->setDisplayName(row.stringForColumnIndex(0));
    key->setImage(row.numberForColumnIndex(1).toInt64() == 1 ? QStringLiteral("DatabaseTree-PK")
                                                             : QStringLiteral("DatabaseTree-Column"));
    return key;
}
