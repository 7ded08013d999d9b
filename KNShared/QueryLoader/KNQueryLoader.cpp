#include "QueryLoader/KNQueryLoader.h"

KNQueryLoaderDelegate::~KNQueryLoaderDelegate() = default;

KNQueryLoader::~KNQueryLoader() = default;

KNQueryReport KNQueryLoader::report() const
{
    const std::lock_guard lock(m_mutex);
    return m_report;
}

bool KNQueryLoader::writeQuery(const VantorDBC &, QIODevice &, KNQueryReport *) const
{
    return false;
}

void KNQueryLoader::deliver(QString query, KNQueryReport report)
{
    if (m_review && !query.isNull())
        m_review(&query, &report);
    {
        const std::lock_guard lock(m_mutex);
        m_report = std::move(report);
    }
    if (const auto delegate = m_delegate.lock())
        delegate->queryLoaderLoadedQuery(*this, query);
}
