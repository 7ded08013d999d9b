#include "Foundation/KNDecimal.h"

#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace {

const QString Nines38(38, u'9');

/// The text of the decimal read from `text`; a null QString when it is none.
QString reread(const QString &text)
{
    const auto decimal = KNDecimal::fromString(text);
    return decimal ? decimal->toString() : QString();
}

KNDecimal decimal(const char *text)
{
    return KNDecimal::fromString(QString::fromLatin1(text)).value();
}

QString fromBytes(std::initializer_list<unsigned char> magnitude, bool negative, int scale)
{
    const auto read = KNDecimal::fromBigEndian(std::data(magnitude), magnitude.size(), negative, scale);
    return read ? read->toString() : QString();
}

} // namespace

TEST(KNDecimal, IsZeroByDefault)
{
    EXPECT_TRUE(KNDecimal().isZero());
    EXPECT_EQ(KNDecimal().toString(), QStringLiteral("0"));
}

TEST(KNDecimal, HoldsEveryWholeNumberOf64Bits)
{
    EXPECT_EQ(KNDecimal(std::numeric_limits<qint64>::max()).toString(),
              QStringLiteral("9223372036854775807"));
    EXPECT_EQ(KNDecimal(std::numeric_limits<qint64>::min()).toString(),
              QStringLiteral("-9223372036854775808"));
    EXPECT_EQ(KNDecimal(-1).toString(), QStringLiteral("-1"));
}

TEST(KNDecimal, KeepsTheDigitsAfterThePointAsTheyWereWritten)
{
    for (const char *text : {"0", "12.50", "-12.50", "0.00", "0.0001", "-0.5", "100", "1.000"})
        EXPECT_EQ(reread(QString::fromLatin1(text)), QString::fromLatin1(text));
}

TEST(KNDecimal, ReadsSignsBarePointsAndLeadingZeros)
{
    EXPECT_EQ(reread(QStringLiteral("+7")), QStringLiteral("7"));
    EXPECT_EQ(reread(QStringLiteral(".5")), QStringLiteral("0.5"));
    EXPECT_EQ(reread(QStringLiteral("5.")), QStringLiteral("5"));
    EXPECT_EQ(reread(QStringLiteral("-.25")), QStringLiteral("-0.25"));
    EXPECT_EQ(reread(QString(100, u'0') + QStringLiteral("12.5")), QStringLiteral("12.5"));
}

TEST(KNDecimal, ReadsExponents)
{
    EXPECT_EQ(reread(QStringLiteral("1e-4")), QStringLiteral("0.0001"));
    EXPECT_EQ(reread(QStringLiteral("1.5E3")), QStringLiteral("1500"));
    EXPECT_EQ(reread(QStringLiteral("-2.50e+1")), QStringLiteral("-25.0"));
    EXPECT_EQ(reread(QStringLiteral("1e37")), u'1' + QString(37, u'0'));
    EXPECT_EQ(reread(QStringLiteral("10e-39")), QStringLiteral("0.") + QString(37, u'0') + u'1');
    EXPECT_EQ(reread(QStringLiteral("0e99999999999999999999")), QStringLiteral("0"));
}

TEST(KNDecimal, HoldsThirtyEightDigitsAtAnyScale)
{
    EXPECT_EQ(reread(Nines38), Nines38);
    EXPECT_EQ(reread(u'-' + Nines38), u'-' + Nines38);
    EXPECT_EQ(reread(QStringLiteral("0.") + Nines38), QStringLiteral("0.") + Nines38);
    EXPECT_EQ(reread(Nines38.left(19) + u'.' + Nines38.left(19)), Nines38.left(19) + u'.' + Nines38.left(19));
}

TEST(KNDecimal, RefusesMoreThanThirtyEightDigits)
{
    EXPECT_TRUE(reread(u'1' + QString(38, u'0')).isNull());
    EXPECT_TRUE(reread(QString(200, u'9')).isNull());
    EXPECT_TRUE(reread(Nines38 + QStringLiteral(".0")).isNull());
    EXPECT_TRUE(reread(QStringLiteral("1e38")).isNull());
    EXPECT_TRUE(reread(QStringLiteral("1e-39")).isNull());
    EXPECT_TRUE(reread(QStringLiteral("1e99999999999999999999")).isNull());
    EXPECT_TRUE(reread(QStringLiteral("1e-99999999999999999999")).isNull());
}

TEST(KNDecimal, RefusesInvalidNumbers)
{
    for (const char *text : {"", ".", "-", "+", "-.", "abc", "1.2.3", "1,5", " 1", "1 ", "1e", "1e+", "e5",
                             "--1", "0x1F", "1e5.5", "NaN", "inf", "12abc"})
        EXPECT_FALSE(KNDecimal::fromString(QString::fromLatin1(text))) << text;
    EXPECT_FALSE(KNDecimal::fromString(QStringLiteral("\u0661\u0662"))) << "Arabic digits";
    EXPECT_FALSE(KNDecimal::fromString(QString()));
}

TEST(KNDecimal, ZeroHasNoSign)
{
    EXPECT_EQ(reread(QStringLiteral("-0.00")), QStringLiteral("0.00"));
    EXPECT_FALSE(decimal("-0").isNegative());
    EXPECT_EQ(fromBytes({0}, true, 2), QStringLiteral("0.00"));
}

TEST(KNDecimal, IsReadFromTheBytesAServerSends)
{
    EXPECT_EQ(fromBytes({0x04, 0xE2}, true, 2), QStringLiteral("-12.50"));
    EXPECT_EQ(fromBytes({}, false, 0), QStringLiteral("0"));
    EXPECT_EQ(fromBytes({1, 0, 0, 0, 0, 0, 0, 0, 0}, false, 0), QStringLiteral("18446744073709551616"));
    // 10^38 - 1
    EXPECT_EQ(fromBytes({0x4B, 0x3B, 0x4C, 0xA8, 0x5A, 0x86, 0xC4, 0x7A, 0x09, 0x8A, 0x22, 0x3F, 0xFF, 0xFF,
                         0xFF, 0xFF},
                        false, 38),
              QStringLiteral("0.") + Nines38);
}

TEST(KNDecimal, SkipsLeadingZeroBytesBeyondSixteen)
{
    std::array<unsigned char, 40> bytes{};
    bytes.back() = 7;
    EXPECT_EQ(KNDecimal::fromBigEndian(bytes.data(), bytes.size(), false, 1)->toString(),
              QStringLiteral("0.7"));
}

TEST(KNDecimal, RefusesBytesAndScalesOutOfRange)
{
    std::array<unsigned char, 17> seventeen{};
    seventeen.front() = 1;
    EXPECT_FALSE(KNDecimal::fromBigEndian(seventeen.data(), seventeen.size(), false, 0));
    std::array<unsigned char, 16> sixteen;
    sixteen.fill(0xFF);
    EXPECT_FALSE(KNDecimal::fromBigEndian(sixteen.data(), sixteen.size(), false, 0));
    EXPECT_TRUE(fromBytes({1}, false, 39).isNull());
    EXPECT_TRUE(fromBytes({1}, false, -1).isNull());
}

TEST(KNDecimal, IsMovedByPowersOfTenExactly)
{
    EXPECT_EQ(KNDecimal(123456).multipliedByPowerOf10(-4)->toString(), QStringLiteral("12.3456"));
    EXPECT_EQ(KNDecimal(std::numeric_limits<qint64>::min()).multipliedByPowerOf10(-4)->toString(),
              QStringLiteral("-922337203685477.5808"));
    EXPECT_EQ(decimal("12.5").multipliedByPowerOf10(1)->toString(), QStringLiteral("125"));
    EXPECT_EQ(decimal("12.5").multipliedByPowerOf10(3)->toString(), QStringLiteral("12500"));
    EXPECT_EQ(decimal("0.0").multipliedByPowerOf10(1000)->toString(), QStringLiteral("0"));
    EXPECT_FALSE(KNDecimal(1).multipliedByPowerOf10(38));
    EXPECT_FALSE(KNDecimal(1).multipliedByPowerOf10(-39));
    EXPECT_FALSE(KNDecimal(1).multipliedByPowerOf10(std::numeric_limits<int>::min()));
    EXPECT_FALSE(KNDecimal(1).multipliedByPowerOf10(std::numeric_limits<int>::max()));
}

TEST(KNDecimal, ComparesNumbersOfDifferentScales)
{
    EXPECT_EQ(decimal("1.0"), decimal("1.00"));
    EXPECT_EQ(decimal("0.00"), KNDecimal(0));
    EXPECT_LT(decimal("1.09"), decimal("1.1"));
    EXPECT_LT(decimal("-1.1"), decimal("-1.09"));
    EXPECT_LT(decimal("-0.1"), decimal("0"));
    EXPECT_GT(decimal("2"), decimal("-3"));
    EXPECT_NE(decimal("1.01"), decimal("1.001"));
}

TEST(KNDecimal, ComparesTheLargestWithTheSmallest)
{
    const KNDecimal largest = *KNDecimal::fromString(Nines38);
    const KNDecimal smallest = decimal("1e-38");
    EXPECT_GT(largest, smallest);
    EXPECT_LT(*KNDecimal::fromString(u'-' + Nines38), smallest);
    EXPECT_EQ(largest, largest);
}

TEST(KNDecimal, RoundsToTheNearestDouble)
{
    EXPECT_EQ(decimal("0.1").toDouble(), 0.1);
    EXPECT_EQ(decimal("-12.50").toDouble(), -12.5);
    EXPECT_EQ(decimal("9007199254740993").toDouble(), 9007199254740992.0);
    EXPECT_EQ(KNDecimal::fromString(Nines38)->toDouble(), 1e38);
}
