#pragma once

#include "Database/KNResultSetHolder.h"
#include "Export/ResultWriter.h"
#include "KNSharedExport.h"

#include <functional>
#include <memory>
#include <vector>

/// Row numbers of a result in display order.
using KNRowOrder = std::vector<quint32>;
using KNRowOrderPtr = std::shared_ptr<const KNRowOrder>;

/// The displayed rows and columns to copy or export. A value type; any thread.
struct KNSHARED_EXPORT ResultRows
{
    /// A range of displayed rows starting at `first`.
    struct Range
    {
        qsizetype first = 0;
        qsizetype count = 0;
        friend bool operator==(const Range &, const Range &) = default;
    };
    /// Called from time to time with the number of rows written; returns false to stop.
    using GoOn = std::function<bool(qsizetype rowsWritten)>;

    KNDatabaseResultSetPtr result;
    KNRowOrderPtr order;      ///< null if rows are displayed in stored order
    QList<Range> ranges;      ///< ascending
    QList<qsizetype> columns; ///< ascending

    qsizetype rowCount() const;
    /// Writes the column names and the rows. False if it was stopped or the writer failed; the result is
    /// closed in either case.
    bool writeTo(ResultWriter &writer, const GoOn &goOn) const;
};
