#include "Scripts/MSSQLScriptDropIndexQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLQuoting.h"

void MSSQLScriptDropIndexQueryLoader::beginLoadingQuery(const VantorDBC &)
{
    deliver(KNFormat("DROP INDEX %@.%@.%@", MSSQLQuoting::escapeTableNameIfRequired(m_schema),
                     MSSQLQuoting::escapeTableNameIfRequired(m_tableName),
                     MSSQLQuoting::escapeTableNameIfRequired(m_indexName)));
}
