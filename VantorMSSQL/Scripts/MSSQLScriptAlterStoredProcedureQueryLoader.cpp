#include "Scripts/MSSQLScriptAlterStoredProcedureQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLModuleScript.h"

QString MSSQLScriptAlterStoredProcedureQueryLoader::script(const VantorDBC &details) const
{
    const MSSQLModuleScript alter{
        QStringLiteral("StoredProcedure_AlterQuery"),
        {{QStringLiteral("PROCEDURE_NAME"), m_targetStoredProcedure}, {QStringLiteral("SCHEMA"), m_schema}},
        "mssql.queryLoader.alterStoredProcedure",
        KNFormat("-- Failed to load creation query for function %@.%@ in database %@.", m_schema,
                 m_targetStoredProcedure, details.database()),
        QStringLiteral("PROCEDURE")};
    KNError error;
    const QString query = alter.load(details, &error);
    return error ? KNFormat("Failed to load query. Error was:\r\n%@", error.localizedDescription()) : query;
}
