#include "Scripts/MSSQLScriptDropAndCreateFunctionQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLScriptCreateFunctionQueryLoader.h"

QString MSSQLScriptDropAndCreateFunctionQueryLoader::script(const VantorDBC &details,
                                                            KNQueryReport *report) const
{
    const QString drop = KNFormat("DROP FUNCTION %@\r\nGO\r\n", m_targetFunction);
    const QString create =
        MSSQLScriptCreateFunctionQueryLoader::creationQueryForFunction(m_targetFunction, details, report);
    guardDrop(drop.size(), report);
    return drop + create;
}
