#include "Scripts/MSSQLScriptDropAndCreateTypeQueryLoader.h"

#include "Foundation/KNFormat.h"

QString MSSQLScriptDropAndCreateTypeQueryLoader::script(const VantorDBC &details) const
{
    const QString drop = KNFormat("DROP TYPE %@.%@\r\nGO\r\n", targetSchema(), targetType());
    return KNFormat("%@\r\n%@\r\nGO", drop, MSSQLScriptCreateTypeQueryLoader::script(details));
}
