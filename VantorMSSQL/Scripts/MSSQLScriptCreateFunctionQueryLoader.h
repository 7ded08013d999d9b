#pragma once

#include "Scripts/MSSQLScriptQueryLoader.h"

/// The CREATE script of a function, which is named by schema, a dot and its name, not escaped.
class MSSQLScriptCreateFunctionQueryLoader : public MSSQLScriptQueryLoader
{
public:
    explicit MSSQLScriptCreateFunctionQueryLoader(const QString &function)
        : m_targetFunction(function)
    {
    }

    const QString &targetFunction() const { return m_targetFunction; }

    /// The script, or a comment when there is none; what fails is reported. A name without a dot is a
    /// programming error. Blocks on the server.
    static QString creationQueryForFunction(const QString &function, const VantorDBC &withConnectionDetails);

protected:
    QString script(const VantorDBC &details) const override;

private:
    QString m_targetFunction;
};
