#include "Scripts/MSSQLScriptDropAndCreateTypeQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLScriptCreateTypeQueryLoader.h"

QString MSSQLScriptDropAndCreateTypeQueryLoader::script(const VantorDBC &details) const
{
    const QString drop = KNFormat("DROP TYPE %@.%@\r\nGO\r\n", m_targetSchema, m_targetType);
    const QString create = MSSQLScriptCreateTypeQueryLoader::creationQueryForType(
        m_targetType, m_targetSchema, m_targetQueryLoaderType, details);
    return KNFormat("%@\r\n%@\r\nGO", drop, create);
}
