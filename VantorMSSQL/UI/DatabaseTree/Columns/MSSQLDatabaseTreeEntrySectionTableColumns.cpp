#include "UI/DatabaseTree/Columns/MSSQLDatabaseTreeEntrySectionTableColumns.h"

#include "Implementations/MSSQLClient.h"
#include "UI/DatabaseTree/Columns/MSSQLDatabaseTreeEntryDatabaseTableColumn.h"

#include <QSet>

MSSQLDatabaseTreeEntrySectionTableColumns::MSSQLDatabaseTreeEntrySectionTableColumns(const QString &schema,
                                                                                     const QString &tableName)
    : MSSQLCatalogSection({
          .errorDomain = "mssqsql.databaseTree.loadColumns",
          .retry = Retry::OnError,
          .protocol = {.finishes = Finishes::OnMainQueue},
      })
    , m_schema(schema)
    , m_tableName(tableName)
{
}

QString MSSQLDatabaseTreeEntrySectionTableColumns::dragDropString() const
{
    QStringList names;
    if (const Children children = childEntries()) {
        for (const Ptr &child : *children)
            names.append(child->dragDropString());
    }
    return names.join(QStringLiteral(", "));
}

void MSSQLDatabaseTreeEntrySectionTableColumns::removeChild(const Ptr &child)
{
    removeChildOrFail(child, "Column does not exist in parent.",
                      "UI/DatabaseTree/Columns/MSSQLDatabaseTreeEntrySectionTableColumns");
}

KNMenu MSSQLDatabaseTreeEntrySectionTableColumns::menu()
{
    return {QStringLiteral("Root"), {refreshMenuItem()}};
}

QString MSSQLDatabaseTreeEntrySectionTableColumns::catalogQuery()
{
    return MSSQLTreeCatalog::text(
        *this, "ColumnsForTable",
        {{QStringLiteral("TABLE_NAME"), m_tableName}, {QStringLiteral("SCHEMA_NAME"), m_schema}});
}

void MSSQLDatabaseTreeEntrySectionTableColumns::readRows(DatabaseResultSet &rows, List *entries)
{
    QSet<QString> seen; // the first row for a column wins
    while (rows.next()) {
        const QString name = rows.stringForColumnIndex(0);
        if (seen.contains(name))
            continue;
        seen.insert(name);
        entries->push_back(entryForRow(rows));
    }
}

KNDatabaseTreeEntry::Ptr MSSQLDatabaseTreeEntrySectionTableColumns::entryForRow(const DatabaseResultSet &row)
{
    const bool isPrimaryKey = row.numberForColumnIndex(6).toInt64() == 1;
    const bool isNullable = row.numberForColumnIndex(5).toInt64() != 0;
    auto column =
        make<MSSQLDatabaseTreeEntryDatabaseTableColumn>(m_schema, m_tableName, row.stringForColumnIndex(0));
    column->setIsPrimaryKey(isPrimaryKey);
    QStringList details;
    if (isPrimaryKey)
        details.append(QStringLiteral("PK"));
    details.append(MSSQLClient::displayForColumnType(row.stringForColumnIndex(1), row.objectForColumnIndex(2),
                                                     row.objectForColumnIndex(3),
                                                     row.objectForColumnIndex(4)));
    details.append(isNullable ? QStringLiteral("null") : QStringLiteral("not null"));
    column->setDetails(details.join(QStringLiteral(", ")));
    return column;
}
