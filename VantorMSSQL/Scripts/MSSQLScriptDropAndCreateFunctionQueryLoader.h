#pragma once

#include "Scripts/MSSQLScriptQueryLoader.h"

/// Drops a function, named by schema, a dot and its name as they are, and makes it anew.
class MSSQLScriptDropAndCreateFunctionQueryLoader : public MSSQLScriptQueryLoader
{
public:
    explicit MSSQLScriptDropAndCreateFunctionQueryLoader(const QString &function)
        : m_targetFunction(function)
    {
    }

    const QString &targetFunction() const { return m_targetFunction; }

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;

private:
    QString m_targetFunction;
};
