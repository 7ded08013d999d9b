#include "Scripts/MSSQLScriptAlterStoredProcedureQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLModuleScript.h"

QString MSSQLScriptAlterStoredProcedureQueryLoader::script(const VantorDBC &details,
                                                           KNQueryReport *report) const
{
    const MSSQLModuleScript alter{
        "StoredProcedure_AlterQuery",
        "PROCEDURE_NAME",
        m_schema,
        m_targetStoredProcedure,
        "mssql.queryLoader.alterStoredProcedure",
        KNFormat("-- Failed to load creation query for function %@.%@ in database %@.", m_schema,
                 m_targetStoredProcedure, details.database()),
        QStringLiteral("PROCEDURE")};
    KNError error;
    QString query = alter.load(details, report, &error);
    if (!error)
        return query;
    query = KNFormat("Failed to load query. Error was:\r\n%@", error.localizedDescription());
    report->unsafeLength = query.size(); // not SQL
    return query;
}
