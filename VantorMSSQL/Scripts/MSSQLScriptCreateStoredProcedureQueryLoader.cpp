#include "Scripts/MSSQLScriptCreateStoredProcedureQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLModuleScript.h"

QString MSSQLScriptCreateStoredProcedureQueryLoader::creationQueryForStoredProcedure(
    const QString &storedProcedure, const QString &inSchema, const VantorDBC &withConnectionDetails)
{
    const MSSQLModuleScript create{
        QStringLiteral("StoredProcedure_ScriptCreateQuery"),
        {{QStringLiteral("PROCEDURE_NAME"), storedProcedure}, {QStringLiteral("SCHEMA"), inSchema}},
        "mssql.queryLoader.createStoredProcedure",
        KNFormat("-- Failed to load creation query for stored procedure %@.%@ in database %@.", inSchema,
                 storedProcedure, withConnectionDetails.database())};
    return create.load(withConnectionDetails, nullptr);
}

QString MSSQLScriptCreateStoredProcedureQueryLoader::script(const VantorDBC &details) const
{
    return creationQueryForStoredProcedure(m_targetStoredProcedure, m_targetStoredProcedureSchema, details);
}
