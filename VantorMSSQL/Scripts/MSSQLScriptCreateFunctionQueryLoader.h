#pragma once

#include "Scripts/MSSQLScriptQueryLoader.h"

/// The CREATE script of a function. Names are not escaped.
class MSSQLScriptCreateFunctionQueryLoader : public MSSQLScriptQueryLoader
{
public:
    /// `function` is the schema, a dot and the name; neither may contain a dot.
    explicit MSSQLScriptCreateFunctionQueryLoader(const QString &function)
        : m_targetFunction(function)
        , m_name(function.split(QLatin1Char('.')))
    {
    }
    MSSQLScriptCreateFunctionQueryLoader(const QString &function, const QString &inSchema)
        : m_targetFunction(inSchema + QLatin1Char('.') + function)
        , m_name{inSchema, function}
    {
    }

    const QString &targetFunction() const { return m_targetFunction; }

    /// The script, or a comment if there is none; errors are reported. A name without a dot is a programming
    /// error. `report` may be null. Blocks on the server.
    static QString creationQueryForFunction(const QString &function, const VantorDBC &withConnectionDetails,
                                            KNQueryReport *report = nullptr);
    /// The same for a function whose names may contain dots.
    static QString creationQueryForFunction(const QString &function, const QString &inSchema,
                                            const VantorDBC &withConnectionDetails, KNQueryReport *report);

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;

private:
    QString m_targetFunction;
    QStringList m_name; ///< schema and function
};
