#pragma once

#include "QueryLoader/KNQueryLoader.h"

/// The statement that drops a view. Delivers on the caller's thread.
class MSSQLScriptDropViewQueryLoader : public KNQueryLoader
{
public:
    MSSQLScriptDropViewQueryLoader(const QString &viewName, const QString &inSchema)
        : m_targetViewName(viewName)
        , m_targetSchema(inSchema)
    {
    }

    const QString &targetViewName() const { return m_targetViewName; }
    const QString &targetSchema() const { return m_targetSchema; }

    void beginLoadingQuery(const VantorDBC &details) override;

private:
    QString m_targetViewName;
    QString m_targetSchema;
};
