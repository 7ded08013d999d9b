#include "Scripts/MSSQLScriptDropColumnInTableQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLClient.h"

void MSSQLScriptDropColumnInTableQueryLoader::beginLoadingQuery(const VantorDBC &)
{
    deliver(KNFormat("ALTER TABLE %@.%@ DROP COLUMN %@",
                     MSSQLClient::escapeTableNameIfRequired(m_targetSchema),
                     MSSQLClient::escapeTableNameIfRequired(m_targetTableName),
                     MSSQLClient::escapeTableNameIfRequired(m_targetColumnName)));
}
