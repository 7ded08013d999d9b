#pragma once

#include "Database/KNRowCell.h"
#include "Export/ResultRows.h"
#include "KNSharedExport.h"

#include <atomic>

/// How a finished result is shown: sorted by a column, and only the rows with a text in them.
struct KNSHARED_EXPORT KNRowArrangement
{
    static constexpr qsizetype NoColumn = -1;

    /// How a cell is shown in a column; a null QString for null. Called on any thread.
    using Display = std::function<QString(const KNRowCell &cell, qsizetype column)>;

    qsizetype sortColumn = NoColumn; ///< none: in the order of arrival
    Qt::SortOrder sortOrder = Qt::AscendingOrder;
    QString filterText = {};           ///< in any case of letters; empty for all rows
    qsizetype filterColumn = NoColumn; ///< none: in any column

    /// Whether all rows are shown as they are stored.
    bool isPlain() const { return sortColumn == NoColumn && filterText.isEmpty(); }

    /// The rows in question in their order; equal ones as they arrived. Null when it was cancelled. Takes
    /// long for many rows: for the background.
    KNRowOrderPtr order(const KNDatabaseResultSet &result, const Display &display,
                        const std::atomic<bool> &cancelled) const;

    friend bool operator==(const KNRowArrangement &, const KNRowArrangement &) = default;

private:
    bool filter(KNRowOrder &rows, const KNDatabaseResultSet &result, const Display &display,
                const std::atomic<bool> &cancelled) const;
    bool sort(KNRowOrder &rows, const KNDatabaseResultSet &result, const std::atomic<bool> &cancelled) const;
};
