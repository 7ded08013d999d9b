#include "Scripts/MSSQLScriptDropAndCreateFunctionQueryLoader.h"

#include "Foundation/KNFormat.h"

QString MSSQLScriptDropAndCreateFunctionQueryLoader::script(const VantorDBC &details,
                                                            KNQueryReport *report) const
{
    const QString drop = KNFormat("DROP FUNCTION %@\r\nGO\r\n", targetFunction());
    const QString create = MSSQLScriptCreateFunctionQueryLoader::script(details, report);
    guardDrop(drop.size(), report);
    return drop + create;
}
