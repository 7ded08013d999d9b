#include "Scripts/MSSQLScriptDropColumnInTableQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLQuoting.h"

void MSSQLScriptDropColumnInTableQueryLoader::beginLoadingQuery(const VantorDBC &)
{
    deliver(KNFormat("ALTER TABLE %@.%@ DROP COLUMN %@",
                     MSSQLQuoting::escapeTableNameIfRequired(m_targetSchema),
                     MSSQLQuoting::escapeTableNameIfRequired(m_targetTableName),
                     MSSQLQuoting::escapeTableNameIfRequired(m_targetColumnName)));
}
