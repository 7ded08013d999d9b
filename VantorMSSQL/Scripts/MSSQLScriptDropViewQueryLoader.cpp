#include "Scripts/MSSQLScriptDropViewQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLClient.h"

void MSSQLScriptDropViewQueryLoader::beginLoadingQuery(const VantorDBC &)
{
    deliver(KNFormat("DROP VIEW %@.%@", MSSQLClient::escapeTableNameIfRequired(m_targetSchema),
                     MSSQLClient::escapeTableNameIfRequired(m_targetViewName)));
}
