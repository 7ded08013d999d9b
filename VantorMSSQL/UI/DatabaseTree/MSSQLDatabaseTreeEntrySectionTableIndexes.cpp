#include "UI/DatabaseTree/MSSQLDatabaseTreeEntrySectionTableIndexes.h"

#include "Foundation/KNFormat.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryTableIndex.h"

MSSQLDatabaseTreeEntrySectionTableIndexes::MSSQLDatabaseTreeEntrySectionTableIndexes(const QString &schema,
                                                                                     const QString &tableName,
                                                                                     bool isView)
    : MSSQLCatalogSection({
          .errorDomain = "mssqsql.databaseTree.loadIndexes",
          .retry = Retry::OnError,
          .protocol = {.finishes = Finishes::OnMainQueue},
      })
    , m_schema(schema)
    , m_tableName(tableName)
    , m_isView(isView)
{
}

KNMenu MSSQLDatabaseTreeEntrySectionTableIndexes::menu()
{
    return {QStringLiteral("Root"), {refreshMenuItem()}};
}

QString MSSQLDatabaseTreeEntrySectionTableIndexes::catalogQuery()
{
    return MSSQLTreeCatalog::text(*this, m_isView ? "List_IndexesForView" : "List_IndexesForTable",
                                  {{QStringLiteral("TABLE_NAME"), KNFormat("%@.%@", m_schema, m_tableName)},
                                   {QStringLiteral("SCHEMA"), m_schema},
                                   {QStringLiteral("TABLE"), m_tableName}});
}

KNDatabaseTreeEntry::Ptr MSSQLDatabaseTreeEntrySectionTableIndexes::entryForRow(const DatabaseResultSet &row)
{
    const QString name = row.stringForColumnIndex(0);
    return name.isNull() ? nullptr : make<MSSQLDatabaseTreeEntryTableIndex>(m_schema, m_tableName, name);
}
