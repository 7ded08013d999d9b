#include "Scripts/MSSQLScriptCreateStoredProcedureQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLModuleScript.h"

QString MSSQLScriptCreateStoredProcedureQueryLoader::creationQueryForStoredProcedure(
    const QString &storedProcedure, const QString &inSchema, const VantorDBC &withConnectionDetails,
    KNQueryReport *report)
{
    const MSSQLModuleScript create{
        "StoredProcedure_ScriptCreateQuery",
        "PROCEDURE_NAME",
        inSchema,
        storedProcedure,
        "mssql.queryLoader.createStoredProcedure",
        KNFormat("-- Failed to load creation query for stored procedure %@.%@ in database %@.", inSchema,
                 storedProcedure, withConnectionDetails.database())};
    KNQueryReport unused;
    return create.load(withConnectionDetails, report ? report : &unused);
}

QString MSSQLScriptCreateStoredProcedureQueryLoader::script(const VantorDBC &details,
                                                            KNQueryReport *report) const
{
    return creationQueryForStoredProcedure(m_targetStoredProcedure, m_targetStoredProcedureSchema, details,
                                           report);
}
