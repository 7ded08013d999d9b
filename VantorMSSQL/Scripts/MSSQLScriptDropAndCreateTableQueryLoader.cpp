#include "Scripts/MSSQLScriptDropAndCreateTableQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLScriptCreateTableQueryLoader.h"

namespace {

/// The comments at the beginning of a script, which name parts that the new table will lack.
QStringList headComments(const QString &script)
{
    const QLatin1String mark("-- ");
    QStringList comments;
    for (const QString &line :
         script.left(script.indexOf(QLatin1String("SET "))).split(QLatin1String("\r\n"))) {
        if (line.startsWith(mark))
            comments.append(line.mid(mark.size()));
    }
    return comments;
}

} // namespace

QString MSSQLScriptDropAndCreateTableQueryLoader::script(const VantorDBC &details,
                                                         KNQueryReport *report) const
{
    const QString drop = KNFormat("DROP TABLE %@.%@\r\nGO\r\n\r\n", m_targetSchema, m_targetTableName);
    const QString create = MSSQLScriptCreateTableQueryLoader::creationQueryForTable(
        m_targetTableName, m_targetSchema, details, report);
    QString text = KNFormat("%@%@", drop, create);
    if (const QStringList lacks = headComments(create); !lacks.isEmpty()) {
        report->notices.append(
            QStringLiteral("The table that this script makes is not the one that it drops:"));
        report->notices += lacks;
    }
    guardDrop(create.isNull() ? text.size() : drop.size(), report);
    return text;
}
