#include "Scripts/MSSQLScriptDropFunctionQueryLoader.h"

#include "Foundation/KNFormat.h"

void MSSQLScriptDropFunctionQueryLoader::beginLoadingQuery(const VantorDBC &)
{
    deliver(KNFormat("DROP FUNCTION %@.%@", m_targetSchema, m_targetFunction));
}
