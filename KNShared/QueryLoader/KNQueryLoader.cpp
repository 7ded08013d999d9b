#include "QueryLoader/KNQueryLoader.h"

KNQueryLoaderDelegate::~KNQueryLoaderDelegate() = default;

KNQueryLoader::~KNQueryLoader() = default;

void KNQueryLoader::deliver(const QString &query)
{
    if (const auto delegate = m_delegate.lock())
        delegate->queryLoaderLoadedQuery(*this, query);
}
