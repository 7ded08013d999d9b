#include "Results/KNCellStatistics.h"

#include "Database/KNRowReader.h"
#include "Results/KNExactSum.h"

#include <cmath>

namespace {

constexpr qsizetype RowsBetweenLooks = 4096; // rows between two checks for cancellation

bool isFloating(const KNRowCell &cell)
{
    return cell.tag == KNRowCell::Float || cell.tag == KNRowCell::Double;
}

/// Adds floating numbers with a compensation for the digits that each step loses.
class FloatingSum
{
public:
    void add(double number)
    {
        const double sum = m_sum + number;
        m_lost += std::abs(m_sum) >= std::abs(number) ? (m_sum - sum) + number : (number - sum) + m_sum;
        m_sum = sum;
    }
    double value() const { return std::isfinite(m_sum) ? m_sum + m_lost : m_sum; }

private:
    double m_sum = 0;
    double m_lost = 0;
};

/// Collects cells one by one.
class Collector
{
public:
    void add(const KNRowCell &cell)
    {
        if (cell.tag == KNRowCell::Null) {
            ++m_statistics.nullCount;
            return;
        }
        ++m_statistics.count;
        if (m_isMixed)
            return;
        const bool isNumber = cell.isNumber();
        const bool isDate = cell.tag == KNRowCell::Date || cell.tag == KNRowCell::OffsetDate;
        const Kind kind = isNumber ? Kind::Numbers : isDate ? Kind::Dates : Kind::Other;
        const bool isFirst = m_statistics.count == 1;
        if (kind == Kind::Other || (!isFirst && kind != m_statistics.kind)) {
            m_isMixed = true;
            return;
        }
        m_statistics.kind = kind;
        if (isNumber)
            addNumber(cell, isFirst);
        else
            addDate(cell, isFirst);
    }

    KNCellStatistics statistics() const
    {
        KNCellStatistics result = m_statistics;
        if (m_isMixed) {
            result = {};
            result.count = m_statistics.count;
            result.nullCount = m_statistics.nullCount;
        }
        if (result.kind != Kind::Numbers)
            return result;
        const double total = m_exact.toDouble() + m_floating.value();
        result.sum = m_hasFloating ? KNValue(total).displayText() : m_exact.text();
        result.average = m_hasFloating ? KNValue(total / static_cast<double>(result.count)).displayText()
                                       : m_exact.average(result.count);
        return result;
    }

private:
    using Kind = KNCellStatistics::Kind;

    void addNumber(const KNRowCell &cell, bool isFirst)
    {
        const KNValue number = cell.storedValue();
        m_hasFloating = m_hasFloating || isFloating(cell);
        if (isFloating(cell))
            m_floating.add(number.toDouble());
        else
            m_exact.add(number.decimal());
        keepExtremes(cell, number, isFirst);
    }

    /// Compares exactly unless one of the numbers is floating.
    void keepExtremes(const KNRowCell &cell, const KNValue &number, bool isFirst)
    {
        const auto isLess = [](const KNValue &a, const KNValue &b) {
            const bool isExact = a.kind() != KNValue::Kind::Double && a.kind() != KNValue::Kind::Float &&
                                 b.kind() != KNValue::Kind::Double && b.kind() != KNValue::Kind::Float;
            return isExact ? a.decimal() < b.decimal() : a.toDouble() < b.toDouble();
        };
        if (isFirst || isLess(number, m_minimum)) {
            m_minimum = number;
            m_statistics.minimum = cell;
        }
        if (isFirst || isLess(m_maximum, number)) {
            m_maximum = number;
            m_statistics.maximum = cell;
        }
    }

    /// A time of day is not comparable with a date.
    void addDate(const KNRowCell &cell, bool isFirst)
    {
        const KNDateTime date = cell.dateTime();
        const auto isTime = [](const KNRowCell &each) {
            return each.dateTime().parts == KNDateTime::Parts::Time;
        };
        if (!isFirst && isTime(cell) != isTime(m_statistics.minimum)) {
            m_isMixed = true;
            return;
        }
        if (isFirst || date.ticks < m_statistics.minimum.dateTime().ticks)
            m_statistics.minimum = cell;
        if (isFirst || date.ticks > m_statistics.maximum.dateTime().ticks)
            m_statistics.maximum = cell;
    }

    KNCellStatistics m_statistics;
    bool m_isMixed = false;
    bool m_hasFloating = false;
    KNExactSum m_exact;
    FloatingSum m_floating;
    KNValue m_minimum;
    KNValue m_maximum;
};

} // namespace

std::optional<KNCellStatistics> KNCellStatistics::of(const KNDatabaseResultSet &result,
                                                     const KNRowOrderPtr &order, const QList<Range> &ranges,
                                                     const std::atomic<bool> &cancelled)
{
    Collector collector;
    KNRowReader reader(result.rows());
    for (const auto &[rows, columns] : ranges) {
        for (qsizetype row = rows.first; row < rows.first + rows.count; ++row) {
            if (row % RowsBetweenLooks == 0 && cancelled)
                return std::nullopt;
            reader.seek(order ? qsizetype{order->at(static_cast<std::size_t>(row))} : row);
            qsizetype next = 0;
            for (const qsizetype column : columns) {
                for (; next < column; ++next)
                    reader.next();
                ++next;
                collector.add(reader.next());
            }
        }
    }
    if (cancelled)
        return std::nullopt;
    return collector.statistics();
}
