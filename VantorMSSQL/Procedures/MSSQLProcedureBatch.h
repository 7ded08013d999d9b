#pragma once

#include "Procedures/MSSQLStoredProcedureParameter.h"
#include "QueryLoader/KNStatementPair.h"

#include <QCoreApplication>
#include <QList>

/// The batch that executes a procedure and selects its return value and output parameters. Pure; any thread.
class MSSQLProcedureBatch
{
    Q_DECLARE_TR_FUNCTIONS(MSSQLProcedureBatch)

public:
    /// Names without quotes.
    MSSQLProcedureBatch(const QString &schema, const QString &procedure,
                        QList<MSSQLStoredProcedureParameter> parameters);

    /// Both forms leave out parameters without a value, so that the procedure's defaults apply. The exact
    /// batch passes no parameter as OUTPUT and does not escape values; the corrected one does both.
    KNStatementPair generatedQuery() const;

    /// Whether a server reads the name as that of a parameter.
    static bool isParameterName(const QString &name);

private:
    QString exact() const;
    QString corrected() const;
    QString difference() const;
    QString returnVariable() const;

    const QString m_schema;
    const QString m_procedure;
    const QList<MSSQLStoredProcedureParameter> m_parameters;
};
