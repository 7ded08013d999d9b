#include "Scripts/MSSQLScriptDropTableQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLQuoting.h"

void MSSQLScriptDropTableQueryLoader::beginLoadingQuery(const VantorDBC &)
{
    deliver(KNFormat("DROP TABLE %@.%@", MSSQLQuoting::escapeTableNameIfRequired(m_targetSchema),
                     MSSQLQuoting::escapeTableNameIfRequired(m_targetTableName)));
}
