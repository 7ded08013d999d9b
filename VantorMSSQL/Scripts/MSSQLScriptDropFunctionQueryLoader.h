#pragma once

#include "QueryLoader/KNQueryLoader.h"

/// The statement that drops a function. Names are not escaped. Delivers on the caller's thread.
class MSSQLScriptDropFunctionQueryLoader : public KNQueryLoader
{
public:
    MSSQLScriptDropFunctionQueryLoader(const QString &function, const QString &inSchema)
        : m_targetFunction(function)
        , m_targetSchema(inSchema)
    {
    }

    const QString &targetFunction() const { return m_targetFunction; }
    const QString &targetSchema() const { return m_targetSchema; }

    void beginLoadingQuery(const VantorDBC &details) override;

private:
    QString m_targetFunction;
    QString m_targetSchema;
};
