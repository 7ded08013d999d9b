#include "Scripts/MSSQLScriptAlterFunctionQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLModuleScript.h"

QString MSSQLScriptAlterFunctionQueryLoader::script(const VantorDBC &details) const
{
    const MSSQLModuleScript alter{
        QStringLiteral("Function_AlterQuery"),
        {{QStringLiteral("FUNCTION_NAME"), m_targetFunctionName},
         {QStringLiteral("SCHEMA"), m_targetFunctionSchema}},
        "mssql.queryLoader.alterFunction",
        KNFormat("-- Failed to load creation query for function %@.%@ in database %@.",
                 m_targetFunctionSchema, m_targetFunctionName, details.database()),
        QStringLiteral("FUNCTION")};
    return alter.load(details, nullptr);
}
