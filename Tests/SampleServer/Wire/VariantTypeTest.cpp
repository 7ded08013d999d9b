#include "EncodedColumn.h"

#include <gtest/gtest.h>

namespace VariantTypeTest {

using namespace SampleServer;

namespace {

std::string encoded(const SqlType &base, const Value &value, TdsVersion version = TdsVersion::V74)
{
    return EncodedColumn({TypeId::SqlVariant}, version)
        .value(std::make_shared<const VariantValue>(VariantValue{base, value}));
}

Value integer(std::int64_t number)
{
    return number;
}

} // namespace

TEST(VariantType, IsAnnouncedWithItsLongestLengthAndANullOfNoLength)
{
    EncodedColumn column({TypeId::SqlVariant}, TdsVersion::V71);
    EXPECT_EQ(column.typeInfo(), "62 49 1F 00 00");
    EXPECT_EQ(column.value(Value()), "00 00 00 00");
    EXPECT_EQ(encoded({TypeId::Int}, Value(), TdsVersion::V71), "00 00 00 00");
}

TEST(VariantType, NumbersHaveFixedBaseTypesWithoutProperties)
{
    EXPECT_EQ(encoded({TypeId::Bit}, integer(1)), "03 00 00 00 32 00 01");
    EXPECT_EQ(encoded({TypeId::TinyInt}, integer(255)), "03 00 00 00 30 00 FF");
    EXPECT_EQ(encoded({TypeId::SmallInt}, integer(-1)), "04 00 00 00 34 00 FF FF");
    EXPECT_EQ(encoded({TypeId::Int}, integer(7)), "06 00 00 00 38 00 07 00 00 00");
    EXPECT_EQ(encoded({TypeId::BigInt}, integer(7)), "0A 00 00 00 7F 00 07 00 00 00 00 00 00 00");
    EXPECT_EQ(encoded({TypeId::Real}, Value(1.0)), "06 00 00 00 3B 00 00 00 80 3F");
    EXPECT_EQ(encoded({TypeId::Float}, Value(1.0)), "0A 00 00 00 3E 00 00 00 00 00 00 00 F0 3F");
    EXPECT_EQ(encoded({TypeId::SmallMoney}, Decimal{10'000, 4}), "06 00 00 00 7A 00 10 27 00 00");
    EXPECT_EQ(encoded({TypeId::Money}, Decimal{10'000, 4}), "0A 00 00 00 3C 00 00 00 00 00 10 27 00 00");
}

TEST(VariantType, DecimalsCarryPrecisionAndScale)
{
    EXPECT_EQ(encoded({TypeId::Decimal, 0, 5, 2}, Decimal{150, 2, true}),
              "09 00 00 00 6A 02 05 02 00 96 00 00 00");
}

TEST(VariantType, DatesCarryTheirScaleWhereTheyHaveOne)
{
    const DateTimeValue value{1, 20'000'000, 60};
    EXPECT_EQ(encoded({TypeId::Date}, value), "05 00 00 00 28 00 01 00 00");
    EXPECT_EQ(encoded({TypeId::Time, 0, 0, 0}, value), "06 00 00 00 29 01 00 02 00 00");
    EXPECT_EQ(encoded({TypeId::DateTime2, 0, 0, 0}, value), "09 00 00 00 2A 01 00 02 00 00 01 00 00");
    EXPECT_EQ(encoded({TypeId::DateTimeOffset, 0, 0, 0}, value),
              "0B 00 00 00 2B 01 00 02 00 00 01 00 00 3C 00");
    EXPECT_EQ(encoded({TypeId::SmallDateTime}, DateTimeValue{693595, 0}), "06 00 00 00 3A 00 00 00 00 00");
    EXPECT_EQ(encoded({TypeId::DateTime}, DateTimeValue{693595, 0}),
              "0A 00 00 00 3D 00 00 00 00 00 00 00 00 00");
}

TEST(VariantType, NewDatesAreTextToClientsBefore73)
{
    EXPECT_EQ(
        encoded({TypeId::Date}, DateTimeValue{0, 0}, TdsVersion::V72),
        "1D 00 00 00 E7 07 09 04 D0 00 34 14 00 30 00 30 00 30 00 31 00 2D 00 30 00 31 00 2D 00 30 00 31 00");
}

TEST(VariantType, TextCarriesCollationAndLength)
{
    EXPECT_EQ(encoded({TypeId::NVarChar, 3}, std::string("é")),
              "0B 00 00 00 E7 07 09 04 D0 00 34 06 00 E9 00");
    EXPECT_EQ(encoded({TypeId::VarChar, 3}, std::string("é")), "0A 00 00 00 A7 07 09 04 D0 00 34 03 00 E9");
}

TEST(VariantType, BinaryCarriesItsLengthAndGuidsNothing)
{
    EXPECT_EQ(encoded({TypeId::VarBinary, 5}, Bytes{1, 2}), "06 00 00 00 A5 02 05 00 01 02");
    EXPECT_EQ(
        encoded({TypeId::UniqueIdentifier}, Guid{{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}}),
        "12 00 00 00 24 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10");
}

} // namespace VariantTypeTest
