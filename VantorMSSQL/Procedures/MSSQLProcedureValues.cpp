#include "Procedures/MSSQLProcedureValues.h"

#include "Foundation/KNFormat.h"
#include "Foundation/KNKeyValueStore.h"
#include "Implementations/MSSQLObjectPath.h"
#include "SQL/KNSQLSecrets.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

const QString ProcedureKey = QStringLiteral("procedure");
const QString ParametersKey = QStringLiteral("parameters");
const QString ValueKey = QStringLiteral("value");
const QString NullKey = QStringLiteral("null");

QString keyOf(const QString &connectionId)
{
    return KNFormat("MSSQLProcedureValues %@", connectionId);
}

QJsonArray storedExecutions(const QString &stored)
{
    return QJsonDocument::fromJson(stored.toUtf8()).array();
}

QJsonObject valuesOf(const MSSQLProcedureValues::Parameters &parameters)
{
    QJsonObject values;
    for (const MSSQLStoredProcedureParameter &parameter : parameters) {
        if (parameter.isLeftOut() || parameter.parameterValue.size() > MSSQLProcedureValues::LongestValue ||
            KNSQLIsSecretVariable(parameter.parameterName))
            continue;
        values.insert(parameter.parameterName,
                      QJsonObject{{NullKey, parameter.passNull}, {ValueKey, parameter.parameterValue}});
    }
    return values;
}

/// The list with these values of a procedure at its front.
QString withExecution(const QString &stored, const QString &procedure, const QJsonObject &values)
{
    QJsonArray list = {QJsonObject{{ProcedureKey, procedure}, {ParametersKey, values}}};
    for (const QJsonValue &old : storedExecutions(stored)) {
        if (old[ProcedureKey].toString() != procedure && list.size() < MSSQLProcedureValues::MostProcedures)
            list.append(old);
    }
    return QString::fromUtf8(QJsonDocument(list).toJson(QJsonDocument::Compact));
}

} // namespace

MSSQLProcedureValues::MSSQLProcedureValues(const VantorDBC &details, const QString &schema,
                                           const QString &procedure)
    : m_key(keyOf(details.connectionId()))
    , m_procedure(MSSQLObjectPath::quoted({details.database(), schema, procedure}))
{
}

void MSSQLProcedureValues::restore(Parameters parameters,
                                   std::function<void(const Parameters &parameters)> use) const
{
    KNKeyValueStore::shared()->textForKey(
        m_key, [parameters = std::move(parameters), procedure = m_procedure,
                use = std::move(use)](const QString &stored, const KNError &) mutable {
            QJsonObject values;
            for (const QJsonValue &execution : storedExecutions(stored)) {
                if (execution[ProcedureKey].toString() == procedure)
                    values = execution[ParametersKey].toObject();
            }
            for (MSSQLStoredProcedureParameter &parameter : parameters) {
                const QJsonValue value = values.value(parameter.parameterName);
                if (!parameter.isSettable() || !value.isObject())
                    continue;
                parameter.passNull = value[NullKey].toBool();
                parameter.parameterValue = value[ValueKey].toString(QStringLiteral(""));
            }
            use(parameters);
        });
}

void MSSQLProcedureValues::keep(const Parameters &parameters) const
{
    const QJsonObject values = valuesOf(parameters);
    KNKeyValueStore::shared()->changeText(
        m_key,
        [procedure = m_procedure, values](const QString &stored) {
            return withExecution(stored, procedure, values);
        },
        [](const QString &, const KNError &) {}); // the values are a convenience
}

void MSSQLProcedureValues::forget(const QString &connectionId)
{
    KNKeyValueStore::shared()->removeKey(keyOf(connectionId), [](const KNError &) {});
}
