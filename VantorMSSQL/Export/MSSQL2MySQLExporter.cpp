#include "Export/MSSQL2MySQLExporter.h"

#include "Foundation/KNAssert.h"
#include "Foundation/KNFormat.h"
#include "SQL/KNSQLComment.h"
#include "Scripts/MSSQLMySQLValue.h"

namespace {

QString joinedValues(const KNRow &row)
{
    QStringList literals;
    for (const KNValue &value : row)
        literals.append(MSSQLMySQLValue::literal(value));
    return literals.join(QLatin1Char(','));
}

} // namespace

QString MSSQL2MySQLExporter::exportData(const QList<KNRow> &rows, const QString &forTable,
                                        const QStringList &withColumns, bool hasIdentity, qsizetype batch)
{
    KNAssert(batch > 0, "A batch has one row at least.", "Export/MSSQL2MySQLExporter");
    const QString insert = KNFormat("INSERT INTO %@ (%@) ", forTable, withColumns.join(QStringLiteral(", ")));
    QString script = KNFormat("-- Add %ld rows for %@.\r\n", rows.size(), KNSQLComment::inOneLine(forTable));
    if (hasIdentity)
        script += KNFormat("SET IDENTITY_INSERT %@ ON\r\n", forTable);
    for (qsizetype i = 0; i < rows.size(); ++i) {
        if (batch == 1) {
            script += KNFormat("%@ (%@);\r\n", insert + QLatin1String("VALUES"), joinedValues(rows[i]));
            continue;
        }
        const bool isLast = i + 1 == rows.size() || (i + 1) % batch == 0;
        if (i % batch == 0)
            script += insert + QLatin1String("VALUES \r\n");
        script += KNFormat("(%@)", joinedValues(rows[i]));
        script += isLast ? QLatin1String(";\r\n\r\n") : QLatin1String(",\r\n");
    }
    if (hasIdentity)
        script += KNFormat("SET IDENTITY_INSERT %@ OFF\r\n\r\n", forTable);
    return script;
}
