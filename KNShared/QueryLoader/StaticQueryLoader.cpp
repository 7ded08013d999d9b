#include "QueryLoader/StaticQueryLoader.h"

void StaticQueryLoader::beginLoadingQuery(const VantorDBC &)
{
    deliver(m_query, m_report);
}
