#include "Database/KNRowStore.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

KNRow oneOfEach()
{
    return {
        KNValue(),
        KNValue(true),
        KNValue(qint32{-2'147'483'648}),
        KNValue(std::numeric_limits<qint64>::min()),
        KNValue(0.1F),
        KNValue(0.1),
        KNValue(*KNDecimal::fromString(u"-99999999999999999999999999999999999999")),
        KNValue(QStringLiteral("naïve 🐘")),
        KNValue(QDateTime(QDate(1, 1, 1), QTime(23, 59, 59, 999), Qt::UTC)),
        KNValue(QByteArray("\0\xff,", 3)),
        KNValue(QStringLiteral("")),
        KNValue(QByteArray("")),
        KNValue(false),
    };
}

void append(KNRowStore &rows, const KNRow &row)
{
    rows.beginRow();
    for (const KNValue &value : row)
        rows.appendValue(value);
    rows.endRow();
}

} // namespace

TEST(KNRowStore, ReturnsValuesOfEachKind)
{
    KNRowStore rows;
    const KNRow row = oneOfEach();
    rows.setColumnCount(row.size());
    append(rows, row);
    rows.publish();
    EXPECT_EQ(rows.row(0), row);
    for (qsizetype column = 0; column < row.size(); ++column)
        EXPECT_EQ(rows.value(0, column), row.at(column)) << column;
}

TEST(KNRowStore, ShowsRowsOnlyWhenTheyArePublished)
{
    KNRowStore rows;
    rows.setColumnCount(1);
    append(rows, {KNValue(1)});
    EXPECT_EQ(rows.rowCount(), 0);
    EXPECT_TRUE(rows.row(0).isEmpty());
    EXPECT_EQ(rows.publish(), 1);
    EXPECT_EQ(rows.rowCount(), 1);
    EXPECT_EQ(rows.value(0, 0), KNValue(1));
    EXPECT_EQ(rows.publish(), 0);
}

TEST(KNRowStore, IsNullOutsideOfItsRowsAndColumns)
{
    KNRowStore rows;
    rows.setColumnCount(1);
    append(rows, {KNValue(1)});
    rows.publish();
    EXPECT_TRUE(rows.value(0, 1).isNull());
    EXPECT_TRUE(rows.value(0, -1).isNull());
    EXPECT_TRUE(rows.value(1, 0).isNull());
    EXPECT_TRUE(rows.value(-1, 0).isNull());
}

TEST(KNRowStore, KeepsRowsWholeOverManyBlocksOfMixedSizes)
{
    KNRowStore rows;
    rows.setColumnCount(3);
    const auto textOf = [](int i) { return QString(i % 977 == 0 ? 300'000 : i % 50, QChar(u'a' + i % 26)); };
    constexpr int Count = 20'000;
    for (int i = 0; i < Count; ++i)
        append(rows, {KNValue(i), KNValue(textOf(i)), i % 3 ? KNValue(i * 0.5) : KNValue()});
    rows.publish();
    ASSERT_EQ(rows.rowCount(), Count);
    for (int i = 0; i < Count; ++i) {
        ASSERT_EQ(rows.value(i, 0), KNValue(i));
        ASSERT_EQ(rows.value(i, 1), KNValue(textOf(i)));
        ASSERT_EQ(rows.value(i, 2), i % 3 ? KNValue(i * 0.5) : KNValue());
    }
}

TEST(KNRowStore, HoldsAValueLargerThanAnyBlock)
{
    KNRowStore rows;
    rows.setColumnCount(2);
    const QByteArray large(10'000'000, 'x');
    append(rows, {KNValue(7), KNValue(large)});
    append(rows, {KNValue(8), KNValue()});
    rows.publish();
    EXPECT_EQ(rows.value(0, 1).bytes(), large);
    EXPECT_EQ(rows.value(1, 0), KNValue(8));
}

TEST(KNRowStore, HoldsRowsWithoutColumns)
{
    KNRowStore rows;
    for (int i = 0; i < 1000; ++i) {
        rows.beginRow();
        rows.endRow();
    }
    rows.publish();
    EXPECT_EQ(rows.rowCount(), 1000);
    EXPECT_TRUE(rows.row(999).isEmpty());
}

TEST(KNRowStore, ReadsTextThatDoesNotDecodeAsNull)
{
    KNRowStore rows;
    rows.setColumnCount(1);
    rows.beginRow();
    rows.appendText("\xc3(", 2);
    rows.endRow();
    rows.publish();
    EXPECT_TRUE(rows.value(0, 0).isNull());
}

TEST(KNRowStore, KeepsTextWithEmbeddedNulWhole)
{
    KNRowStore rows;
    rows.setColumnCount(1);
    rows.beginRow();
    rows.appendText("a\0b", 3);
    rows.endRow();
    rows.publish();
    EXPECT_EQ(rows.value(0, 0).text(), QString::fromUtf16(u"a\0b", 3));
}

TEST(KNRowStore, ShowsAGuidInItsStandardForm)
{
    const unsigned char bytes[] = {0xFF, 0x19, 0x96, 0x6F, 0x86, 0x8B, 0x11, 0xD0,
                                   0xB4, 0x2D, 0x00, 0xC0, 0x4F, 0xC9, 0x64, 0xFF};
    KNRowStore rows;
    rows.setColumnCount(1);
    rows.beginRow();
    rows.appendGuid(bytes);
    rows.endRow();
    rows.publish();
    EXPECT_EQ(rows.value(0, 0).text(), QStringLiteral("6F9619FF-8B86-D011-B42D-00C04FC964FF"));
}

TEST(KNRowStore, TakesLittleMoreMemoryThanItsValues)
{
    KNRowStore rows;
    rows.setColumnCount(4);
    constexpr int Count = 100'000;
    const QString text(40, QLatin1Char('x'));
    for (int i = 0; i < Count; ++i)
        append(rows, {KNValue(i), KNValue(qint64{i}), KNValue(text), KNValue(i * 0.25)});
    constexpr double ValueBytes = Count * (4.0 + 8 + 40 + 8);
    EXPECT_LT(static_cast<double>(rows.byteSize()), 1.3 * ValueBytes);
}

TEST(KNRowStore, FreesDiscardedRows)
{
    KNRowStore rows;
    rows.setColumnCount(1);
    const QString text(1000, QLatin1Char('x'));
    for (int i = 0; i < 10'000; ++i)
        append(rows, {KNValue(text)});
    rows.publish();
    const qsizetype before = rows.byteSize();
    rows.discardBefore(9'999);
    EXPECT_LT(rows.byteSize(), before / 4);
    EXPECT_TRUE(rows.value(9'998, 0).isNull());
    EXPECT_EQ(rows.value(9'999, 0).text(), text);
    EXPECT_EQ(rows.rowCount(), 10'000);
}

TEST(KNRowStore, KeepsNoMoreRowsThanItsLimit)
{
    KNRowStore rows;
    rows.setColumnCount(1);
    rows.setRowLimit(3);
    const QString text(3000, u'x'); // so that blocks change in the middle of rows
    for (int i = 0; i < 10; ++i) {
        rows.beginRow();
        rows.appendValue(KNValue(text + QString::number(i)));
        rows.endRow();
        rows.publish();
    }
    EXPECT_EQ(rows.rowCount(), 3);
    EXPECT_EQ(rows.droppedRowCount(), 7);
    EXPECT_EQ(rows.value(0, 0).text(), text + u'0');
    EXPECT_EQ(rows.value(2, 0).text(), text + u'2');
    EXPECT_TRUE(rows.value(3, 0).isNull());
}

TEST(KNRowStore, AWriterWithReadAheadWaitsForItsReader)
{
    KNRowStore rows;
    rows.setColumnCount(1);
    rows.setReadAhead(2);
    append(rows, {KNValue(1)});
    rows.publish();
    EXPECT_TRUE(rows.waitForRoom(std::chrono::milliseconds(0)));
    append(rows, {KNValue(2)});
    rows.publish();
    EXPECT_FALSE(rows.waitForRoom(std::chrono::milliseconds(1)));
    std::thread reader([&] { rows.discardBefore(1); });
    EXPECT_TRUE(rows.waitForRoom(std::chrono::seconds(30)));
    reader.join();
}

TEST(KNRowStore, AReaderWaitsForRowsUntilTheStoreIsClosed)
{
    KNRowStore rows;
    rows.setColumnCount(1);
    std::thread writer([&] {
        append(rows, {KNValue(1)});
        rows.publish();
        rows.close();
    });
    EXPECT_TRUE(rows.waitForMoreThan(0, std::chrono::seconds(30)));
    EXPECT_FALSE(rows.waitForMoreThan(1, std::chrono::seconds(30)));
    writer.join();
}
