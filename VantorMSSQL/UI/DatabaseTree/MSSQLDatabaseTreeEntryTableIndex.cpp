#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryTableIndex.h"

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
