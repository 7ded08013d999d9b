#include "Scripts/MSSQLScriptDropAndCreateTableQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLScriptCreateTableQueryLoader.h"

QString MSSQLScriptDropAndCreateTableQueryLoader::script(const VantorDBC &details,
                                                         KNQueryReport *report) const
{
    const QString drop = KNFormat("DROP TABLE %@.%@\r\nGO\r\n\r\n", m_targetSchema, m_targetTableName);
    const QString create = MSSQLScriptCreateTableQueryLoader::creationQueryForTable(
        m_targetTableName, m_targetSchema, details, report);
    QString text = KNFormat("%@%@", drop, create);
    guardDrop(create.isNull() ? text.size() : drop.size(), report);
    return text;
}
