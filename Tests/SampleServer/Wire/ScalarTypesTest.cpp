#include "EncodedColumn.h"

#include <gtest/gtest.h>
#include <limits>

using namespace SampleServer;

namespace {

constexpr TdsVersion AllVersions[] = {TdsVersion::V71, TdsVersion::V72, TdsVersion::V73A, TdsVersion::V73B,
                                      TdsVersion::V74};
constexpr SqlType Decimal38{TypeId::Decimal, 0, 38, 0};

Value integer(std::int64_t number)
{
    return number;
}

Value decimal(const char *text)
{
    return Decimal::fromString(text).value();
}

/// The value in a column that has NULLs, for the newest version.
std::string encoded(const SqlType &type, const Value &value)
{
    return EncodedColumn(type, TdsVersion::V74).value(value);
}

std::string typeInfo(const SqlType &type, bool nullable = true, TdsVersion version = TdsVersion::V74)
{
    return EncodedColumn(type, version, nullable).typeInfo();
}

} // namespace

TEST(ScalarTypes, ColumnsWithoutNullsHaveFixedTypesAndValuesWithoutLength)
{
    const std::tuple<TypeId, const char *, Value, const char *> cases[] = {
        {TypeId::Bit, "32", integer(1), "01"},
        {TypeId::TinyInt, "30", integer(255), "FF"},
        {TypeId::SmallInt, "34", integer(-2), "FE FF"},
        {TypeId::Int, "38", integer(0x01020304), "04 03 02 01"},
        {TypeId::BigInt, "7F", integer(-1), "FF FF FF FF FF FF FF FF"},
        {TypeId::Real, "3B", Value(1.0), "00 00 80 3F"},
        {TypeId::Float, "3E", Value(1.0), "00 00 00 00 00 00 F0 3F"},
        {TypeId::SmallMoney, "7A", decimal("1.0000"), "10 27 00 00"},
        {TypeId::Money, "3C", decimal("1.0000"), "00 00 00 00 10 27 00 00"},
        {TypeId::SmallDateTime, "3A", DateTimeValue{693596, 600'000'000}, "01 00 01 00"},
        {TypeId::DateTime, "3D", DateTimeValue{693596, 10'000'000}, "01 00 00 00 2C 01 00 00"},
    };
    for (const TdsVersion version : AllVersions) {
        for (const auto &[id, info, value, bytes] : cases) {
            EncodedColumn column({id}, version, false);
            EXPECT_EQ(column.typeInfo(), info);
            EXPECT_EQ(column.value(value), bytes);
        }
    }
}

TEST(ScalarTypes, ColumnsWithNullsHaveNullableTypesAndALengthByte)
{
    const std::tuple<TypeId, const char *, Value, const char *> cases[] = {
        {TypeId::Bit, "68 01", integer(0), "01 00"},
        {TypeId::TinyInt, "26 01", integer(0), "01 00"},
        {TypeId::SmallInt, "26 02", integer(-32768), "02 00 80"},
        {TypeId::Int, "26 04", integer(2147483647), "04 FF FF FF 7F"},
        {TypeId::BigInt, "26 08", integer(std::numeric_limits<std::int64_t>::min()),
         "08 00 00 00 00 00 00 00 80"},
        {TypeId::Real, "6D 04", Value(-2.5), "04 00 00 20 C0"},
        {TypeId::Float, "6D 08", Value(std::numeric_limits<double>::max()), "08 FF FF FF FF FF FF EF 7F"},
        {TypeId::SmallMoney, "6E 04", decimal("-214748.3648"), "04 00 00 00 80"},
        {TypeId::Money, "6E 08", decimal("-922337203685477.5808"), "08 00 00 00 80 00 00 00 00"},
        {TypeId::SmallDateTime, "6F 04", DateTimeValue{693595 + 65535, 1439 * 600'000'000LL},
         "04 FF FF 9F 05"},
        {TypeId::DateTime, "6F 08", DateTimeValue{639905, 0}, "08 46 2E FF FF 00 00 00 00"},
        {TypeId::UniqueIdentifier, "24 10", Guid{{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}},
         "10 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10"},
    };
    for (const TdsVersion version : AllVersions) {
        for (const auto &[id, info, value, bytes] : cases) {
            EncodedColumn column({id}, version);
            EXPECT_EQ(column.typeInfo(), info);
            EXPECT_EQ(column.value(value), bytes);
            EXPECT_EQ(column.value(Value()), "00");
        }
    }
}

TEST(ScalarTypes, MoneyPutsItsHighHalfFirst)
{
    EXPECT_EQ(encoded({TypeId::Money}, decimal("922337203685477.5807")), "08 FF FF FF 7F FF FF FF FF");
    EXPECT_EQ(encoded({TypeId::Money}, decimal("-0.0001")), "08 FF FF FF FF FF FF FF FF");
    EXPECT_EQ(encoded({TypeId::Money}, decimal("5")), "08 00 00 00 00 50 C3 00 00")
        << "rescaled to four digits";
}

TEST(ScalarTypes, DecimalSizeDependsOnPrecision)
{
    EXPECT_EQ(typeInfo({TypeId::Decimal, 0, 9, 2}), "6A 05 09 02");
    EXPECT_EQ(typeInfo({TypeId::Decimal, 0, 10, 2}), "6A 09 0A 02");
    EXPECT_EQ(typeInfo({TypeId::Decimal, 0, 19, 0}), "6A 09 13 00");
    EXPECT_EQ(typeInfo({TypeId::Decimal, 0, 20, 0}), "6A 0D 14 00");
    EXPECT_EQ(typeInfo({TypeId::Decimal, 0, 28, 28}), "6A 0D 1C 1C");
    EXPECT_EQ(typeInfo({TypeId::Decimal, 0, 29, 0}, false), "6A 11 1D 00");
    EXPECT_EQ(typeInfo({TypeId::Decimal, 0, 38, 38}), "6A 11 26 26");
}

TEST(ScalarTypes, DecimalsCarrySignAndMagnitudeAtTheScaleOfTheirColumn)
{
    EXPECT_EQ(encoded({TypeId::Decimal, 0, 5, 2}, decimal("-1.5")), "05 00 96 00 00 00");
    EXPECT_EQ(encoded({TypeId::Decimal, 0, 5, 2}, decimal("0")), "05 01 00 00 00 00");
    EXPECT_EQ(encoded(Decimal38, decimal("99999999999999999999999999999999999999")),
              "11 01 FF FF FF FF 3F 22 8A 09 7A C4 86 5A A8 4C 3B 4B");
}

TEST(ScalarTypes, ADecimalThatExceedsItsColumnIsRefused)
{
    EncodedColumn column({TypeId::Decimal, 0, 9, 0}, TdsVersion::V74);
    EXPECT_THROW(column.value(decimal("99999999999")), std::range_error);
}

TEST(ScalarTypes, DateTimeRoundsToThreeHundredthsAndIntoTheNextDay)
{
    EXPECT_EQ(encoded({TypeId::DateTime}, DateTimeValue{693595, 33'333}), "08 00 00 00 00 01 00 00 00");
    EXPECT_EQ(encoded({TypeId::DateTime}, DateTimeValue{693595, 863'999'999'999}),
              "08 01 00 00 00 00 00 00 00");
    EXPECT_EQ(encoded({TypeId::DateTime}, DateTimeValue{3652058, 863'999'970'000}),
              "08 7F 24 2D 00 FF 81 8B 01");
}

TEST(ScalarTypes, DateSizeDependsOnScale)
{
    EXPECT_EQ(typeInfo({TypeId::Date}), "28");
    EXPECT_EQ(encoded({TypeId::Date}, DateTimeValue{0, 0}), "03 00 00 00");
    EXPECT_EQ(encoded({TypeId::Date}, DateTimeValue{3652058, 0}), "03 DA B9 37");
    const char *lengths[] = {"03", "03", "03", "04", "04", "05", "05", "05"};
    const char *lastUnit[] = {"7F 51 01",    "FF 2E 0D",       "FF D5 83",       "FF 5B 26 05",
                              "FF 97 7F 33", "FF EF FB 02 02", "FF 5F D7 1D 14", "FF BF 69 2A C9"};
    for (std::uint8_t scale = 0; scale <= 7; ++scale) {
        const std::string digits = " 0" + std::to_string(scale);
        EXPECT_EQ(typeInfo({TypeId::Time, 0, 0, scale}), "29" + digits);
        EXPECT_EQ(typeInfo({TypeId::DateTime2, 0, 0, scale}), "2A" + digits);
        EXPECT_EQ(typeInfo({TypeId::DateTimeOffset, 0, 0, scale}), "2B" + digits);
        EXPECT_EQ(encoded({TypeId::Time, 0, 0, scale}, DateTimeValue{0, 863'999'999'999}),
                  std::string(lengths[scale]) + ' ' + lastUnit[scale]);
        EXPECT_EQ(encoded({TypeId::Time, 0, 0, scale}, Value()), "00");
    }
}

TEST(ScalarTypes, DateTime2IsTimeThenDateAndDateTimeOffsetAddsMinutes)
{
    EXPECT_EQ(encoded({TypeId::DateTime2, 0, 0, 0}, DateTimeValue{1, 20'000'000}), "06 02 00 00 01 00 00");
    EXPECT_EQ(encoded({TypeId::DateTime2, 0, 0, 7}, DateTimeValue{1, 2}), "08 02 00 00 00 00 01 00 00");
    EXPECT_EQ(encoded({TypeId::DateTimeOffset, 0, 0, 7}, DateTimeValue{1, 2, -840}),
              "0A 02 00 00 00 00 01 00 00 B8 FC");
    EXPECT_EQ(encoded({TypeId::DateTimeOffset, 0, 0, 3}, DateTimeValue{1, 10'000, 330}),
              "09 01 00 00 00 01 00 00 4A 01");
}

TEST(ScalarTypes, ClientsBefore73GetTheNewDateTypesAsText)
{
    const std::tuple<SqlType, const char *, std::size_t> cases[] = {
        {{TypeId::Date}, "2024-02-29", 10},
        {{TypeId::Time, 0, 0, 3}, "23:59:59.123", 16},
        {{TypeId::Time, 0, 0, 0}, "23:59:59", 16},
        {{TypeId::DateTime2, 0, 0, 7}, "2024-02-29 23:59:59.1234567", 27},
        {{TypeId::DateTimeOffset, 0, 0, 7}, "2024-03-01 05:29:59.1234567 +05:30", 34},
    };
    for (const auto &[type, text, characters] : cases) {
        const DateTimeValue value{738944, 863'991'234'567,
                                  static_cast<std::int16_t>(type.id == TypeId::DateTimeOffset ? 330 : 0)};
        MemoryTransport::Bytes expected{static_cast<std::uint8_t>(2 * std::string(text).size()), 0};
        for (const char *c = text; *c; ++c) {
            expected.push_back(static_cast<std::uint8_t>(*c));
            expected.push_back(0);
        }
        for (const TdsVersion version : {TdsVersion::V71, TdsVersion::V72}) {
            EncodedColumn column(type, version);
            const std::uint8_t length[] = {static_cast<std::uint8_t>(2 * characters), 0};
            EXPECT_EQ(column.typeInfo(), "E7 " + hex(length) + " 09 04 D0 00 34");
            EXPECT_EQ(column.value(value), hex(expected));
            EXPECT_EQ(column.value(Value()), "FF FF");
        }
    }
}

TEST(ScalarTypes, ANullInANotNullColumnIsRefused)
{
    EncodedColumn column({TypeId::Int}, TdsVersion::V71, false);
    EXPECT_THROW(column.value(Value()), std::logic_error);
}
