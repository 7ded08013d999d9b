#include "Scripts/MSSQLScriptDropIndexQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLClient.h"

void MSSQLScriptDropIndexQueryLoader::beginLoadingQuery(const VantorDBC &)
{
    deliver(KNFormat("DROP INDEX %@.%@.%@", MSSQLClient::escapeTableNameIfRequired(m_schema),
                     MSSQLClient::escapeTableNameIfRequired(m_tableName),
                     MSSQLClient::escapeTableNameIfRequired(m_indexName)));
}
