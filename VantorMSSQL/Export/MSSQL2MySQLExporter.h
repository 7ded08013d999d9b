#pragma once

#include "Database/KNRowStore.h"

#include <QStringList>

/// Formats exported rows as INSERT statements with several rows each. Names are not escaped.
class MSSQL2MySQLExporter
{
public:
    /// Returns the statements for the table, with `batch` rows (1 or more) in each. Every row has one value
    /// for each column. With `hasIdentity`, the statements that switch IDENTITY_INSERT on and off are added
    /// around them.
    static QString exportData(const QList<KNRow> &rows, const QString &forTable,
                              const QStringList &withColumns, bool hasIdentity, qsizetype batch);

    /// For rows that arrive one by one: the text is head(), what add() returns for each row, and tail().
    MSSQL2MySQLExporter(const QString &table, const QStringList &columns, bool hasIdentity, qsizetype batch);

    /// The text before the rows, once their number is known.
    QString head() const;
    QString add(const KNRow &row);
    QString tail() const;
    qint64 rowCount() const { return m_count; }

private:
    const QString m_table;
    const QString m_insert; ///< the statement up to VALUES
    const bool m_hasIdentity;
    const qsizetype m_batch;
    qint64 m_count = 0;
};
