#pragma once

#include "Database/KNResultSetHolder.h"
#include "Export/ResultWriter.h"
#include "KNSharedExport.h"

#include <functional>
#include <memory>
#include <vector>

/// The numbers of a result's rows in the order in which they are shown.
using KNRowOrder = std::vector<quint32>;
using KNRowOrderPtr = std::shared_ptr<const KNRowOrder>;

/// A part of a result as it is shown: what is copied or exported. A value type; any thread.
struct KNSHARED_EXPORT ResultRows
{
    /// Shown rows from `first` on.
    struct Range
    {
        qsizetype first = 0;
        qsizetype count = 0;
        friend bool operator==(const Range &, const Range &) = default;
    };
    /// Asked from time to time with the number of rows that are written; false stops the writing.
    using GoOn = std::function<bool(qsizetype rowsWritten)>;

    KNDatabaseResultSetPtr result;
    KNRowOrderPtr order;      ///< null when the rows are shown as they are stored
    QList<Range> ranges;      ///< ascending
    QList<qsizetype> columns; ///< ascending

    qsizetype rowCount() const;
    /// Writes the columns' names and the rows. False when it was stopped or the writer failed; the result is
    /// ended all the same.
    bool writeTo(ResultWriter &writer, const GoOn &goOn) const;
};
