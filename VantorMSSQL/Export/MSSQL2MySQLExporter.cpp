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

MSSQL2MySQLExporter::MSSQL2MySQLExporter(const QString &table, const QStringList &columns, bool hasIdentity,
                                         qsizetype batch)
    : m_table(table)
    , m_insert(KNFormat("INSERT INTO %@ (%@) ", table, columns.join(QStringLiteral(", "))))
    , m_hasIdentity(hasIdentity)
    , m_batch(batch)
{
    KNAssert(batch > 0, "A batch has one row at least.", "Export/MSSQL2MySQLExporter");
}

QString MSSQL2MySQLExporter::head() const
{
    QString head = KNFormat("-- Add %ld rows for %@.\r\n", m_count, KNSQLComment::inOneLine(m_table));
    if (m_hasIdentity)
        head += KNFormat("SET IDENTITY_INSERT %@ ON\r\n", m_table);
    return head;
}

QString MSSQL2MySQLExporter::add(const KNRow &row)
{
    const qint64 index = m_count++;
    if (m_batch == 1)
        return KNFormat("%@ (%@);\r\n", m_insert + QLatin1String("VALUES"), joinedValues(row));
    QString text;
    if (index % m_batch != 0)
        text = QStringLiteral(",\r\n");
    else if (index > 0)
        text = QStringLiteral(";\r\n\r\n");
    if (index % m_batch == 0)
        text += m_insert + QLatin1String("VALUES \r\n");
    return text + KNFormat("(%@)", joinedValues(row));
}

QString MSSQL2MySQLExporter::tail() const
{
    QString tail;
    if (m_count > 0 && m_batch > 1)
        tail = QStringLiteral(";\r\n\r\n");
    if (m_hasIdentity)
        tail += KNFormat("SET IDENTITY_INSERT %@ OFF\r\n\r\n", m_table);
    return tail;
}

QString MSSQL2MySQLExporter::exportData(const QList<KNRow> &rows, const QString &forTable,
                                        const QStringList &withColumns, bool hasIdentity, qsizetype batch)
{
    MSSQL2MySQLExporter exporter(forTable, withColumns, hasIdentity, batch);
    QString inserts;
    for (const KNRow &row : rows)
        inserts += exporter.add(row);
    return exporter.head() + inserts + exporter.tail();
}
