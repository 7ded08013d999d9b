#include "Database/KNRowReader.h"
#include "Support/PrintQt.h"
#include "Support/ResultTesting.h"

#include <gtest/gtest.h>

using namespace ResultTesting;

TEST(KNRowReader, ReadsRowsInAnyOrder)
{
    constexpr int Count = 100'000;
    const auto rows = numberedRows(Count);
    KNRowReader reader(rows->rows());
    int wrong = 0;
    for (int i = 0; i < Count; ++i) {
        const int row = static_cast<int>((qint64{i} * 7919) % Count);
        if (reader.cell(row, 0).value() != KNValue(row) ||
            reader.cell(row, 1).value() != KNValue(QStringLiteral("row %1").arg(row)))
            ++wrong;
    }
    EXPECT_EQ(wrong, 0);
}

TEST(KNRowReader, HasNullOutsideOfRowsAndColumns)
{
    const auto rows = numberedRows(2);
    KNRowReader reader(rows->rows());
    EXPECT_FALSE(reader.seek(2));
    EXPECT_FALSE(reader.seek(-1));
    EXPECT_EQ(reader.cell(2, 0).tag, KNRowCell::Null);
    EXPECT_EQ(reader.cell(0, 2).tag, KNRowCell::Null);
    EXPECT_EQ(reader.cell(0, -1).tag, KNRowCell::Null);
    ASSERT_TRUE(reader.seek(1));
    reader.next();
    reader.next();
    EXPECT_EQ(reader.next().tag, KNRowCell::Null);
}

TEST(KNRowReader, SeesRowsThatArePublishedLater)
{
    KNDatabaseResultSet result;
    result.setColumns({QStringLiteral("a")}, {56});
    result.addRows({{KNValue(1)}});
    KNRowReader reader(result.rows());
    EXPECT_TRUE(reader.seek(0));
    EXPECT_FALSE(reader.seek(1));
    result.addRows({{KNValue(2)}});
    EXPECT_EQ(reader.cell(1, 0).value(), KNValue(2));
}

TEST(KNRowCell, IsCutWithoutHalfACharacter)
{
    const auto rows =
        result({QStringLiteral("a")}, {{text("aö🐘")}, {KNValue(QByteArray("1234"))}, {KNValue(7)}});
    KNRowReader reader(rows->rows());
    const KNRowCell cell = reader.cell(0, 0);
    EXPECT_EQ(cell.value(7), text("aö🐘"));
    EXPECT_EQ(cell.value(6), text("aö"));
    EXPECT_EQ(cell.value(3), text("aö"));
    EXPECT_EQ(cell.value(2), text("a"));
    EXPECT_EQ(cell.value(0), text(""));
    EXPECT_EQ(reader.cell(1, 0).value(2), KNValue(QByteArray("12")));
    EXPECT_EQ(reader.cell(2, 0).value(0), KNValue(7));
}
