#pragma once

#include "Export/MSSQLTableRowsScript.h"

/// The rows of a table as a CSV file without a header, and the script that loads it with BULK INSERT. NULL is
/// written as \N; a text that begins with a backslash gets another one, so that no text reads as NULL, and an
/// empty text stays one. Blocks on the server.
class MSSQLTableRowsCsv
{
public:
    explicit MSSQLTableRowsCsv(const VantorDBC &details, const QString &schema, const QString &table);

    KNError writeRows(QIODevice &device, const KNScriptControl &control) const;
    /// `fileName` is that of the rows.
    KNError writeLoading(const QString &fileName, QIODevice &device) const;

private:
    const VantorDBC &m_details;
    const MSSQLTableRowsScript m_table;
    const QString m_path;
};
