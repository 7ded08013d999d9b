#include "Scripts/MSSQLScriptDropStoredProcedureQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLClient.h"

void MSSQLScriptDropStoredProcedureQueryLoader::beginLoadingQuery(const VantorDBC &)
{
    deliver(KNFormat("DROP PROCEDURE %@",
                     MSSQLClient::escapeSchemaAndTable(m_targetSchema, m_targetStoredProcedure)));
}
