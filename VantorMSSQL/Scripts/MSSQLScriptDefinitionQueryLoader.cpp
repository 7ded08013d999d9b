#include "Scripts/MSSQLScriptDefinitionQueryLoader.h"

#include "Catalog/MSSQLNamedObject.h"
#include "Catalog/MSSQLTriggerEntry.h"
#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "Scripts/MSSQLScriptCreateFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptCreateStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptCreateTableQueryLoader.h"
#include "Scripts/MSSQLScriptCreateTypeQueryLoader.h"
#include "Scripts/MSSQLScriptCreateViewQueryLoader.h"
#include "Scripts/MSSQLScriptSubject.h"

#include <QHash>

namespace {

constexpr auto DefinitionDomain = "mssql.queryLoader.definition";

/// The word for the kind of object in a statement; null for kinds without a script.
QString keywordOf(const QString &type)
{
    static const QHash<QString, QString> keywords = {
        {QStringLiteral("U"), QStringLiteral("TABLE")},
        {QStringLiteral("V"), QStringLiteral("VIEW")},
        {QStringLiteral("P"), QStringLiteral("PROCEDURE")},
        {QStringLiteral("FN"), QStringLiteral("FUNCTION")},
        {QStringLiteral("IF"), QStringLiteral("FUNCTION")},
        {QStringLiteral("TF"), QStringLiteral("FUNCTION")},
        {QStringLiteral("TR"), QStringLiteral("TRIGGER")},
        {QStringLiteral("TY"), QStringLiteral("TYPE")},
    };
    return keywords.value(type);
}

QString triggerScript(const MSSQLNamedObject &trigger, const VantorDBC &details, KNQueryReport *report)
{
    const auto triggers = MSSQLCatalogReader::records<MSSQLTriggerEntry>(
        details, trigger.parentSchema, trigger.parent, DefinitionDomain, &report->failure);
    for (const MSSQLTriggerEntry &entry : triggers) {
        if (entry.triggerName == trigger.name && !entry.statement.isNull())
            return entry.statement;
    }
    if (!report->failure)
        report->failure = KNError(QString::fromLatin1(DefinitionDomain), 0,
                                  KNFormat("The definition of the trigger %@.%@ is encrypted or may not be "
                                           "seen by this login.",
                                           trigger.schema, trigger.name));
    return {};
}

} // namespace

QString MSSQLScriptDefinitionQueryLoader::script(const VantorDBC &details, KNQueryReport *report) const
{
    const auto object = MSSQLNamedObject::find(details, m_path, &report->failure);
    if (!object)
        return {};
    if (!object->definition.isNull())
        return object->definition;
    if (!object->base.isNull())
        return KNFormat("CREATE SYNONYM %@ FOR %@\r\nGO\r\n",
                        MSSQLObjectPath::quoted({object->schema, object->name}), object->base);
    const QString keyword = keywordOf(object->type);
    if (keyword.isNull()) {
        report->failure = KNError(
            QString::fromLatin1(DefinitionDomain), 0,
            KNFormat("There is no script of %@.%@, an object of this kind.", object->schema, object->name));
        return {};
    }
    QString text = creationOf(*object, details, report);
    const MSSQLScriptSubject subject{keyword, object->schema, object->name, details.copy()};
    if (!text.isNull())
        subject.complete(&text, report);
    return text;
}

QString MSSQLScriptDefinitionQueryLoader::creationOf(const MSSQLNamedObject &object, const VantorDBC &details,
                                                     KNQueryReport *report)
{
    const QString &type = object.type;
    if (type == QLatin1String("U"))
        return MSSQLScriptCreateTableQueryLoader::creationQueryForTable(object.name, object.schema, details,
                                                                        report);
    if (type == QLatin1String("V"))
        return MSSQLScriptCreateViewQueryLoader::creationQueryForView(object.name, object.schema, details,
                                                                      report);
    if (type == QLatin1String("P"))
        return MSSQLScriptCreateStoredProcedureQueryLoader::creationQueryForStoredProcedure(
            object.name, object.schema, details, report);
    if (type == QLatin1String("TR"))
        return triggerScript(object, details, report);
    if (type == QLatin1String("TY"))
        return MSSQLScriptCreateTypeQueryLoader::creationQueryForType(object.name, object.schema, 0, details,
                                                                      report);
    return MSSQLScriptCreateFunctionQueryLoader::creationQueryForFunction(object.name, object.schema, details,
                                                                          report);
}
