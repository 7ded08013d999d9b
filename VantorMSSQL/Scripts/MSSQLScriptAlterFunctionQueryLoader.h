#pragma once

#include "Scripts/MSSQLScriptQueryLoader.h"

/// The ALTER script of a function. Names are not escaped.
class MSSQLScriptAlterFunctionQueryLoader : public MSSQLScriptQueryLoader
{
public:
    MSSQLScriptAlterFunctionQueryLoader(const QString &function, const QString &schema)
        : m_targetFunctionName(function)
        , m_targetFunctionSchema(schema)
    {
    }

    const QString &targetFunctionName() const { return m_targetFunctionName; }
    const QString &targetFunctionSchema() const { return m_targetFunctionSchema; }

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;

private:
    QString m_targetFunctionName;
    QString m_targetFunctionSchema;
};
