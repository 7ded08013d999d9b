#include "Foundation/KNFormat.h"

#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <limits>

TEST(KNFormat, FillsTextsInTheirOrder)
{
    EXPECT_EQ(KNFormat("DROP TABLE %@.%@\r\nGO\r\n", QStringLiteral("dbo"), QStringLiteral("Orders")),
              QStringLiteral("DROP TABLE dbo.Orders\r\nGO\r\n"));
}

TEST(KNFormat, LeavesPercentSignsInsideValuesAlone)
{
    EXPECT_EQ(KNFormat("%@ and %@ and %d", QStringLiteral("%@ %d %1"), QStringLiteral("100%"), 7),
              QStringLiteral("%@ %d %1 and 100% and 7"));
}

TEST(KNFormat, PrintsANilTextAsNullAndAnEmptyOneAsNothing)
{
    EXPECT_EQ(KNFormat("[%@]", QString()), QStringLiteral("[(null)]"));
    EXPECT_EQ(KNFormat("[%s]", static_cast<const char *>(nullptr)), QStringLiteral("[(null)]"));
    EXPECT_EQ(KNFormat("[%d]", QString()), QStringLiteral("[(null)]"));
    EXPECT_EQ(KNFormat("[%@]", QStringLiteral("")), QStringLiteral("[]"));
}

TEST(KNFormat, PrintsWholeNumbersOfEverySize)
{
    EXPECT_EQ(KNFormat("%d %i %ld %lld", -1, 2, 3L, std::numeric_limits<qint64>::min()),
              QStringLiteral("-1 2 3 -9223372036854775808"));
    EXPECT_EQ(KNFormat("%u %lu %llu", 1U, 2UL, std::numeric_limits<quint64>::max()),
              QStringLiteral("1 2 18446744073709551615"));
    EXPECT_EQ(KNFormat("%d %d", static_cast<short>(-5), true), QStringLiteral("-5 1"));
    EXPECT_EQ(KNFormat("%x %X", 0xBEEF, 0xBEEFU), QStringLiteral("beef BEEF"));
}

TEST(KNFormat, PrintsFloatingNumbersWithoutALocale)
{
    EXPECT_EQ(KNFormat("%f", 1.5), QStringLiteral("1.500000"));
    EXPECT_EQ(KNFormat("%0.2f", 1234567.891), QStringLiteral("1234567.89"));
    EXPECT_EQ(KNFormat("%.0f", 2.6), QStringLiteral("3"));
    EXPECT_EQ(KNFormat("%f", 3), QStringLiteral("3.000000"));
    EXPECT_EQ(KNFormat("%@", 0.1), QStringLiteral("0.1"));
}

TEST(KNFormat, CutsAFloatingNumberWhereAWholeOneIsAskedFor)
{
    EXPECT_EQ(KNFormat("%d %d", 2.9, -2.9), QStringLiteral("2 -2"));
}

TEST(KNFormat, PadsWithSpacesOrZerosToTheWidth)
{
    EXPECT_EQ(KNFormat("%02ld:%02ld", 7L, 123L), QStringLiteral("07:123"));
    EXPECT_EQ(KNFormat("%05d|%5d", -42, -42), QStringLiteral("-0042|  -42"));
    EXPECT_EQ(KNFormat("%08.3f", 3.14159), QStringLiteral("0003.142"));
    EXPECT_EQ(KNFormat("%4@|", QStringLiteral("ab")), QStringLiteral("  ab|"));
}

TEST(KNFormat, PrintsPointersInHexadecimal)
{
    EXPECT_EQ(KNFormat("%p", reinterpret_cast<const void *>(0x1F)), QStringLiteral("0x1f"));
}

TEST(KNFormat, PrintsTwoPercentSignsAsOneWithoutTakingAnArgument)
{
    EXPECT_EQ(KNFormat("100%% of %@", QStringLiteral("x")), QStringLiteral("100% of x"));
    EXPECT_EQ(KNFormat("%%@", QStringLiteral("x")), QStringLiteral("%@"));
}

TEST(KNFormat, KeepsAConversionThatHasNoArgument)
{
    EXPECT_EQ(KNFormat("%@ and %@", QStringLiteral("one")), QStringLiteral("one and %@"));
    EXPECT_EQ(KNFormat("%05.2lld"), QStringLiteral("%05.2lld"));
}

TEST(KNFormat, KeepsPercentSignsThatStartNoConversion)
{
    EXPECT_EQ(KNFormat("LIKE 'a%' OR 50% y %q %1234d %@", QStringLiteral("v")),
              QStringLiteral("LIKE 'a%' OR 50% y %q %1234d v"));
    EXPECT_EQ(KNFormat("%@%", QStringLiteral("v")), QStringLiteral("v%"));
    EXPECT_EQ(KNFormat("%"), QStringLiteral("%"));
    EXPECT_EQ(KNFormat("%l"), QStringLiteral("%l"));
    EXPECT_EQ(KNFormat("%."), QStringLiteral("%."));
}

TEST(KNFormat, IgnoresArgumentsTooMany)
{
    EXPECT_EQ(KNFormat("%d", 1, 2, QStringLiteral("three")), QStringLiteral("1"));
}

TEST(KNFormat, TakesTextOfAnyScriptInTemplateAndValue)
{
    const QString astral = QStringLiteral("\U0001F600");
    EXPECT_EQ(KNFormat("\xF0\x9F\x98\x80 %@ gr\xC3\xBCn", astral),
              astral + u' ' + astral + QStringLiteral(" gr\u00FCn"));
    EXPECT_EQ(KNFormat("%s", "gr\xC3\xBCn"), QStringLiteral("gr\u00FCn"));
    EXPECT_EQ(KNFormat(astral + QStringLiteral("%@"), QStringLiteral("x")), astral + u'x');
}

TEST(KNFormat, KeepsEmbeddedNulCharacters)
{
    const QString withNul = QStringLiteral("a") + QChar(u'\0') + u'b';
    EXPECT_EQ(KNFormat("%@!", withNul), withNul + u'!');
}
