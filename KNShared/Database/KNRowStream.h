#pragma once

#include "Database/KNRowStore.h"
#include "Database/VantorDBC.h"
#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <QStringList>

#include <functional>

/// Reads the rows of a query one by one, without keeping the whole result in memory.
namespace KNRowStream {

/// Asked several times a second, also while the server sends nothing; true stops the query.
using IsCancelled = std::function<bool()>;

/// Receives the first result of a query that has columns, on the thread that reads it.
struct Reader
{
    std::function<void(const QStringList &columnNames)> columns; ///< called once, before any rows
    /// Receives the rows from `first` to below `end`, which are discarded afterwards.
    std::function<void(const KNRowStore &rows, qsizetype first, qsizetype end)> rows;
    IsCancelled isCancelled = {}; ///< may be empty
};

/// Runs the query on a pooled connection and passes its rows on as they arrive. Returns the error, if any,
/// including errors from messages sent after rows; the rows are incomplete then, and after a cancellation.
/// Blocks on the server.
KNSHARED_EXPORT KNError read(const VantorDBC &details, const QString &sql, const Reader &reader);

/// Likewise, calling `eachRow` for every row.
KNSHARED_EXPORT KNError eachRow(const VantorDBC &details, const QString &sql,
                                const std::function<void(const KNRow &row)> &eachRow,
                                const IsCancelled &isCancelled = {});

} // namespace KNRowStream
