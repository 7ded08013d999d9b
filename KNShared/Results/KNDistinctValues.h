#pragma once

#include "Database/KNResultSetHolder.h"
#include "KNSharedExport.h"
#include "Results/KNCellMatcher.h"

#include <QStringList>

#include <atomic>
#include <optional>

/// The different values of a column.
struct KNSHARED_EXPORT KNDistinctValues
{
    static constexpr qsizetype MostValues = 1000;
    static constexpr qsizetype MostCharacters = 1'000'000; ///< of all texts

    QStringList texts; ///< displayed texts in the order of the values, without NULL
    bool hasNull = false;
    bool areAll = true; ///< false if there are too many: then the others are missing

    /// Reads the column in all rows. Empty if cancelled. Slow for many rows; call it in the background.
    static std::optional<KNDistinctValues> of(const KNDatabaseResultSet &result, qsizetype column,
                                              const KNCellMatcher::Display &display,
                                              const std::atomic<bool> &cancelled);
};
