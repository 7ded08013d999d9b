#include "Export/MSSQLObjectScript.h"

#include "Export/MSSQLScriptKind.h"
#include "Scripts/MSSQLScriptCreateFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptCreateStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptCreateTableQueryLoader.h"
#include "Scripts/MSSQLScriptCreateTypeQueryLoader.h"
#include "Scripts/MSSQLScriptCreateViewQueryLoader.h"
#include "Scripts/MSSQLScriptSubject.h"
#include "Scripts/MSSQLTableTypeScript.h"

namespace {

QString textFor(const KNScriptObject &object, const VantorDBC &details, KNQueryReport *report)
{
    const QString &schema = object.schema;
    const QString &name = object.name;
    if (object.hasRows)
        return MSSQLScriptCreateTableQueryLoader::creationQueryForTable(name, schema, details, report);
    if (MSSQLScriptKind::isFunction(object))
        return MSSQLScriptCreateFunctionQueryLoader::creationQueryForFunction(name, schema, details, report);
    if (MSSQLScriptKind::isProcedure(object))
        return MSSQLScriptCreateStoredProcedureQueryLoader::creationQueryForStoredProcedure(name, schema,
                                                                                            details, report);
    if (MSSQLScriptKind::isView(object))
        return MSSQLScriptCreateViewQueryLoader::creationQueryForView(name, schema, details, report);
    return MSSQLScriptCreateTypeQueryLoader::creationQueryForType(name, schema, 0, details, report);
}

} // namespace

MSSQLObjectScript MSSQLObjectScript::read(const KNScriptObject &object,
                                          const std::shared_ptr<const VantorDBC> &details, KNError *error)
{
    *error = KNError();
    if (object.kind == QLatin1String("TABLE_TYPE")) {
        const QString script = MSSQLTableTypeScript::text(*details, object.schema, object.name, error);
        return {object, MSSQLScriptBatches(script).all()};
    }
    KNQueryReport report;
    QString text = textFor(object, *details, &report);
    if (text.isNull()) {
        *error = report.failure;
        return {object, {}};
    }
    const MSSQLScriptSubject subject{MSSQLScriptKind::dropWord(object), object.schema, object.name, details};
    subject.review(&text, &report);
    return {object, MSSQLScriptBatches(report.guardedText(text)).all()};
}
