#include "Scripts/MSSQLScriptDropTypeQueryLoader.h"

#include "Foundation/KNFormat.h"

void MSSQLScriptDropTypeQueryLoader::beginLoadingQuery(const VantorDBC &)
{
    deliver(KNFormat("DROP TYPE %@.%@\r\nGO", m_targetSchema, m_targetType));
}
