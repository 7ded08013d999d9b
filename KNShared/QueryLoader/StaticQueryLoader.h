#pragma once

#include "QueryLoader/KNQueryLoader.h"

/// A loader that was given its text.
class KNSHARED_EXPORT StaticQueryLoader : public KNQueryLoader
{
public:
    explicit StaticQueryLoader(const QString &query)
        : m_query(query)
    {
    }

    const QString &query() const { return m_query; }
    /// Delivers the text on the caller's thread.
    void beginLoadingQuery(const VantorDBC &details) override;

private:
    const QString m_query;
};
