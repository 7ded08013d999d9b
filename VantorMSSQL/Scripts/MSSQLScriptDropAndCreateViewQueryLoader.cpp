#include "Scripts/MSSQLScriptDropAndCreateViewQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLQuoting.h"
#include "Scripts/MSSQLScriptCreateViewQueryLoader.h"

QString MSSQLScriptDropAndCreateViewQueryLoader::script(const VantorDBC &details, KNQueryReport *report) const
{
    const QString drop = KNFormat("DROP VIEW %@\r\nGO\r\n\r\n",
                                  MSSQLQuoting::escapeSchemaAndTable(m_targetSchema, m_targetViewName));
    const QString create = MSSQLScriptCreateViewQueryLoader::creationQueryForView(
        m_targetViewName, m_targetSchema, details, report);
    guardDrop(drop.size(), report);
    return drop + create;
}
