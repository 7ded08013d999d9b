#pragma once

#include "Export/ResultRows.h"
#include "KNSharedExport.h"
#include "Results/KNCellMatcher.h"

#include <atomic>
#include <compare>
#include <optional>

/// Finds the cells of displayed rows whose displayed text contains a text.
struct KNSHARED_EXPORT KNRowSearch
{
    /// A displayed cell.
    struct Match
    {
        quint32 row = 0;
        quint32 column = 0;
        friend auto operator<=>(const Match &, const Match &) = default;
    };
    /// No more matches than this are found.
    static constexpr std::size_t MostMatches = 1'000'000;

    QString text;
    Qt::CaseSensitivity sensitivity = Qt::CaseInsensitive;

    /// Searches the rows and columns of `rows`. Returns the matches row by row; empty if cancelled. Slow for
    /// many rows; call it in the background.
    std::optional<std::vector<Match>> find(const ResultRows &rows, const KNCellMatcher::Display &display,
                                           const std::atomic<bool> &cancelled) const;

    friend bool operator==(const KNRowSearch &, const KNRowSearch &) = default;
};
