#include "Foundation/KNValue.h"

#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace KNValueTests {

namespace {

using Kind = KNValue::Kind;

KNValue text(const char *utf8)
{
    return KNValue(QString::fromUtf8(utf8));
}

KNValue decimal(const char *digits)
{
    return KNValue(KNDecimal::fromString(QString::fromLatin1(digits)).value());
}

} // namespace

TEST(KNValue, ReportsItsKind)
{
    EXPECT_EQ(KNValue().kind(), Kind::Null);
    EXPECT_EQ(KNValue(true).kind(), Kind::Bool);
    EXPECT_EQ(KNValue(qint32(1)).kind(), Kind::Int32);
    EXPECT_EQ(KNValue(qint64(1)).kind(), Kind::Int64);
    EXPECT_EQ(KNValue(1.0F).kind(), Kind::Float);
    EXPECT_EQ(KNValue(1.0).kind(), Kind::Double);
    EXPECT_EQ(decimal("1").kind(), Kind::Decimal);
    EXPECT_EQ(text("a").kind(), Kind::Text);
    EXPECT_EQ(KNValue(QDateTime::currentDateTimeUtc()).kind(), Kind::Date);
    EXPECT_EQ(KNValue(KNDateTime()).kind(), Kind::Date);
    EXPECT_EQ(KNValue(QByteArray("x")).kind(), Kind::Bytes);
}

TEST(KNValue, DistinguishesNullFromEmptyText)
{
    EXPECT_TRUE(KNValue(QString()).isNull());
    EXPECT_FALSE(text("").isNull());
    EXPECT_FALSE(text("").text().isNull());
    EXPECT_TRUE(text("").text().isEmpty());
}

TEST(KNValue, CountsBooleansAndDecimalsAsNumbersAndNothingElse)
{
    for (const KNValue &number :
         {KNValue(false), KNValue(qint32(0)), KNValue(qint64(0)), KNValue(0.0F), KNValue(0.0), decimal("0")})
        EXPECT_TRUE(number.isNumber());
    for (const KNValue &other : {KNValue(), text("1"), KNValue(KNDateTime()), KNValue(QByteArray("1"))})
        EXPECT_FALSE(other.isNumber());
}

TEST(KNValue, ReturnsNullForAnotherKind)
{
    EXPECT_TRUE(KNValue(qint32(1)).text().isNull());
    EXPECT_TRUE(KNValue(QByteArray("x")).text().isNull());
    EXPECT_TRUE(text("x").bytes().isNull());
    EXPECT_FALSE(text("2020-01-01").date().isValid());
    EXPECT_EQ(text("x").dateTime(), KNDateTime());
    EXPECT_TRUE(text("5").decimal().isZero());
}

TEST(KNValue, ReturnsItsOriginalValue)
{
    const QDateTime moment(QDate(1899, 12, 31), QTime(23, 59, 59, 999), Qt::UTC);
    EXPECT_EQ(KNValue(moment).date(), moment);
    const KNDateTime stored{.ticks = 7, .parts = KNDateTime::Parts::Time, .fractionDigits = 7};
    EXPECT_EQ(KNValue(stored).dateTime().toString(), QStringLiteral("00:00:00.0000007"));
    EXPECT_EQ(KNValue(QByteArray("\0\1", 2)).bytes(), QByteArray("\0\1", 2));
    EXPECT_EQ(decimal("-1.50").decimal().toString(), QStringLiteral("-1.50"));
    EXPECT_EQ(KNValue(std::numeric_limits<qint64>::min()).decimal().toString(),
              QStringLiteral("-9223372036854775808"));
}

TEST(KNValue, ReadsNumbersAsDoubles)
{
    EXPECT_EQ(KNValue(true).toDouble(), 1);
    EXPECT_EQ(KNValue(qint32(-3)).toDouble(), -3);
    EXPECT_EQ(KNValue(0.5F).toDouble(), 0.5);
    EXPECT_EQ(decimal("0.1").toDouble(), 0.1);
    EXPECT_EQ(text("12").toDouble(), 0);
    EXPECT_EQ(KNValue().toDouble(), 0);
}

TEST(KNValue, CutsNumbersToWholeOnes)
{
    EXPECT_EQ(KNValue(2.9).toInt64(), 2);
    EXPECT_EQ(KNValue(-2.9F).toInt64(), -2);
    EXPECT_EQ(decimal("-12.99").toInt64(), -12);
    EXPECT_EQ(KNValue(std::numeric_limits<qint64>::min()).toInt64(), std::numeric_limits<qint64>::min());
    EXPECT_EQ(decimal("9223372036854775807.9").toInt64(), std::numeric_limits<qint64>::max());
}

TEST(KNValue, StopsAtTheEndsOfWholeNumbers)
{
    EXPECT_EQ(KNValue(1e300).toInt64(), std::numeric_limits<qint64>::max());
    EXPECT_EQ(KNValue(-1e300).toInt64(), std::numeric_limits<qint64>::min());
    EXPECT_EQ(KNValue(std::numeric_limits<double>::quiet_NaN()).toInt64(), 0);
    EXPECT_EQ(decimal("99999999999999999999").toInt64(), std::numeric_limits<qint64>::max());
    EXPECT_EQ(decimal("-99999999999999999999").toInt64(), std::numeric_limits<qint64>::min());
}

TEST(KNValue, ReadsTextAsAWholeNumber)
{
    EXPECT_EQ(text(" 42 ").toInt64(), 42);
    EXPECT_EQ(text("-9223372036854775808").toInt64(), std::numeric_limits<qint64>::min());
    EXPECT_EQ(text("12.99").toInt64(), 12);
    EXPECT_EQ(text("1e60").toInt64(), std::numeric_limits<qint64>::max());
    EXPECT_EQ(text("abc").toInt64(), 0);
    EXPECT_EQ(KNValue(QByteArray("5")).toInt64(), 0);
    EXPECT_EQ(KNValue().toInt64(), 0);
}

TEST(KNValue, ReadsItsTruth)
{
    for (const KNValue &yes : {KNValue(true), KNValue(qint32(-1)), KNValue(0.1), decimal("0.01"), text("Y"),
                               text("yes"), text("  true"), text("T"), text("1"), text("\t9x"), text("01"),
                               text("-1"), text(" +007"), text("-yes")})
        EXPECT_TRUE(yes.toBool()) << yes.displayText().toStdString();
    for (const KNValue &no :
         {KNValue(), KNValue(false), KNValue(qint64(0)), KNValue(0.0F), decimal("0.00"), text(""),
          text("   "), text("0"), text("+00"), text("no"), text("false"), text("-"), text("--1"), text("x1"),
          KNValue(QByteArray("1")), KNValue(KNDateTime{.ticks = 5})})
        EXPECT_FALSE(no.toBool()) << no.displayText().toStdString();
}

TEST(KNValue, ShowsNumbersInPlainNotationWithoutNoise)
{
    EXPECT_EQ(KNValue(true).displayText(), QStringLiteral("1"));
    EXPECT_EQ(KNValue(false).displayText(), QStringLiteral("0"));
    EXPECT_EQ(KNValue(std::numeric_limits<qint64>::min()).displayText(),
              QStringLiteral("-9223372036854775808"));
    EXPECT_EQ(KNValue(0.1).displayText(), QStringLiteral("0.1"));
    EXPECT_EQ(KNValue(0.1F).displayText(), QStringLiteral("0.1"));
    EXPECT_EQ(KNValue(100000.0).displayText(), QStringLiteral("100000"));
    EXPECT_EQ(KNValue(1e20).displayText(), QStringLiteral("1e+20"));
    EXPECT_EQ(KNValue(-1e-7).displayText(), QStringLiteral("-1e-07"));
    EXPECT_EQ(KNValue(0.0).displayText(), QStringLiteral("0"));
    EXPECT_EQ(decimal("0.0000000000000000000000000000000000010").displayText(),
              QStringLiteral("0.0000000000000000000000000000000000010"));
}

TEST(KNValue, ShowsFloatingNumbersSoThatTheyReadBackTheSame)
{
    for (const double number :
         {1.0 / 3, 123456789012345.6, 5e-324, std::numeric_limits<double>::max(), -2.5e15, 1e-5})
        EXPECT_EQ(KNValue(number).displayText().toDouble(), number);
    for (const float number : {1.0F / 3, 16777216.0F, 1.17549435e-38F, 3.4028235e38F, 999999.9F})
        EXPECT_EQ(std::stof(KNValue(number).displayText().toStdString()), number);
}

TEST(KNValue, ShowsTheRestAsStored)
{
    EXPECT_TRUE(KNValue().displayText().isNull());
    EXPECT_EQ(text("\xF0\x9F\x98\x80 a\r\n").displayText(), QStringLiteral("\U0001F600 a\r\n"));
    EXPECT_EQ(KNValue(QByteArray("\x00\xAB\xff", 3)).displayText(), QStringLiteral("0x00ABFF"));
    EXPECT_EQ(KNValue(QByteArray("")).displayText(), QStringLiteral("0x"));
    EXPECT_EQ(KNValue(KNDateTime{.parts = KNDateTime::Parts::Date}).displayText(),
              QStringLiteral("1900-01-01"));
}

TEST(KNValue, IsEqualOnlyToTheSameKindAndValue)
{
    EXPECT_EQ(KNValue(), KNValue());
    EXPECT_EQ(text("a"), text("a"));
    EXPECT_NE(text("a"), text("A"));
    EXPECT_NE(KNValue(), text(""));
    EXPECT_NE(KNValue(qint32(1)), KNValue(qint64(1)));
    EXPECT_NE(KNValue(true), KNValue(qint32(1)));
    EXPECT_EQ(decimal("1.0"), decimal("1.00"));
    EXPECT_EQ(KNValue(QByteArray("x")), KNValue(QByteArray("x")));
}

} // namespace KNValueTests
