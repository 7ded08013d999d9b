#include "Foundation/KNDateTime.h"

#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using Parts = KNDateTime::Parts;

KNDateTime at(int year, int month, int day, QTime time = QTime(0, 0))
{
    return KNDateTime::fromQDateTime(QDateTime(QDate(year, month, day), time, Qt::UTC));
}

} // namespace

TEST(KNDateTime, CountsFromTheStartOf1900)
{
    EXPECT_EQ(at(1900, 1, 1).ticks, 0);
    EXPECT_EQ(KNDateTime().toString(), QStringLiteral("1900-01-01 00:00:00.000"));
    EXPECT_EQ(at(1900, 1, 2).ticks, 86'400 * KNDateTime::TicksPerSecond);
}

TEST(KNDateTime, ShowsOnlyTheDeclaredParts)
{
    KNDateTime value = at(2020, 1, 2, QTime(3, 4, 5, 123));
    value.ticks += 4567;
    value.fractionDigits = 7;
    EXPECT_EQ(value.toString(), QStringLiteral("2020-01-02 03:04:05.1234567"));
    value.parts = Parts::Date;
    EXPECT_EQ(value.toString(), QStringLiteral("2020-01-02"));
    value.parts = Parts::Time;
    EXPECT_EQ(value.toString(), QStringLiteral("03:04:05.1234567"));
}

TEST(KNDateTime, ShowsOnlyTheDeclaredDigits)
{
    KNDateTime value = at(2020, 1, 2, QTime(3, 4, 5, 999));
    value.ticks += 9999;
    value.parts = Parts::Time;
    const char *const texts[] = {"03:04:05",      "03:04:05.9",     "03:04:05.99",     "03:04:05.999",
                                 "03:04:05.9999", "03:04:05.99999", "03:04:05.999999", "03:04:05.9999999"};
    for (quint8 digits = 0; digits <= 7; ++digits) {
        value.fractionDigits = digits;
        EXPECT_EQ(value.toString(), QString::fromLatin1(texts[digits]));
    }
}

TEST(KNDateTime, KeepsTheTimeOfDayPositiveBefore1900)
{
    const KNDateTime value = at(1899, 12, 31, QTime(23, 59, 59, 997));
    EXPECT_LT(value.ticks, 0);
    EXPECT_EQ(value.toString(), QStringLiteral("1899-12-31 23:59:59.997"));
    EXPECT_EQ(at(1753, 1, 1).toString(), QStringLiteral("1753-01-01 00:00:00.000"));
    EXPECT_EQ(at(1, 1, 1).toString(), QStringLiteral("0001-01-01 00:00:00.000"));
}

TEST(KNDateTime, ReachesTheLastTickOf9999)
{
    KNDateTime value = at(9999, 12, 31, QTime(23, 59, 59, 999));
    value.ticks += 9999;
    value.fractionDigits = 7;
    EXPECT_EQ(value.toString(), QStringLiteral("9999-12-31 23:59:59.9999999"));
    EXPECT_EQ(value.toQDateTime(), QDateTime(QDate(9999, 12, 31), QTime(23, 59, 59, 999), Qt::UTC));
}

TEST(KNDateTime, BecomesUtcWithMillisecondsCutTowardsThePast)
{
    EXPECT_EQ((KNDateTime{.ticks = 19'999}).toQDateTime(),
              QDateTime(QDate(1900, 1, 1), QTime(0, 0, 0, 1), Qt::UTC));
    EXPECT_EQ((KNDateTime{.ticks = -1}).toQDateTime(),
              QDateTime(QDate(1899, 12, 31), QTime(23, 59, 59, 999), Qt::UTC));
    EXPECT_EQ(KNDateTime().toQDateTime().timeSpec(), Qt::UTC);
}

TEST(KNDateTime, TakesTheInstantOfADateWithAnOffset)
{
    const QDateTime withOffset(QDate(2020, 1, 1), QTime(1, 30), Qt::OffsetFromUTC, 2 * 3600);
    EXPECT_EQ(KNDateTime::fromQDateTime(withOffset).toString(), QStringLiteral("2019-12-31 23:30:00.000"));
}

TEST(KNDateTime, SurvivesTheWayThroughQDateTime)
{
    for (const qint64 days : {-693'595, -53'690, -1, 0, 1, 25'567, 2'958'463}) {
        const KNDateTime value{.ticks = days * 864'000'000'000 + 1'230'000};
        EXPECT_EQ(KNDateTime::fromQDateTime(value.toQDateTime()), value);
    }
}

TEST(KNDateTime, TakesTheBaseDateForAnInvalidOneAndStaysInReachForAFarOne)
{
    EXPECT_EQ(KNDateTime::fromQDateTime(QDateTime()).ticks, 0);
    const auto farthest = [](qint64 milliseconds) {
        return KNDateTime::fromQDateTime(QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC)).ticks;
    };
    EXPECT_GT(farthest(std::numeric_limits<qint64>::max()), at(9999, 12, 31).ticks);
    EXPECT_LT(farthest(std::numeric_limits<qint64>::min()), at(1, 1, 1).ticks);
}

TEST(KNDateTime, ShowsLocalTimeWithItsOffset)
{
    const KNDateTime evening = {
        .ticks = KNDateTime::TicksPerDay, .fractionDigits = 0, .offsetMinutes = -14 * 60};
    EXPECT_EQ(evening.toString(), QStringLiteral("1900-01-01 10:00:00 -14:00"));
    const KNDateTime utc = {.ticks = 1, .fractionDigits = 7, .offsetMinutes = 0};
    EXPECT_EQ(utc.toString(), QStringLiteral("1900-01-01 00:00:00.0000001 +00:00"));
    const KNDateTime half = {.ticks = 0, .fractionDigits = 0, .offsetMinutes = -30};
    EXPECT_EQ(half.toString(), QStringLiteral("1899-12-31 23:30:00 -00:30"));
}

TEST(KNDateTime, ShowsTheEndOfADayApartFromItsBeginning)
{
    EXPECT_EQ((KNDateTime{KNDateTime::TicksPerDay, KNDateTime::Parts::Time, 2}).toString(),
              QStringLiteral("24:00:00.00"));
    EXPECT_EQ((KNDateTime{0, KNDateTime::Parts::Time, 2}).toString(), QStringLiteral("00:00:00.00"));
}
