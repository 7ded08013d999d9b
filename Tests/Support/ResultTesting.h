#pragma once

#include "Database/KNResultSetHolder.h"
#include "Database/KNRowReader.h"
#include "Export/ResultWriter.h"

/// Result sets that tests make without a server.
namespace ResultTesting {

inline KNValue text(const char *utf8)
{
    return KNValue(QString::fromUtf8(utf8));
}

inline KNValue decimal(QStringView digits)
{
    return KNValue(*KNDecimal::fromString(digits));
}

/// A finished result. `types` are the connector's numbers, 0 where they do not matter.
inline KNDatabaseResultSetPtr result(const QStringList &columns, const QList<KNRow> &rows,
                                     QList<int> types = {})
{
    auto result = std::make_shared<KNDatabaseResultSet>();
    types.resize(columns.size());
    result->setColumns(columns, types);
    result->addRows(rows);
    result->setFinished();
    return result;
}

/// A finished result of two columns: numbers from 0, and "row <number>".
inline KNDatabaseResultSetPtr numberedRows(int count)
{
    auto result = std::make_shared<KNDatabaseResultSet>();
    result->setColumns({QStringLiteral("id"), QStringLiteral("name")}, {56, 47});
    KNRowStore &rows = result->rows();
    for (int row = 0; row < count; ++row) {
        rows.beginRow();
        rows.appendInt32(row);
        const QByteArray name = "row " + QByteArray::number(row);
        rows.appendText(name.constData(), static_cast<std::size_t>(name.size()));
        rows.endRow();
    }
    rows.publish();
    result->setFinished();
    return result;
}

/// Writes the rows of a result as whoever prints or exports them does.
inline void writeRows(ResultWriter &writer, const KNDatabaseResultSet &result)
{
    KNRowReader reader(result.rows());
    std::vector<KNRowCell> cells(static_cast<std::size_t>(result.columnNames().size()));
    for (qsizetype row = 0; reader.seek(row); ++row) {
        for (KNRowCell &cell : cells)
            cell = reader.next();
        writer.writeRow(cells);
    }
}

inline void writeRows(ResultWriter &writer, const QList<KNRow> &rows)
{
    if (!rows.isEmpty())
        writeRows(writer, *result(QStringList(rows.first().size()), rows));
}

} // namespace ResultTesting
