#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryTableIndex.h"

#include "Catalog/MSSQLObjectProperties.h"
#include "Scripts/MSSQLScriptDropIndexQueryLoader.h"
#include "Scripts/MSSQLScriptSubject.h"

MSSQLDatabaseTreeEntryTableIndex::MSSQLDatabaseTreeEntryTableIndex(const QString &schema,
                                                                   const QString &tableName,
                                                                   const QString &indexName)
    : m_schema(schema)
    , m_tableName(tableName)
    , m_indexName(indexName)
{
    setDisplayName(indexName);
}

KNMenu MSSQLDatabaseTreeEntryTableIndex::menu()
{
    return {QStringLiteral("Root"), {actionItem("Drop index", "confirmDropIndex:", shared_from_this())}};
}

KNMenu MSSQLDatabaseTreeEntryTableIndex::additionalMenu()
{
    const MSSQLScriptSubject index{QStringLiteral("INDEX"), m_schema, m_indexName,
                                   databaseConnectionDetails(), m_tableName};
    return {{},
            {actionItem("Rename index", "renameIndex:", shared_from_this()),
             scriptAsMenuItem({{"DROP to", index.script<MSSQLScriptDropIndexQueryLoader>(
                                               m_indexName, m_tableName, m_schema)}})}};
}

KNObjectPropertiesLoader MSSQLDatabaseTreeEntryTableIndex::propertiesLoader() const
{
    return MSSQLObjectProperties::loader(databaseConnectionDetails(), "Properties_Index",
                                         {{QStringLiteral("SCHEMA"), m_schema},
                                          {QStringLiteral("OBJECT"), m_tableName},
                                          {QStringLiteral("INDEX"), m_indexName}});
}
