#include "UI/DatabaseTree/Columns/MSSQLDatabaseTreeEntryDatabaseTableColumn.h"

#include "Catalog/MSSQLObjectProperties.h"
#include "Scripts/MSSQLScriptDropColumnInTableQueryLoader.h"
#include "Scripts/MSSQLScriptSubject.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabaseTable.h"

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
    KNMenu menu;
    if (!belongsToView()) // sp_rename refuses those
        menu.items.push_back(actionItem("Rename column", "renameColumn:", shared_from_this()));
    menu.items.push_back(scriptAsMenuItem({{"DROP to", column.script<MSSQLScriptDropColumnInTableQueryLoader>(
                                                           m_columnName, m_tableName, m_schema)}}));
    return menu;
}

bool MSSQLDatabaseTreeEntryDatabaseTableColumn::belongsToView() const
{
    const auto section = parent();
    const auto table =
        std::dynamic_pointer_cast<MSSQLDatabaseTreeEntryDatabaseTable>(section ? section->parent() : nullptr);
    return table && table->isView();
}

KNObjectPropertiesLoader MSSQLDatabaseTreeEntryDatabaseTableColumn::propertiesLoader() const
{
    return MSSQLObjectProperties::loader(databaseConnectionDetails(), "Properties_Column",
                                         {{QStringLiteral("SCHEMA"), m_schema},
                                          {QStringLiteral("OBJECT"), m_tableName},
                                          {QStringLiteral("COLUMN"), m_columnName}});
}
