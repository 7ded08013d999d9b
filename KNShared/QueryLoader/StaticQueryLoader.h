#pragma once

#include "QueryLoader/KNQueryLoader.h"

/// A loader with a fixed text and report.
class KNSHARED_EXPORT StaticQueryLoader : public KNQueryLoader
{
public:
    explicit StaticQueryLoader(const QString &query, const KNQueryReport &report = {})
        : m_query(query)
        , m_report(report)
    {
    }

    const QString &query() const { return m_query; }
    /// Delivers the text on the caller's thread.
    void beginLoadingQuery(const VantorDBC &details) override;

private:
    const QString m_query;
    const KNQueryReport m_report;
};
