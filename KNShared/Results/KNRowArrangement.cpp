#include "Results/KNRowArrangement.h"

#include "Database/KNRowReader.h"
#include "Results/KNRowSortKey.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr quint32 StepsBetweenLooks = 4096; // rows between two checks for cancellation

struct Cancelled
{
};

/// A KNColumnFilter that is ready to test rows.
class ColumnCondition
{
public:
    ColumnCondition(const KNColumnFilter &filter, const KNRowArrangement::Display &display)
        : m_filter(filter)
        , m_display(display)
        , m_matcher(filter.text, Qt::CaseInsensitive, display)
    {
    }
    bool isMetBy(KNRowReader &reader, qsizetype row) const
    {
        const KNRowCell cell = reader.cell(row, m_filter.column);
        if (!m_filter.text.isEmpty() && !m_matcher.matches(cell, m_filter.column))
            return false;
        if (!m_filter.choosesValues)
            return true;
        const QString text = m_display(cell, m_filter.column);
        return text.isNull() ? m_filter.includesNull : m_filter.values.contains(text);
    }

private:
    const KNColumnFilter &m_filter;
    const KNRowArrangement::Display &m_display;
    const KNCellMatcher m_matcher;
};

} // namespace

const KNColumnFilter *KNRowArrangement::filterOf(qsizetype column) const
{
    const auto found = std::find_if(columnFilters.begin(), columnFilters.end(),
                                    [&](const KNColumnFilter &each) { return each.column == column; });
    return found == columnFilters.end() ? nullptr : &*found;
}

void KNRowArrangement::setColumnFilter(const KNColumnFilter &filter)
{
    columnFilters.removeIf([&](const KNColumnFilter &each) { return each.column == filter.column; });
    if (!filter.isPlain())
        columnFilters.append(filter);
}

KNRowOrderPtr KNRowArrangement::order(const KNDatabaseResultSet &result, const Display &display,
                                      const std::atomic<bool> &cancelled) const
{
    auto rows = std::make_shared<KNRowOrder>();
    if (isFiltered()) {
        if (!filter(*rows, result, display, cancelled))
            return nullptr;
    } else {
        rows->resize(static_cast<std::size_t>(result.rows().rowCount()));
        std::iota(rows->begin(), rows->end(), 0U);
    }
    if (sortColumn != NoColumn && !sort(*rows, result, cancelled))
        return nullptr;
    return rows;
}

bool KNRowArrangement::filter(KNRowOrder &rows, const KNDatabaseResultSet &result, const Display &display,
                              const std::atomic<bool> &cancelled) const
{
    const KNCellMatcher matcher(filterText, Qt::CaseInsensitive, display);
    std::vector<ColumnCondition> conditions;
    conditions.reserve(static_cast<std::size_t>(columnFilters.size()));
    for (const KNColumnFilter &each : columnFilters)
        conditions.emplace_back(each, display);
    const qsizetype columns = result.columnNames().size();
    KNRowReader reader(result.rows());
    const auto isWanted = [&](qsizetype row) {
        if (!std::all_of(conditions.begin(), conditions.end(),
                         [&](const ColumnCondition &each) { return each.isMetBy(reader, row); }))
            return false;
        if (filterText.isEmpty())
            return true;
        if (filterColumn != NoColumn)
            return matcher.matches(reader.cell(row, filterColumn), filterColumn);
        reader.seek(row);
        for (qsizetype column = 0; column < columns; ++column) {
            if (matcher.matches(reader.next(), column))
                return true;
        }
        return false;
    };
    const qsizetype count = result.rows().rowCount();
    for (qsizetype row = 0; row < count; ++row) {
        if (row % StepsBetweenLooks == 0 && cancelled)
            return false;
        if (isWanted(row))
            rows.push_back(static_cast<quint32>(row));
    }
    return !cancelled;
}

bool KNRowArrangement::sort(KNRowOrder &rows, const KNDatabaseResultSet &result,
                            const std::atomic<bool> &cancelled) const
{
    struct Keyed
    {
        KNRowSortKey key;
        quint32 row;
    };
    std::vector<Keyed> keyed;
    keyed.reserve(rows.size());
    KNRowReader reader(result.rows());
    for (const quint32 row : rows) {
        if (keyed.size() % StepsBetweenLooks == 0 && cancelled)
            return false;
        keyed.push_back({KNRowSortKey(reader.cell(row, sortColumn)), row});
    }
    quint32 steps = 0;
    const bool descending = sortOrder == Qt::DescendingOrder;
    try {
        // The row number makes this a strict order: equal rows keep their order of arrival in both
        // directions.
        std::sort(keyed.begin(), keyed.end(), [&](const Keyed &left, const Keyed &right) {
            if (++steps % StepsBetweenLooks == 0 && cancelled)
                throw Cancelled();
            const int order = KNRowSortKey::compared(left.key, right.key);
            if (order == 0)
                return left.row < right.row;
            return descending ? order > 0 : order < 0;
        });
    } catch (const Cancelled &) {
        return false;
    }
    std::transform(keyed.begin(), keyed.end(), rows.begin(), [](const Keyed &entry) { return entry.row; });
    return !cancelled;
}
