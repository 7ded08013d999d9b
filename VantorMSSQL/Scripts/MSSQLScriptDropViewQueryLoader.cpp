#include "Scripts/MSSQLScriptDropViewQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLQuoting.h"

void MSSQLScriptDropViewQueryLoader::beginLoadingQuery(const VantorDBC &)
{
    deliver(KNFormat("DROP VIEW %@.%@", MSSQLQuoting::escapeTableNameIfRequired(m_targetSchema),
                     MSSQLQuoting::escapeTableNameIfRequired(m_targetViewName)));
}
