#pragma once

#include "Database/KNRowCell.h"
#include "Export/ResultRows.h"
#include "KNSharedExport.h"
#include "Results/KNCellMatcher.h"
#include "Results/KNColumnFilter.h"

#include <atomic>

/// Display options of a finished result: the sort column and a text filter.
struct KNSHARED_EXPORT KNRowArrangement
{
    static constexpr qsizetype NoColumn = -1;

    using Display = KNCellMatcher::Display;

    qsizetype sortColumn = NoColumn; ///< none: in order of arrival
    Qt::SortOrder sortOrder = Qt::AscendingOrder;
    QString filterText = {};                  ///< case-insensitive; empty for all rows
    qsizetype filterColumn = NoColumn;        ///< none: in any column
    QList<KNColumnFilter> columnFilters = {}; ///< further conditions, at most one per column

    /// Whether all rows are shown in stored order.
    bool isPlain() const { return sortColumn == NoColumn && !isFiltered(); }
    bool isFiltered() const { return !filterText.isEmpty() || !columnFilters.isEmpty(); }
    /// The filter of a column; null if there is none. Valid until the filters change.
    const KNColumnFilter *filterOf(qsizetype column) const;
    /// Replaces the filter of its column; a plain one removes it.
    void setColumnFilter(const KNColumnFilter &filter);

    /// Returns the matching rows in display order; equal rows keep their order of arrival. Null if cancelled.
    /// Slow for many rows; call it in the background.
    KNRowOrderPtr order(const KNDatabaseResultSet &result, const Display &display,
                        const std::atomic<bool> &cancelled) const;

    friend bool operator==(const KNRowArrangement &, const KNRowArrangement &) = default;

private:
    bool filter(KNRowOrder &rows, const KNDatabaseResultSet &result, const Display &display,
                const std::atomic<bool> &cancelled) const;
    bool sort(KNRowOrder &rows, const KNDatabaseResultSet &result, const std::atomic<bool> &cancelled) const;
};
