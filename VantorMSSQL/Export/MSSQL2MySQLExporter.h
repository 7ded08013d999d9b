#pragma once

#include "Database/KNRowStore.h"

#include <QStringList>

/// Formats exported rows as INSERT statements with several rows each.
class MSSQL2MySQLExporter
{
public:
    /// Returns the statements for the table, with `batch` rows (1 or more) in each. Every row has one value
    /// for each column. Names are not escaped. With `hasIdentity`, the statements that switch IDENTITY_INSERT
    /// on and off are added around them.
    static QString exportData(const QList<KNRow> &rows, const QString &forTable,
                              const QStringList &withColumns, bool hasIdentity, qsizetype batch);
};
