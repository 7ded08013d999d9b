#include "Scripts/MSSQLScriptDropAndCreateStoredProcedureQueryLoader.h"

#include "Foundation/KNFormat.h"

QString MSSQLScriptDropAndCreateStoredProcedureQueryLoader::script(const VantorDBC &details) const
{
    const QString drop = KNFormat("DROP PROCEDURE %@\r\nGO", targetStoredProcedure());
    return KNFormat("%@\r\n%@", drop, MSSQLScriptCreateStoredProcedureQueryLoader::script(details));
}
