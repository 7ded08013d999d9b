#include "Scripts/MSSQLScriptDeleteDataFromTableQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "Implementations/MSSQLQuoting.h"

void MSSQLScriptDeleteDataFromTableQueryLoader::beginLoadingQuery(const VantorDBC &)
{
    const QString table = MSSQLObjectPath::ofTable(m_tablePath);
    QString script = QStringLiteral("");
    for (const QList<KNValue> &row : m_data) {
        QString conditions = QStringLiteral("");
        for (qsizetype i = 0; i < m_columns.size(); ++i)
            conditions +=
                KNFormat("%@%@ = %@", i == 0 ? "" : " AND ", MSSQLObjectPath::quoted({m_columns[i]}),
                         MSSQLQuoting::escapeColumnValue(row.value(i)));
        if (!script.isEmpty())
            script += QLatin1String("\r\n");
        script += KNFormat("DELETE TOP (1) FROM %@ WHERE %@;", table, conditions);
    }
    deliver(script);
}
