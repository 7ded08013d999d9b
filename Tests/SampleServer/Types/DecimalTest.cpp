#include "Types/Decimal.h"
#include "Types/DecimalMath.h"

#include <gtest/gtest.h>

namespace SampleServer {

namespace {

Decimal decimal(const char *text)
{
    const auto value = Decimal::fromString(text);
    EXPECT_TRUE(value) << text;
    return value.value_or(Decimal());
}

SqlType type(int precision, int scale)
{
    return {TypeId::Decimal, 0, static_cast<std::uint8_t>(precision), static_cast<std::uint8_t>(scale)};
}

std::string result(ArithmeticOperator op, const char *left, const char *right, const SqlType &type)
{
    const auto value = calculate(op, decimal(left), decimal(right), type);
    return value ? value->toString() : "overflow";
}

} // namespace

TEST(Decimal, TextRoundTrips)
{
    for (const char *text :
         {"0", "1", "-1", "12.50", "-0.001", "0.00", "99999999999999999999999999999999999999",
          "-0.00000000000000000000000000000000000001", "10000000000000000000"})
        EXPECT_EQ(decimal(text).toString(), text);
}

TEST(Decimal, ReadsSignsAndNumbersWithoutAWholePart)
{
    EXPECT_EQ(decimal("+5").toString(), "5");
    EXPECT_EQ(decimal(".5").toString(), "0.5");
    EXPECT_EQ(decimal("5.").toString(), "5");
    EXPECT_EQ(decimal("-0").toString(), "0");
    EXPECT_FALSE(decimal("-0").negative);
    EXPECT_EQ(decimal("000000000000000000000000000000000000000000001").toString(), "1");
}

TEST(Decimal, RefusesInvalidAndTooLongText)
{
    for (const char *text :
         {"", "-", ".", "1e5", "1 2", "1.2.3", "--1", "0x1", "123456789012345678901234567890123456789",
          "0.123456789012345678901234567890123456789"})
        EXPECT_FALSE(Decimal::fromString(text)) << text;
}

TEST(Decimal, RoundsHalfAwayFromZeroWhenTheScaleShrinks)
{
    EXPECT_EQ(decimal("1.245").rescaled(2)->toString(), "1.25");
    EXPECT_EQ(decimal("-1.245").rescaled(2)->toString(), "-1.25");
    EXPECT_EQ(decimal("1.2449").rescaled(2)->toString(), "1.24");
    EXPECT_EQ(decimal("0.4").rescaled(0)->toString(), "0");
    EXPECT_FALSE(decimal("-0.4").rescaled(0)->negative);
    EXPECT_EQ(decimal("1").rescaled(3)->toString(), "1.000");
    EXPECT_EQ(decimal("0").rescaled(38)->toString(), "0." + std::string(38, '0'));
}

TEST(Decimal, OverflowsAbove38Digits)
{
    EXPECT_FALSE(decimal("1").rescaled(38));
    EXPECT_TRUE(decimal("0.9").rescaled(38));
    EXPECT_FALSE(decimal("99999999999999999999999999999999999999").rescaled(1));
}

TEST(Decimal, ComparesValuesOfDifferentScales)
{
    EXPECT_EQ(decimal("1.50"), decimal("1.5"));
    EXPECT_LT(decimal("-2"), decimal("-1.999"));
    EXPECT_GT(decimal("99999999999999999999999999999999999999"),
              decimal("0.00000000000000000000000000000000000001"));
    EXPECT_EQ(decimal("0"), decimal("-0.00"));
}

TEST(Decimal, ConvertsToTheNearestDoubleAndBack)
{
    EXPECT_EQ(decimal("0.1").toDouble(), 0.1);
    EXPECT_EQ(decimal("-12345678901234567890.5").toDouble(), -12345678901234567890.5);
    EXPECT_EQ(decimalFromDouble(0.1, 20)->toString(), "0.10000000000000001000");
    EXPECT_EQ(decimalFromDouble(1234.5678, 2)->toString(), "1234.57");
    EXPECT_EQ(decimalFromDouble(-2.5, 0)->toString(), "-3");
    EXPECT_FALSE(decimalFromDouble(1e38, 0));
    EXPECT_FALSE(decimalFromDouble(std::numeric_limits<double>::infinity(), 0));
}

TEST(Decimal, ConvertsExtremeIntegersAndBack)
{
    for (const std::int64_t value :
         {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max(), std::int64_t{0},
          std::int64_t{-1}})
        EXPECT_EQ(toInteger(decimalFromInteger(value)), value);
    EXPECT_EQ(toInteger(decimal("-1.99")), -1);
    EXPECT_FALSE(toInteger(decimal("9223372036854775808")));
    EXPECT_TRUE(toInteger(decimal("-9223372036854775808.9")));
    EXPECT_FALSE(toInteger(decimal("-9223372036854775809")));
}

TEST(DecimalMath, DerivesTheTypesOfResults)
{
    using Op = ArithmeticOperator;
    EXPECT_EQ(decimalResultType(Op::Add, type(9, 2), type(5, 1)), type(10, 2));
    EXPECT_EQ(decimalResultType(Op::Multiply, type(9, 2), type(5, 1)), type(15, 3));
    EXPECT_EQ(decimalResultType(Op::Divide, type(9, 2), type(5, 1)), type(16, 8));
    EXPECT_EQ(decimalResultType(Op::Divide, type(1, 0), type(2, 1)), type(8, 6));
    EXPECT_EQ(decimalResultType(Op::Modulo, type(9, 2), type(5, 3)), type(5, 3));
    // Where 38 digits are not enough the integral part goes first; six digits stay behind the point.
    EXPECT_EQ(decimalResultType(Op::Multiply, type(38, 10), type(38, 10)), type(38, 6));
    EXPECT_EQ(decimalResultType(Op::Multiply, type(20, 10), type(20, 10)), type(38, 17));
    EXPECT_EQ(decimalResultType(Op::Divide, type(38, 20), type(38, 20)), type(38, 6));
    EXPECT_EQ(decimalResultType(Op::Add, type(38, 10), type(38, 5)), type(38, 5));
    EXPECT_EQ(decimalResultType(Op::Add, type(38, 0), type(38, 0)), type(38, 0));
}

TEST(DecimalMath, CalculatesExactlyAndTruncatesQuotients)
{
    using Op = ArithmeticOperator;
    EXPECT_EQ(result(Op::Add, "99999999999999999999999999999999999998", "1", type(38, 0)),
              "99999999999999999999999999999999999999");
    EXPECT_EQ(result(Op::Add, "99999999999999999999999999999999999999", "1", type(38, 0)), "overflow");
    EXPECT_EQ(result(Op::Subtract, "1.5", "2.25", type(5, 2)), "-0.75");
    EXPECT_EQ(result(Op::Multiply, "1.5", "-2.25", type(6, 3)), "-3.375");
    EXPECT_EQ(result(Op::Multiply, "1.55", "1", type(3, 1)), "1.6");
    EXPECT_EQ(result(Op::Divide, "2", "3", type(7, 6)), "0.666666");
    EXPECT_EQ(result(Op::Divide, "-2", "3", type(7, 6)), "-0.666666");
    EXPECT_EQ(result(Op::Divide, "12345678901234567890123456789012345678", "0.1", type(38, 0)), "overflow");
    EXPECT_EQ(result(Op::Divide, "1", "99999999999999999999999999999999999999", type(38, 38)),
              "0.00000000000000000000000000000000000001");
    EXPECT_EQ(result(Op::Modulo, "5.5", "2", type(5, 1)), "1.5");
    EXPECT_EQ(result(Op::Modulo, "-5.5", "2", type(5, 1)), "-1.5");
}

} // namespace SampleServer
