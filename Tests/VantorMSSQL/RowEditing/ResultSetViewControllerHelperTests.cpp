#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "RowEditing/MSSQLResultSetViewControllerHelper.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <QTimeZone>

namespace {

using Helper = MSSQLResultSetViewControllerHelper;

std::unique_ptr<ResultSetViewControllerHelper> helperFor(const QList<int> &types)
{
    auto helper = MSSQLDatabaseConnectionDetails().createResultSetViewControllerHelper();
    helper->setColumnTypes(types);
    return helper;
}

QString shown(int type, const KNValue &value)
{
    return helperFor({type})->stringValueForRowArray({value}, 0, false);
}

const KNValue leapDay(QDateTime(QDate(2024, 2, 29), QTime(13, 45, 7, 123), Qt::UTC));

} // namespace

TEST(ResultColumnKind, FollowsTheTypeNumber)
{
    const QList<QPair<Helper::DataType, QList<int>>> kinds = {
        {Helper::Text, {35, 43, 47}},
        {Helper::DateAndTime, {42, 58, 61, 111}},
        {Helper::Date, {40}},
        {Helper::Time, {41, 51, 188}},
        {Helper::Boolean, {50, 98}},
        {Helper::Integer, {48, 52, 56, 127}},
        {Helper::Real, {59, 62, 106, 108}},
    };
    QMap<int, int> known;
    for (const auto &[kind, types] : kinds) {
        for (const int type : types)
            known.insert(type, kind);
    }
    for (int type = 0; type < 256; ++type) {
        const auto helper = helperFor({56, type});
        EXPECT_EQ(helper->dataTypeForTableColumnIndex(1, KNValue()), known.value(type, 0)) << type;
        EXPECT_EQ(helper->dataTypeForTableColumn(1, KNValue()), known.value(type, 0)) << type;
        EXPECT_EQ(helper->dataTypeForTableColumn(QStringLiteral("1"), KNValue()), known.value(type, 0));
    }
}

TEST(ResultColumnKind, MatchesNumbersOfHost)
{
    EXPECT_EQ(Helper::Other, 0);
    EXPECT_EQ(Helper::Text, 1);
    EXPECT_EQ(Helper::DateAndTime, 2);
    EXPECT_EQ(Helper::Date, 3);
    EXPECT_EQ(Helper::Time, 4);
    EXPECT_EQ(Helper::Boolean, 7);
    EXPECT_EQ(Helper::Integer, 8);
    EXPECT_EQ(Helper::Real, 9);
}

TEST(ResultColumnKind, IsOtherOutsideOfTheColumns)
{
    const auto helper = helperFor({56});
    EXPECT_EQ(helper->dataTypeForTableColumnIndex(-1, KNValue()), Helper::Other);
    EXPECT_EQ(helper->dataTypeForTableColumnIndex(1, KNValue()), Helper::Other);
    EXPECT_TRUE(helper->typeNameForColumn(1).isNull());
    EXPECT_EQ(helper->typeNameForColumn(0), QStringLiteral("int"));
}

TEST(ResultDates, InATimeColumnShowTheTime)
{
    for (const int type : {41, 51, 188})
        EXPECT_EQ(shown(type, leapDay), QStringLiteral("13:45:07:123")) << type;
}

TEST(ResultDates, InADateColumnShowTheDate)
{
    EXPECT_EQ(shown(40, leapDay), QStringLiteral("2024-02-29"));
}

TEST(ResultDates, InADateAndTimeColumnShowBoth)
{
    for (const int type : {42, 58, 61, 111})
        EXPECT_EQ(shown(type, leapDay), QStringLiteral("2024-02-29 13:45:07:123")) << type;
}

TEST(ResultDates, InAnyOtherColumnShowTheDate)
{
    EXPECT_EQ(shown(47, leapDay), QStringLiteral("2024-02-29"));
    EXPECT_EQ(shown(0, leapDay), QStringLiteral("2024-02-29"));
}

TEST(ResultDates, AreCutToTheMillisecondAndReachAllYears)
{
    const KNValue fine(KNDateTime{.ticks = 1239999, .parts = KNDateTime::Parts::Time, .fractionDigits = 7});
    EXPECT_EQ(shown(41, fine), QStringLiteral("00:00:00:123"));
    const KNValue first(QDateTime(QDate(1, 1, 1), QTime(0, 0), Qt::UTC));
    EXPECT_EQ(shown(42, first), QStringLiteral("0001-01-01 00:00:00:000"));
    const KNValue last(QDateTime(QDate(9999, 12, 31), QTime(23, 59, 59, 999), Qt::UTC));
    EXPECT_EQ(shown(42, last), QStringLiteral("9999-12-31 23:59:59:999"));
}

TEST(ResultDates, TheEndOfTheDayIsNotItsBeginning)
{
    const KNValue end(KNDateTime{.ticks = KNDateTime::TicksPerDay, .parts = KNDateTime::Parts::Time});
    EXPECT_EQ(shown(41, end), QStringLiteral("24:00:00:000"));
}

TEST(ResultValues, OfAVariantComeWithAHint)
{
    const auto helper = helperFor({56, 98});
    EXPECT_TRUE(helper->remarkForColumn(0).isNull());
    EXPECT_TRUE(helper->remarkForColumn(1).contains(QStringLiteral("CAST(")));
    EXPECT_TRUE(helper->remarkForColumn(2).isNull());
}

TEST(ResultValues, ThatAreNoDatesShowAsTheyAre)
{
    EXPECT_TRUE(shown(61, KNValue()).isNull());
    EXPECT_EQ(shown(43, KNValue(QStringLiteral("2024-02-29 13:45:07:123 +02:00"))),
              QStringLiteral("2024-02-29 13:45:07:123 +02:00"));
    EXPECT_EQ(shown(50, KNValue(true)), QStringLiteral("1"));
    EXPECT_EQ(shown(106, KNValue(*KNDecimal::fromString(u"1.10"))), QStringLiteral("1.10"));
}

TEST(QuotedColumnName, IsOneNameForAnyContent)
{
    const MSSQLDatabaseConnectionDetails details;
    EXPECT_EQ(details.quotedName(QStringLiteral("Id")), QStringLiteral("Id"));
    EXPECT_EQ(details.quotedName(QStringLiteral("select")), QStringLiteral("[select]"));
    EXPECT_EQ(details.quotedName(QStringLiteral("a.b")), QStringLiteral("[a.b]"));
    EXPECT_EQ(details.quotedName(QStringLiteral("a]b")), QStringLiteral("[a]]b]"));
    EXPECT_EQ(details.quotedName(QStringLiteral("[x]")), QStringLiteral("[[x]]]"));
    EXPECT_EQ(details.quotedName(QString()), QStringLiteral("[]"));
}

TEST(StatementLiteral, RoundTripsValue)
{
    const MSSQLDatabaseConnectionDetails details;
    EXPECT_EQ(details.literal(KNValue()), QStringLiteral("NULL"));
    EXPECT_EQ(details.literal(KNValue(QStringLiteral("NULL"))), QStringLiteral("'NULL'"));
    EXPECT_EQ(details.literal(KNValue(QStringLiteral("O'Brien"))), QStringLiteral("'O''Brien'"));
    EXPECT_EQ(details.literal(KNValue(QStringLiteral("naïve"))), QStringLiteral("N'naïve'"));
    EXPECT_EQ(details.literal(KNValue(QByteArray("\x0a\xff", 2))), QStringLiteral("0x0aff"));
    EXPECT_EQ(details.literal(KNValue(true)), QStringLiteral("1"));
    EXPECT_EQ(details.literal(leapDay), QStringLiteral("'2024-02-29T13:45:07.123'"));
    const KNDateTime offset{
        .ticks = 1, .parts = KNDateTime::Parts::DateAndTime, .fractionDigits = 7, .offsetMinutes = -30};
    EXPECT_EQ(details.literal(KNValue(offset)), QStringLiteral("'1899-12-31T23:30:00.0000001-00:30'"));
    const KNDateTime date{.parts = KNDateTime::Parts::Date};
    EXPECT_EQ(details.literal(KNValue(date)), QStringLiteral("'1900-01-01'"));
}
