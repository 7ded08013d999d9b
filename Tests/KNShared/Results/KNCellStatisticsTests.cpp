#include "Results/KNCellStatistics.h"
#include "Support/PrintQt.h"
#include "Support/ResultTesting.h"

#include <gtest/gtest.h>

namespace KNCellStatisticsTests {

using namespace ResultTesting;

namespace {

using Kind = KNCellStatistics::Kind;

/// The statistics of one column; its cells stay valid as long as this.
struct Column
{
    explicit Column(const QList<KNValue> &values)
    {
        QList<KNRow> rows;
        for (const KNValue &value : values)
            rows.append({value});
        source = result({QStringLiteral("a")}, rows);
        of = *KNCellStatistics::of(*source, nullptr, {{{0, values.size()}, {0}}}, false);
    }
    QString minimum() const { return of.minimum.storedValue().displayText(); }
    QString maximum() const { return of.maximum.storedValue().displayText(); }

    KNDatabaseResultSetPtr source;
    KNCellStatistics of;
};

KNValue date(qint64 ticks, KNDateTime::Parts parts = KNDateTime::Parts::Date)
{
    return KNValue(KNDateTime{.ticks = ticks, .parts = parts});
}

} // namespace

TEST(CellStatistics, AddNumbersAndLeaveNullOut)
{
    const Column column({KNValue(1), KNValue(), KNValue(2), KNValue(6), KNValue()});
    EXPECT_EQ(column.of.kind, Kind::Numbers);
    EXPECT_EQ(column.of.count, 3);
    EXPECT_EQ(column.of.nullCount, 2);
    EXPECT_EQ(column.of.sum, QStringLiteral("9"));
    EXPECT_EQ(column.of.average, QStringLiteral("3"));
    EXPECT_EQ(column.minimum(), QStringLiteral("1"));
    EXPECT_EQ(column.maximum(), QStringLiteral("6"));
}

TEST(CellStatistics, AreExactBeyondDoublePrecision)
{
    constexpr qint64 Large = std::numeric_limits<qint64>::max();
    const Column integers({KNValue(Large), KNValue(Large), KNValue(Large - 1)});
    EXPECT_EQ(integers.of.sum, QStringLiteral("27670116110564327420"));
    EXPECT_EQ(integers.of.average, QStringLiteral("9223372036854775806.666667"));
    EXPECT_EQ(integers.minimum(), QStringLiteral("9223372036854775806"));
    EXPECT_EQ(integers.maximum(), QStringLiteral("9223372036854775807"));
    const Column decimals({decimal(u"99999999999999999999999999999999999999"),
                           decimal(u"99999999999999999999999999999999999998"), decimal(u"0.01")});
    EXPECT_EQ(decimals.of.sum, QStringLiteral("199999999999999999999999999999999999997.01"));
    EXPECT_EQ(decimals.minimum(), QStringLiteral("0.01"));
    EXPECT_EQ(Column(QList<KNValue>(10, decimal(u"0.1"))).of.sum, QStringLiteral("1.0"));
}

TEST(CellStatistics, RoundAveragesHalfAwayFromZero)
{
    EXPECT_EQ(Column({KNValue(1), KNValue(2)}).of.average, QStringLiteral("1.5"));
    EXPECT_EQ(Column({KNValue(1), KNValue(1), KNValue(2)}).of.average, QStringLiteral("1.333333"));
    EXPECT_EQ(Column({KNValue(-1), KNValue(-2), KNValue(-2)}).of.average, QStringLiteral("-1.666667"));
    EXPECT_EQ(Column({decimal(u"0.0001"), decimal(u"-0.0002")}).of.sum, QStringLiteral("-0.0001"));
    EXPECT_EQ(Column({decimal(u"0.0001"), decimal(u"-0.0002")}).of.average, QStringLiteral("-0.00005"));
}

TEST(CellStatistics, AddMoneyExactly)
{
    const auto source = std::make_shared<KNDatabaseResultSet>();
    source->setColumns({QStringLiteral("a")}, {122});
    for (int row = 0; row < 2; ++row) {
        source->rows().beginRow();
        source->rows().appendFloatMoney(2147483647);
        source->rows().endRow();
    }
    source->rows().publish();
    EXPECT_EQ(KNCellStatistics::of(*source, nullptr, {{{0, 2}, {0}}}, false)->sum,
              QStringLiteral("429496.7294"));
}

TEST(CellStatistics, AddFloatingNumbersInOneSum)
{
    const Column column({KNValue(0.5), KNValue(1), decimal(u"1.25")});
    EXPECT_EQ(column.of.sum, QStringLiteral("2.75"));
    EXPECT_EQ(column.minimum(), QStringLiteral("0.5"));
    EXPECT_EQ(column.maximum(), QStringLiteral("1.25"));
    EXPECT_EQ(Column({KNValue(1e100), KNValue(1.0), KNValue(-1e100)}).of.sum, QStringLiteral("1"));
}

TEST(CellStatistics, GiveTheFirstAndLastOfDates)
{
    const Column column({date(2 * KNDateTime::TicksPerDay), KNValue(), date(0)});
    EXPECT_EQ(column.of.kind, Kind::Dates);
    EXPECT_EQ(column.of.count, 2);
    EXPECT_EQ(column.minimum(), QStringLiteral("1900-01-01"));
    EXPECT_EQ(column.maximum(), QStringLiteral("1900-01-03"));
    EXPECT_TRUE(column.of.sum.isNull());
}

TEST(CellStatistics, OnlyCountTextAndMixedValues)
{
    for (const Column &column :
         {Column({text("1"), text("2")}), Column({KNValue(1), text("2")}), Column({KNValue(1), date(0)}),
          Column({date(0), date(0, KNDateTime::Parts::Time)})}) {
        EXPECT_EQ(column.of.kind, Kind::Other);
        EXPECT_EQ(column.of.count, 2);
        EXPECT_TRUE(column.of.sum.isNull());
        EXPECT_EQ(column.of.minimum.tag, KNRowCell::Null);
    }
    EXPECT_EQ(Column({KNValue(), KNValue()}).of.nullCount, 2);
    EXPECT_TRUE(Column({KNValue(), KNValue()}).of.sum.isNull());
}

TEST(CellStatistics, ReadTheDisplayedRowsOfTheirRanges)
{
    const auto order = std::make_shared<KNRowOrder>(KNRowOrder{9, 8, 7});
    const auto source = result({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")},
                               QList<KNRow>(10, {KNValue(1), text("x"), KNValue(100)}));
    const auto both = KNCellStatistics::of(*source, nullptr, {{{0, 2}, {0, 2}}, {{5, 1}, {2}}}, false);
    EXPECT_EQ(both->sum, QStringLiteral("302"));
    const auto ordered = KNCellStatistics::of(*numberedRows(10), order, {{{1, 2}, {0}}}, false);
    EXPECT_EQ(ordered->sum, QStringLiteral("15"));
}

TEST(CellStatistics, StopWhenCancelled)
{
    EXPECT_FALSE(KNCellStatistics::of(*numberedRows(10), nullptr, {{{0, 10}, {0}}}, true));
}

} // namespace KNCellStatisticsTests
