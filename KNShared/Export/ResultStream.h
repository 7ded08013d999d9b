#pragma once

#include "Database/KNRowStream.h"
#include "Export/ResultWriter.h"

/// Writes the rows of a query while they arrive.
namespace ResultStream {

/// Runs the query on a pooled connection and writes its first result that has columns. Stops the query when
/// the writer fails. Returns the server's error; the caller asks the writer whether all was written. Blocks
/// on the server.
KNSHARED_EXPORT KNError write(const VantorDBC &details, const QString &sql, ResultWriter &writer,
                              const KNRowStream::IsCancelled &isCancelled = {});

} // namespace ResultStream
