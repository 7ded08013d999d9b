#pragma once

#include "Procedures/MSSQLStoredProcedureParameter.h"

#include <QList>

#include <functional>

/// Keeps the values with which procedures were executed last in the user's store of secret texts, for each
/// connection. On the main thread.
class MSSQLProcedureValues
{
public:
    static constexpr qsizetype MostProcedures = 50; ///< of one connection; the oldest is forgotten
    static constexpr qsizetype LongestValue = 4000; ///< UTF-16 units; longer ones are not kept

    /// `procedure` is the quoted path with its database.
    MSSQLProcedureValues(const VantorDBC &details, const QString &schema, const QString &procedure);

    using Parameters = QList<MSSQLStoredProcedureParameter>;
    /// Passes on the parameters with the values of the last execution, where there are some. `use` is called
    /// once, possibly before this returns.
    void restore(Parameters parameters, std::function<void(const Parameters &parameters)> use) const;
    /// Keeps the values, except those of parameters that are named like passwords.
    void keep(const Parameters &parameters) const;
    /// Removes the values of all procedures of a connection.
    static void forget(const QString &connectionId);

private:
    const QString m_key;
    const QString m_procedure;
};
