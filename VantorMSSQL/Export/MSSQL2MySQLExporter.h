#pragma once

#include "Database/KNRowStore.h"

#include <QStringList>

/// Rows of an export as INSERT statements of several rows each.
class MSSQL2MySQLExporter
{
public:
    /// The rows for the table, each with a value for each of the columns, `batch` (1 or more) to a statement.
    /// Names are written as they are. With `hasIdentity`, statements that let identity values in and out
    /// again stand around them.
    static QString exportData(const QList<KNRow> &rows, const QString &forTable,
                              const QStringList &withColumns, bool hasIdentity, qsizetype batch);
};
