#include "Scripts/MSSQLScriptDropAndCreateFunctionQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLScriptCreateFunctionQueryLoader.h"

QString MSSQLScriptDropAndCreateFunctionQueryLoader::script(const VantorDBC &details) const
{
    const QString drop = KNFormat("DROP FUNCTION %@\r\nGO", m_targetFunction);
    const QString create =
        MSSQLScriptCreateFunctionQueryLoader::creationQueryForFunction(m_targetFunction, details);
    return KNFormat("%@\r\n%@", drop, create);
}
