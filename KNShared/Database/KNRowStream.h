#pragma once

#include "Database/KNRowStore.h"
#include "Database/VantorDBC.h"
#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <functional>

/// Reads the rows of a query one by one, without keeping the whole result in memory.
namespace KNRowStream {

/// Runs the query on a pooled connection and calls `eachRow` on the caller's thread as rows arrive. Returns
/// the error, if any, including errors from messages sent after rows; the rows passed to `eachRow` are
/// incomplete then. Blocks on the server.
KNSHARED_EXPORT KNError eachRow(const VantorDBC &details, const QString &sql,
                                const std::function<void(const KNRow &row)> &eachRow);

} // namespace KNRowStream
