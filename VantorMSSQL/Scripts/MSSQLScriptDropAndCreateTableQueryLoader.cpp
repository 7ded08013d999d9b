#include "Scripts/MSSQLScriptDropAndCreateTableQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLScriptCreateTableQueryLoader.h"

QString MSSQLScriptDropAndCreateTableQueryLoader::script(const VantorDBC &details) const
{
    const QString drop = KNFormat("DROP TABLE %@.%@\r\nGO\r\n", m_targetSchema, m_targetTableName);
    const QString create =
        MSSQLScriptCreateTableQueryLoader::creationQueryForTable(m_targetTableName, m_targetSchema, details);
    return KNFormat("%@\r\n%@", drop, create);
}
