#include "Scripts/MSSQLScriptAlterFunctionQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLModuleScript.h"

QString MSSQLScriptAlterFunctionQueryLoader::script(const VantorDBC &details, KNQueryReport *report) const
{
    const MSSQLModuleScript alter{
        "Function_AlterQuery",
        "FUNCTION_NAME",
        m_targetFunctionSchema,
        m_targetFunctionName,
        "mssql.queryLoader.alterFunction",
        KNFormat("-- Failed to load creation query for function %@.%@ in database %@.",
                 m_targetFunctionSchema, m_targetFunctionName, details.database()),
        QStringLiteral("FUNCTION")};
    return alter.load(details, report);
}
