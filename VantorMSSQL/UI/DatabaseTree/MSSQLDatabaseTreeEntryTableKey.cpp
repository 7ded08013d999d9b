#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryTableKey.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "QueryLoader/StaticQueryLoader.h"
#include "UI/DatabaseTree/MSSQLTreeCatalog.h"

MSSQLDatabaseTreeEntryTableKey::MSSQLDatabaseTreeEntryTableKey(const QString &schema,
                                                               const QString &tableName,
                                                               const QString &keyName, bool isPrimaryKey)
    : m_schema(schema)
    , m_tableName(tableName)
    , m_isPrimaryKey(isPrimaryKey)
{
    setDisplayName(keyName);
}

QString MSSQLDatabaseTreeEntryTableKey::image() const
{
    return m_isPrimaryKey ? QStringLiteral("DatabaseTree-PK") : QStringLiteral("DatabaseTree-Column");
}

KNObjectPropertiesLoader MSSQLDatabaseTreeEntryTableKey::propertiesLoader() const
{
    return MSSQLTreeCatalog::objectProperties(*this, m_schema, displayName());
}

KNMenu MSSQLDatabaseTreeEntryTableKey::additionalMenu()
{
    const QString drop =
        KNFormat("ALTER TABLE %@ DROP CONSTRAINT %@;\r\n", MSSQLObjectPath::quoted({m_schema, m_tableName}),
                 MSSQLObjectPath::quoted({displayName()}));
    return {{},
            {actionItem("Rename key", "renameKey:", shared_from_this()),
             scriptAsMenuItem({{"DROP to", std::make_shared<StaticQueryLoader>(drop)}})}};
}
