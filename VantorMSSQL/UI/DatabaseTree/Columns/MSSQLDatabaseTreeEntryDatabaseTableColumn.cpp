#include "UI/DatabaseTree/Columns/MSSQLDatabaseTreeEntryDatabaseTableColumn.h"

#include "Catalog/MSSQLObjectProperties.h"
#include "Scripts/MSSQLScriptDropColumnInTableQueryLoader.h"
#include "Scripts/MSSQLScriptSubject.h"

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

KNMenu MSSQLDatabaseTreeEntryDatabaseTableColumn::additionalMenu()
{
    const MSSQLScriptSubject column{QStringLiteral("COLUMN"), m_schema, m_columnName,
                                    databaseConnectionDetails(), m_tableName};
    return {{},
            {scriptAsMenuItem({{"DROP to", column.script<MSSQLScriptDropColumnInTableQueryLoader>(
                                               m_columnName, m_tableName, m_schema)}})}};
}

KNObjectPropertiesLoader MSSQLDatabaseTreeEntryDatabaseTableColumn::propertiesLoader() const
{
    return MSSQLObjectProperties::loader(databaseConnectionDetails(), "Properties_Column",
                                         {{QStringLiteral("SCHEMA"), m_schema},
                                          {QStringLiteral("OBJECT"), m_tableName},
                                          {QStringLiteral("COLUMN"), m_columnName}});
}
