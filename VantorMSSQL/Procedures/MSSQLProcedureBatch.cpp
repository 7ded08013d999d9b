#include "Procedures/MSSQLProcedureBatch.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "Implementations/MSSQLQuoting.h"
#include "TableDesign/MSSQLStatementCaution.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

using Parameter = MSSQLStoredProcedureParameter;

const QString CrLf = QStringLiteral("\r\n");

/// The parts of a batch, which both of its forms put together in one way.
struct BatchParts
{
    QStringList declarations;
    QStringList assignments;
    QStringList arguments;
    QStringList outputs;

    QString joined(const QString &returnVariable, const QString &procedure) const
    {
        QString batch = KNFormat("DECLARE %@ int", returnVariable) + CrLf;
        batch += declarations.join(CrLf) + CrLf + CrLf;
        if (!assignments.isEmpty())
            batch += assignments.join(CrLf) + CrLf + CrLf;
        batch += KNFormat("EXEC %@ =\r\n\t%@\r\n", returnVariable, procedure);
        if (!arguments.isEmpty())
            batch += arguments.join(QLatin1Char(',') + CrLf) + CrLf;
        batch += CrLf + KNFormat("SELECT\r\n\t'Return Value' = %@", returnVariable);
        if (!outputs.isEmpty())
            batch += KNFormat(",\r\n\t%@", outputs.join(QStringLiteral(",\r\n\t")));
        return batch;
    }
};

QString exactValue(const Parameter &parameter)
{
    if (parameter.passNull)
        return QStringLiteral("NULL");
    return parameter.parameterType.contains(QLatin1String("char"), Qt::CaseInsensitive)
               ? KNFormat("'%@'", parameter.parameterValue)
               : parameter.parameterValue;
}

/// The value as a literal of the parameter's type. A text that is no such value is left to the server, which
/// converts it or refuses it.
QString correctedValue(const Parameter &parameter)
{
    if (parameter.passNull)
        return QStringLiteral("NULL");
    QString problem;
    const auto value = KNTypedValue::read(parameter.parameterValue, parameter.input(), &problem);
    return MSSQLQuoting::literal(value.value_or(KNValue(parameter.parameterValue)));
}

/// Local variables cannot have the old types of long values; their successors are converted.
QString declaredType(const Parameter &parameter)
{
    if (parameter.baseType == QLatin1String("text"))
        return QStringLiteral("varchar(max)");
    if (parameter.baseType == QLatin1String("ntext"))
        return QStringLiteral("nvarchar(max)");
    if (parameter.baseType == QLatin1String("image"))
        return QStringLiteral("varbinary(max)");
    return parameter.parameterType;
}

} // namespace

MSSQLProcedureBatch::MSSQLProcedureBatch(const QString &schema, const QString &procedure,
                                         QList<MSSQLStoredProcedureParameter> parameters)
    : m_schema(schema)
    , m_procedure(procedure)
    , m_parameters(std::move(parameters))
{
}

bool MSSQLProcedureBatch::isParameterName(const QString &name)
{
    static const QRegularExpression pattern(QStringLiteral("^@[\\p{L}\\p{N}_@$#]+\\z"),
                                            QRegularExpression::UseUnicodePropertiesOption);
    return pattern.match(name).hasMatch();
}

KNStatementPair MSSQLProcedureBatch::generatedQuery() const
{
    return {exact(), corrected(), difference()};
}

QString MSSQLProcedureBatch::exact() const
{
    BatchParts parts;
    for (const Parameter &parameter : m_parameters) {
        if (parameter.isLeftOut())
            continue;
        const QString &name = parameter.parameterName;
        parts.declarations.append(KNFormat("DECLARE %@ %@", name, parameter.parameterType));
        parts.assignments.append(KNFormat("SELECT %@ = %@", name, exactValue(parameter)));
        parts.arguments.append(KNFormat("\t\t%@ = %@", name, name));
        if (parameter.parameterIsOutput)
            parts.outputs.append(name);
    }
    return parts.joined(QStringLiteral("@return_value"),
                        KNFormat("%@.%@", MSSQLQuoting::escapeTableNameIfRequired(m_schema),
                                 MSSQLQuoting::escapeTableNameIfRequired(m_procedure)));
}

QString MSSQLProcedureBatch::corrected() const
{
    BatchParts parts;
    for (const Parameter &parameter : m_parameters) {
        const QString &name = parameter.parameterName;
        if (!parameter.isSettable() || parameter.isLeftOut())
            continue;
        parts.declarations.append(KNFormat("DECLARE %@ %@", name, declaredType(parameter)));
        parts.assignments.append(KNFormat("SELECT %@ = %@", name, correctedValue(parameter)));
        parts.arguments.append(
            KNFormat(parameter.parameterIsOutput ? "\t\t%@ = %@ OUTPUT" : "\t\t%@ = %@", name, name));
        if (parameter.parameterIsOutput)
            parts.outputs.append(KNFormat("%@ = %@", MSSQLObjectPath::bracketed(name), name));
    }
    return parts.joined(returnVariable(), MSSQLObjectPath::quoted({m_schema, m_procedure}));
}

QString MSSQLProcedureBatch::difference() const
{
    MSSQLStatementCaution caution;
    caution.addUnlessRead(KNFormat("%@.%@", MSSQLQuoting::escapeTableNameIfRequired(m_schema),
                                   MSSQLQuoting::escapeTableNameIfRequired(m_procedure)),
                          {m_schema, m_procedure});
    for (const Parameter &parameter : m_parameters) {
        if (parameter.isSettable() && parameter.parameterIsOutput && !parameter.isLeftOut())
            caution.add(
                tr("The unchanged batch passes no parameter as OUTPUT: the values that the procedure returns "
                   "in them are not shown."));
        if (!parameter.isLeftOut() && exactValue(parameter) != correctedValue(parameter))
            caution.add(tr("The unchanged batch does not write every value as its type needs it."));
    }
    return caution.text();
}

/// A name that is none of the parameters'.
QString MSSQLProcedureBatch::returnVariable() const
{
    QString name = QStringLiteral("@return_value");
    const auto isTaken = [&](const Parameter &parameter) {
        return parameter.parameterName.compare(name, Qt::CaseInsensitive) == 0;
    };
    while (std::any_of(m_parameters.begin(), m_parameters.end(), isTaken))
        name += QLatin1Char('_');
    return name;
}
