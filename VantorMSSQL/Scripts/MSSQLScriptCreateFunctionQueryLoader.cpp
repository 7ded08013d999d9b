#include "Scripts/MSSQLScriptCreateFunctionQueryLoader.h"

#include "Foundation/KNAssert.h"
#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLModuleScript.h"

QString MSSQLScriptCreateFunctionQueryLoader::creationQueryForFunction(const QString &function,
                                                                       const VantorDBC &withConnectionDetails)
{
    const QStringList names = function.split(QLatin1Char('.'));
    KNAssert(names.size() > 1, "A function is scripted by its schema, a dot and its name.",
             "Scripts/MSSQLScriptCreateFunctionQueryLoader");
    const MSSQLModuleScript create{
        QStringLiteral("Function_AlterQuery"),
        {{QStringLiteral("FUNCTION_NAME"), names[1]}, {QStringLiteral("SCHEMA"), names[0]}},
        "mssql.queryLoader.createFunction",
        KNFormat("-- Failed to load creation query for function %@.%@ in database %@.", names[0], names[1],
                 withConnectionDetails.database())};
    return create.load(withConnectionDetails, nullptr);
}

QString MSSQLScriptCreateFunctionQueryLoader::script(const VantorDBC &details) const
{
    return creationQueryForFunction(m_targetFunction, details);
}
