#include "Scripts/MSSQLScriptDropStoredProcedureQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLQuoting.h"

void MSSQLScriptDropStoredProcedureQueryLoader::beginLoadingQuery(const VantorDBC &)
{
    deliver(KNFormat("DROP PROCEDURE %@",
                     MSSQLQuoting::escapeSchemaAndTable(m_targetSchema, m_targetStoredProcedure)));
}
