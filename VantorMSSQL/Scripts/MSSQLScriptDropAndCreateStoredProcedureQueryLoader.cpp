#include "Scripts/MSSQLScriptDropAndCreateStoredProcedureQueryLoader.h"

#include "Foundation/KNFormat.h"

QString MSSQLScriptDropAndCreateStoredProcedureQueryLoader::script(const VantorDBC &details,
                                                                   KNQueryReport *report) const
{
    const QString drop = KNFormat("DROP PROCEDURE %@\r\nGO\r\n", targetStoredProcedure());
    const QString create = MSSQLScriptCreateStoredProcedureQueryLoader::script(details, report);
    guardDrop(drop.size(), report);
    return drop + create;
}
