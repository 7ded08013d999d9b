#include "Results/KNDistinctValues.h"
#include "Results/KNRowArrangement.h"
#include "Support/PrintQt.h"
#include "Support/ResultTesting.h"

#include <gtest/gtest.h>

using namespace ResultTesting;

namespace {

QString shown(const KNRowCell &cell, qsizetype)
{
    return cell.storedValue().displayText();
}

/// The numbers of the rows as they are shown.
std::vector<quint32> arranged(const KNDatabaseResultSetPtr &result, const KNRowArrangement &arrangement)
{
    const std::atomic<bool> cancelled = false;
    const KNRowOrderPtr order = arrangement.order(*result, shown, cancelled);
    return order ? *order : KNRowOrder{};
}

KNDatabaseResultSetPtr column(const QList<KNValue> &values)
{
    QList<KNRow> rows;
    for (const KNValue &value : values)
        rows.append({value});
    return result({QStringLiteral("a")}, rows);
}

std::vector<quint32> sorted(const QList<KNValue> &values, Qt::SortOrder order = Qt::AscendingOrder)
{
    return arranged(column(values), {.sortColumn = 0, .sortOrder = order});
}

std::vector<quint32> filtered(const QList<KNValue> &values, const char *text)
{
    return arranged(column(values), {.filterText = QString::fromUtf8(text)});
}

using Rows = std::vector<quint32>;

} // namespace

TEST(SortedRows, OrderNumbersByValue)
{
    EXPECT_EQ(sorted({KNValue(10), KNValue(9), KNValue(-1), KNValue(100)}), (Rows{2, 1, 0, 3}));
    EXPECT_EQ(sorted({KNValue(0.5), KNValue(-0.5), KNValue(1e300), KNValue(-1e300)}), (Rows{3, 1, 0, 2}));
    EXPECT_EQ(sorted({decimal(u"10.5"), decimal(u"9.5"), decimal(u"-10.5")}), (Rows{2, 1, 0}));
}

TEST(SortedRows, OrderNumbersBeyondDoublePrecision)
{
    constexpr qint64 Large = std::numeric_limits<qint64>::max();
    EXPECT_EQ(sorted({KNValue(Large), KNValue(Large - 1), KNValue(Large - 2)}), (Rows{2, 1, 0}));
    EXPECT_EQ(sorted({KNValue(-Large), KNValue(-Large + 1), KNValue(-Large - 1)}), (Rows{2, 0, 1}));
    EXPECT_EQ(sorted({decimal(u"12345678901234567890123456789012345678"),
                      decimal(u"12345678901234567890123456789012345677"),
                      decimal(u"-12345678901234567890123456789012345678")}),
              (Rows{2, 1, 0}));
}

TEST(SortedRows, OrderDatesByTime)
{
    const auto day = [](int year) { return KNValue(QDateTime(QDate(year, 1, 1), QTime(0, 0), Qt::UTC)); };
    EXPECT_EQ(sorted({day(2000), day(1), day(9999), day(1899)}), (Rows{1, 3, 0, 2}));
}

TEST(SortedRows, PutNullFirstAscendingAndLastDescending)
{
    EXPECT_EQ(sorted({KNValue(1), KNValue(), KNValue(-1)}), (Rows{1, 2, 0}));
    EXPECT_EQ(sorted({KNValue(1), KNValue(), KNValue(-1)}, Qt::DescendingOrder), (Rows{0, 2, 1}));
    EXPECT_EQ(sorted({text(""), KNValue()}), (Rows{1, 0}));
}

TEST(SortedRows, OrderTextIgnoringCaseThenExactly)
{
    EXPECT_EQ(sorted({text("b"), text("A"), text("a"), text("B"), text("")}), (Rows{4, 1, 2, 3, 0}));
    EXPECT_EQ(sorted({text("abcdE"), text("ABCDd"), text("abcd")}), (Rows{2, 1, 0}));
    EXPECT_EQ(sorted({text("Ärger"), text("ärger"), text("zebra"), text("Ärgeb")}), (Rows{2, 3, 0, 1}));
    EXPECT_EQ(sorted({text("🐘"), text("z"), text("ö")}), (Rows{1, 2, 0}));
}

TEST(SortedRows, OrderBytesByValueAndLength)
{
    const auto bytes = [](const char *data, qsizetype size) { return KNValue(QByteArray(data, size)); };
    EXPECT_EQ(sorted({bytes("\xff", 1), bytes("\x00\x00", 2), bytes("\x00", 1), bytes("123456789", 9),
                      bytes("123456788", 9)}),
              (Rows{2, 1, 4, 3, 0}));
}

TEST(SortedRows, OrderGuidsByText)
{
    const auto guids = std::make_shared<KNDatabaseResultSet>();
    guids->setColumns({QStringLiteral("a")}, {36});
    const auto append = [&](int changed, unsigned char value) {
        unsigned char bytes[16] = {};
        bytes[changed] = value;
        guids->rows().beginRow();
        guids->rows().appendGuid(bytes);
        guids->rows().endRow();
    };
    append(0, 1);  // 00000001-0000-...
    append(3, 1);  // 01000000-0000-...
    append(15, 9); // ...-000000000009
    append(15, 1);
    append(4, 1); // 00000000-0001-...
    guids->rows().publish();
    EXPECT_EQ(arranged(guids, {.sortColumn = 0}), (Rows{3, 2, 4, 0, 1}));
}

TEST(SortedRows, KeepArrivalOrderOfEqualValues)
{
    const QList<KNValue> values = {KNValue(2), KNValue(1), KNValue(2), KNValue(1)};
    EXPECT_EQ(sorted(values), (Rows{1, 3, 0, 2}));
    EXPECT_EQ(sorted(values, Qt::DescendingOrder), (Rows{0, 2, 1, 3}));
    EXPECT_EQ(sorted({decimal(u"1.0"), decimal(u"1.00"), KNValue(1)}), (Rows{0, 1, 2}));
}

TEST(SortedRows, UseOnlyTheSortColumn)
{
    const auto rows = result({QStringLiteral("a"), QStringLiteral("b")},
                             {{text("x"), KNValue(2)}, {text("y"), KNValue(1)}});
    EXPECT_EQ(arranged(rows, {.sortColumn = 1}), (Rows{1, 0}));
    EXPECT_EQ(arranged(rows, {.sortColumn = 0}), (Rows{0, 1}));
}

TEST(FilteredRows, HoldTheTextInAnyCase)
{
    EXPECT_EQ(filtered({text("Anna"), text("Bob"), text("HANNA"), KNValue()}, "ann"), (Rows{0, 2}));
    EXPECT_EQ(filtered({text("Straße"), text("ÄRGER"), text("ärger")}, "Ärg"), (Rows{1, 2}));
    EXPECT_EQ(filtered({text("naïve"), text("native")}, "ve"), (Rows{0, 1}));
    EXPECT_EQ(filtered({text("a")}, "longer than the value"), Rows{});
}

TEST(FilteredRows, MatchDisplayedText)
{
    EXPECT_EQ(
        filtered({KNValue(1234), KNValue(5.25), decimal(u"12.50"), KNValue(QByteArray("\x12\xab", 2))}, "12"),
        (Rows{0, 2, 3}));
    EXPECT_EQ(filtered({KNValue(QByteArray("\xab", 1))}, "0xab"), Rows{0});
    EXPECT_EQ(filtered({KNValue(), text("NULL")}, "null"), Rows{1});
}

TEST(FilteredRows, AreThoseOfOneColumnWhenItIsChosen)
{
    const auto rows =
        result({QStringLiteral("a"), QStringLiteral("b")}, {{text("x"), text("y")}, {text("y"), text("x")}});
    EXPECT_EQ(arranged(rows, {.filterText = QStringLiteral("x")}), (Rows{0, 1}));
    EXPECT_EQ(arranged(rows, {.filterText = QStringLiteral("x"), .filterColumn = 1}), (Rows{1}));
}

TEST(FilteredRows, AreSortedAsWell)
{
    const KNRowArrangement arrangement{
        .sortColumn = 0, .sortOrder = Qt::DescendingOrder, .filterText = QStringLiteral("9")};
    EXPECT_EQ(arranged(numberedRows(100), arrangement).front(), 99U);
    EXPECT_EQ(arranged(numberedRows(100), arrangement).size(), 19U);
}

TEST(Arranging, StopsWhenCancelled)
{
    const auto rows = numberedRows(10'000);
    const std::atomic<bool> cancelled = true;
    EXPECT_EQ(KNRowArrangement{.sortColumn = 0}.order(*rows, shown, cancelled), nullptr);
    EXPECT_EQ(KNRowArrangement{.filterText = QStringLiteral("1")}.order(*rows, shown, cancelled), nullptr);
}

TEST(SortedRows, OrderDatesWithOffsetsByInstant)
{
    const auto at = [](qint64 minutes, qint16 offset) {
        return KNValue(KNDateTime{.ticks = minutes * KNDateTime::TicksPerMinute, .offsetMinutes = offset});
    };
    // 12:00 +02:00 is earlier than 11:00 +00:00 and later than 09:30 +00:00.
    EXPECT_EQ(sorted({at(600, 120), at(660, 0), at(570, 0)}), (std::vector<quint32>{2, 0, 1}));
}

TEST(SortedRows, OrderDoubleValuesByStoredValue)
{
    const auto result = std::make_shared<KNDatabaseResultSet>();
    result->setColumns({QStringLiteral("a"), QStringLiteral("b")}, {122, 98});
    KNRowStore &rows = result->rows();
    // As floats the first two amounts are equal.
    const std::pair<qint32, const char *> values[] = {{2147483647, "\2"}, {2147483646, "\3"}, {-1, "\1"}};
    for (const auto &[amount, byte] : values) {
        rows.beginRow();
        rows.appendFloatMoney(amount);
        rows.appendFlagBytes(byte, 1);
        rows.endRow();
    }
    rows.publish();
    result->setFinished();
    EXPECT_EQ(arranged(result, {.sortColumn = 0}), (std::vector<quint32>{2, 1, 0}));
    EXPECT_EQ(arranged(result, {.sortColumn = 1}), (std::vector<quint32>{2, 0, 1}));
    EXPECT_EQ(arranged(result, {.filterText = QStringLiteral("214748.3646")}), (std::vector<quint32>{1}));
}

TEST(ColumnFilters, ApplyTogetherWithTheTextOfAnyColumn)
{
    const auto rows = result({QStringLiteral("a"), QStringLiteral("b")}, {{text("red apple"), KNValue(1)},
                                                                          {text("green apple"), KNValue(2)},
                                                                          {text("red plum"), KNValue(2)},
                                                                          {KNValue(), KNValue(2)}});
    KNRowArrangement arrangement;
    arrangement.setColumnFilter({.column = 0, .text = QStringLiteral("APPLE")});
    EXPECT_EQ(arranged(rows, arrangement), (Rows{0, 1}));
    arrangement.setColumnFilter({.column = 1, .choosesValues = true, .values = {QStringLiteral("2")}});
    EXPECT_EQ(arranged(rows, arrangement), (Rows{1}));
    arrangement.setColumnFilter({.column = 0});
    EXPECT_EQ(arranged(rows, arrangement), (Rows{1, 2, 3}));
    EXPECT_EQ(arrangement.filterOf(0), nullptr);
    arrangement.filterText = QStringLiteral("red");
    EXPECT_EQ(arranged(rows, arrangement), (Rows{2}));
}

TEST(ColumnFilters, ChooseNullAndEmptyTextSeparately)
{
    const auto rows = column({text(""), KNValue(), text("x")});
    const auto chosen = [&](const QSet<QString> &values, bool includesNull) {
        KNRowArrangement arrangement;
        arrangement.setColumnFilter(
            {.column = 0, .choosesValues = true, .values = values, .includesNull = includesNull});
        return arranged(rows, arrangement);
    };
    EXPECT_EQ(chosen({QStringLiteral("")}, false), (Rows{0}));
    EXPECT_EQ(chosen({}, true), (Rows{1}));
    EXPECT_EQ(chosen({}, false), Rows{});
    EXPECT_EQ(chosen({QStringLiteral("x")}, true), (Rows{1, 2}));
}

TEST(DistinctValues, AreSortedByValueWithoutNull)
{
    const auto values = column({KNValue(10), KNValue(9), KNValue(), KNValue(10)});
    const auto distinct = KNDistinctValues::of(*values, 0, shown, false);
    EXPECT_EQ(distinct->texts, (QStringList{QStringLiteral("9"), QStringLiteral("10")}));
    EXPECT_TRUE(distinct->hasNull);
    EXPECT_TRUE(distinct->areAll);
}

TEST(DistinctValues, AreLimited)
{
    const auto many = KNDistinctValues::of(*numberedRows(5000), 0, shown, false);
    EXPECT_FALSE(many->areAll);
    EXPECT_EQ(many->texts.size(), KNDistinctValues::MostValues);
    const auto huge = column({KNValue(QString(900'000, QLatin1Char('x'))),
                              KNValue(QString(900'000, QLatin1Char('y'))), text("z")});
    EXPECT_FALSE(KNDistinctValues::of(*huge, 0, shown, false)->areAll);
    EXPECT_FALSE(KNDistinctValues::of(*numberedRows(5000), 0, shown, true));
}
