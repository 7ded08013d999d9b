#include "Scripts/MSSQLScriptDeleteDataFromTableQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLClient.h"
#include "Scripts/MSSQLObjectPath.h"

namespace {

QString quotedPath(const QStringList &path)
{
    const QString escaped = MSSQLClient::escapeTablePaths(path);
    if (path.size() > 1) {
        const QStringList ends{path.first(), path.last()};
        return MSSQLObjectPath::reads(escaped, ends) ? escaped : MSSQLObjectPath::quoted(ends);
    }
    // One text may hold a schema, a dot and a name.
    const QString name = path.value(0);
    return MSSQLObjectPath::reads(escaped, name.split(QLatin1Char('.'))) ? escaped
                                                                         : MSSQLObjectPath::quoted({name});
}

} // namespace

void MSSQLScriptDeleteDataFromTableQueryLoader::beginLoadingQuery(const VantorDBC &)
{
    const QString table = quotedPath(m_tablePath);
    QString script = QStringLiteral("");
    for (const QList<KNValue> &row : m_data) {
        QString conditions = QStringLiteral("");
        for (qsizetype i = 0; i < m_columns.size(); ++i)
            conditions +=
                KNFormat("%@%@ = %@", i == 0 ? "" : " AND ", MSSQLObjectPath::quoted({m_columns[i]}),
                         MSSQLClient::escapeColumnValue(row.value(i)));
        if (!script.isEmpty())
            script += QLatin1String("\r\n");
        script += KNFormat("DELETE TOP (1) FROM %@ WHERE %@;", table, conditions);
    }
    deliver(script);
}
