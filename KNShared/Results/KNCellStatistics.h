#pragma once

#include "Database/KNRowCell.h"
#include "Export/ResultRows.h"
#include "KNSharedExport.h"

#include <atomic>
#include <optional>

/// Count, sum, average, minimum and maximum of cells. NULL counts for none of them. Integers, decimals and
/// amounts of money are added exactly; the sum is a floating number if one of the values is.
struct KNSHARED_EXPORT KNCellStatistics
{
    /// The kind of the values that are not NULL. Text and mixed values are Other and are only counted.
    enum class Kind { Other, Numbers, Dates };

    /// Displayed rows in some columns.
    struct Range
    {
        ResultRows::Range rows;
        QList<qsizetype> columns; ///< ascending
        friend bool operator==(const Range &, const Range &) = default;
    };

    qint64 count = 0; ///< of values that are not NULL
    qint64 nullCount = 0;
    Kind kind = Kind::Other;
    QString sum;       ///< null unless they are numbers
    QString average;   ///< like the sum; rounded to six digits more than the values have
    KNRowCell minimum; ///< of numbers or dates, otherwise Null; valid as long as the result
    KNRowCell maximum;

    /// Reads the cells of ranges that do not overlap. `order` is null if rows are displayed in stored order.
    /// Empty if cancelled. Slow for many rows; call it in the background.
    static std::optional<KNCellStatistics> of(const KNDatabaseResultSet &result, const KNRowOrderPtr &order,
                                              const QList<Range> &ranges, const std::atomic<bool> &cancelled);
};
