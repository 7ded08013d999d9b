#include "Scripts/MSSQLScriptDropAndCreateTypeQueryLoader.h"

#include "Foundation/KNFormat.h"

QString MSSQLScriptDropAndCreateTypeQueryLoader::script(const VantorDBC &details, KNQueryReport *report) const
{
    const QString drop = KNFormat("DROP TYPE %@.%@\r\nGO\r\n\r\n", targetSchema(), targetType());
    const QString create = MSSQLScriptCreateTypeQueryLoader::script(details, report);
    guardDrop(drop.size(), report);
    return KNFormat("%@%@\r\nGO", drop, create);
}
