#include "UI/DatabaseTree/Columns/MSSQLDatabaseTreeEntryDatabaseTableColumn.h"

MSSQLDatabaseTreeEntryDatabaseTableColumn::MSSQLDatabaseTreeEntryDatabaseTableColumn(
    const QString &schema, const QString &tableName, const QString &columnName)
    : m_schema(schema)
    , m_tableName(tableName)
    , m_columnName(columnName)
{
    setDisplayName(columnName);
}

QString MSSQLDatabaseTreeEntryDatabaseTableColumn::image() const
{
    return m_isPrimaryKey ? QStringLiteral("DatabaseTree-PK") : QStringLiteral("DatabaseTree-Column");
}

KNMenu MSSQLDatabaseTreeEntryDatabaseTableColumn::menu()
{
    return {QStringLiteral("Root"), {actionItem("Drop column", "confirmDropColumn:", shared_from_this())}};
}
