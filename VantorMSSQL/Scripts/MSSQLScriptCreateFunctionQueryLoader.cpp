#include "Scripts/MSSQLScriptCreateFunctionQueryLoader.h"

#include "Foundation/KNAssert.h"
#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLModuleScript.h"

QString MSSQLScriptCreateFunctionQueryLoader::creationQueryForFunction(const QString &function,
                                                                       const VantorDBC &withConnectionDetails,
                                                                       KNQueryReport *report)
{
    const QStringList names = function.split(QLatin1Char('.'));
    KNAssert(names.size() > 1, "A function is scripted by its schema, a dot and its name.",
             "Scripts/MSSQLScriptCreateFunctionQueryLoader");
    const MSSQLModuleScript create{
        "Function_AlterQuery",
        "FUNCTION_NAME",
        names[0],
        names[1],
        "mssql.queryLoader.createFunction",
        KNFormat("-- Failed to load creation query for function %@.%@ in database %@.", names[0], names[1],
                 withConnectionDetails.database())};
    KNQueryReport unused;
    return create.load(withConnectionDetails, report ? report : &unused);
}

QString MSSQLScriptCreateFunctionQueryLoader::script(const VantorDBC &details, KNQueryReport *report) const
{
    return creationQueryForFunction(m_targetFunction, details, report);
}
