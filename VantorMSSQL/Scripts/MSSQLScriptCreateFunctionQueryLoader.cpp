#include "Scripts/MSSQLScriptCreateFunctionQueryLoader.h"

#include "Foundation/KNAssert.h"
#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLModuleScript.h"

QString MSSQLScriptCreateFunctionQueryLoader::creationQueryForFunction(const QString &function,
                                                                       const VantorDBC &withConnectionDetails,
                                                                       KNQueryReport *report)
{
    return MSSQLScriptCreateFunctionQueryLoader(function).script(withConnectionDetails, report);
}

QString MSSQLScriptCreateFunctionQueryLoader::creationQueryForFunction(const QString &function,
                                                                       const QString &inSchema,
                                                                       const VantorDBC &withConnectionDetails,
                                                                       KNQueryReport *report)
{
    const MSSQLModuleScript create{
        "Function_AlterQuery",
        "FUNCTION_NAME",
        inSchema,
        function,
        "mssql.queryLoader.createFunction",
        KNFormat("-- Failed to load creation query for function %@.%@ in database %@.", inSchema, function,
                 withConnectionDetails.database())};
    KNQueryReport unused;
    return create.load(withConnectionDetails, report ? report : &unused);
}

QString MSSQLScriptCreateFunctionQueryLoader::script(const VantorDBC &details, KNQueryReport *report) const
{
    KNAssert(m_name.size() > 1, "A function is scripted by its schema, a dot and its name.",
             "Scripts/MSSQLScriptCreateFunctionQueryLoader");
    return creationQueryForFunction(m_name[1], m_name[0], details, report);
}
