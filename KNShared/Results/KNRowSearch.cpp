#include "Results/KNRowSearch.h"

#include "Database/KNRowReader.h"

namespace {

constexpr qsizetype RowsBetweenChecks = 1024; // rows between two checks for cancellation

} // namespace

std::optional<std::vector<KNRowSearch::Match>> KNRowSearch::find(const ResultRows &rows,
                                                                 const KNCellMatcher::Display &display,
                                                                 const std::atomic<bool> &cancelled) const
{
    std::vector<Match> matches;
    const KNCellMatcher matcher(text, sensitivity, display);
    KNRowReader reader(rows.result->rows());
    const auto searchRow = [&](qsizetype row) {
        reader.seek(rows.order ? qsizetype{rows.order->at(static_cast<std::size_t>(row))} : row);
        qsizetype next = 0;
        for (const qsizetype column : rows.columns) {
            for (; next < column; ++next)
                reader.next();
            ++next;
            if (matcher.matches(reader.next(), column))
                matches.push_back({static_cast<quint32>(row), static_cast<quint32>(column)});
        }
    };
    for (const ResultRows::Range &range : rows.ranges) {
        for (qsizetype row = range.first; row < range.first + range.count; ++row) {
            if (row % RowsBetweenChecks == 0 && cancelled)
                return std::nullopt;
            searchRow(row);
            if (matches.size() >= MostMatches) {
                matches.resize(MostMatches);
                return matches;
            }
        }
    }
    if (cancelled)
        return std::nullopt;
    return matches;
}
