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
    /// programming error. `report` may be null.
    /// Blocks on the server.
    static QString creationQueryForFunction(const QString &function, const VantorDBC &withConnectionDetails,
                                            KNQueryReport *report = nullptr);

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;

private:
    QString m_targetFunction;
};
