#pragma once

#include "Database/KNRowStore.h"
#include "Database/VantorDBC.h"
#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <functional>

/// Rows of a query one after the other, without the result as a whole ever being in memory.
namespace KNRowStream {

/// Runs the query on a pooled connection and calls `eachRow`, on the caller's thread, while rows arrive.
/// Returns the error, if any, also one that came as a message behind rows: what `eachRow` got is incomplete
/// then. Blocks on the server.
KNSHARED_EXPORT KNError eachRow(const VantorDBC &details, const QString &sql,
                                const std::function<void(const KNRow &row)> &eachRow);

} // namespace KNRowStream
