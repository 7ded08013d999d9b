#include "Scripts/MSSQLScriptDropTableQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLClient.h"

void MSSQLScriptDropTableQueryLoader::beginLoadingQuery(const VantorDBC &)
{
    deliver(KNFormat("DROP TABLE %@.%@", MSSQLClient::escapeTableNameIfRequired(m_targetSchema),
                     MSSQLClient::escapeTableNameIfRequired(m_targetTableName)));
}
