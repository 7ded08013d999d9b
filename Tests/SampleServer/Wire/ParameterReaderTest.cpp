#include "Wire/ParameterReader.h"

#include "EncodedColumn.h"

#include <gtest/gtest.h>
#include <random>

using namespace SampleServer;

namespace {

Bytes valueBytes(const std::string &text)
{
    Bytes result;
    for (std::size_t at = 0; at < text.size(); at += 3)
        result.push_back(static_cast<std::uint8_t>(std::stoi(text.substr(at, 2), nullptr, 16)));
    return result;
}

/// A parameter "@a" as a client would send what this server sends as a column.
Bytes parameter(const SqlType &type, const Value &value)
{
    EncodedColumn column(type, TdsVersion::V74);
    MemoryTransport transport;
    PacketWriter out(transport);
    const WireType wire = wireType(type, true, TdsVersion::V74);
    out.putShortText(u"@a");
    out.put<std::uint8_t>(1);
    putTypeInfo(out, wire);
    ValueWriter(out, TdsVersion::V74).put(wire, value);
    out.endMessage();
    return payloadOf(transport.written);
}

std::vector<std::pair<SqlType, Value>> samples()
{
    return {
        {{TypeId::Bit}, std::int64_t{1}},
        {{TypeId::TinyInt}, std::int64_t{255}},
        {{TypeId::SmallInt}, std::int64_t{-32768}},
        {{TypeId::Int}, std::int64_t{-2147483648}},
        {{TypeId::BigInt}, std::numeric_limits<std::int64_t>::min()},
        {{TypeId::Real}, -2.5},
        {{TypeId::Float}, 0.1},
        {{TypeId::SmallMoney}, Decimal{2147483648u, 4, true}},
        {{TypeId::Money}, Decimal{9223372036854775807u, 4}},
        {{TypeId::Decimal, 0, 38, 10},
         Decimal::fromString("-9999999999999999999999999999.9999999999").value()},
        {{TypeId::SmallDateTime}, DateTimeValue{693595 + 65535, 1439 * 600'000'000LL}},
        {{TypeId::DateTime}, DateTimeValue{639905, 10'000'000}},
        {{TypeId::Date}, DateTimeValue{3652058, 0}},
        {{TypeId::Time, 0, 0, 7}, DateTimeValue{0, 863'999'999'999}},
        {{TypeId::DateTime2, 0, 0, 3}, DateTimeValue{738944, 12'340'000}},
        {{TypeId::DateTimeOffset, 0, 0, 0}, DateTimeValue{738944, 10'000'000, -840}},
        {{TypeId::UniqueIdentifier}, Guid{{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}}},
        {{TypeId::NVarChar, 10}, std::string("aé😀")},
        {{TypeId::NVarChar, SqlType::Max}, std::string(20'000, 'x')},
        {{TypeId::VarChar, 10}, std::string("é€")},
        {{TypeId::VarBinary, 5}, Bytes{0, 255}},
        {{TypeId::VarBinary, SqlType::Max}, Bytes(20'000, 7)},
    };
}

} // namespace

TEST(ParameterReader, ReadsEveryTypeThatTheServerSends)
{
    for (const auto &[type, value] : samples()) {
        const Bytes sent = parameter(type, value);
        ByteReader reader(sent);
        const CallParameter read = takeParameter(reader);
        EXPECT_EQ(read.name, "@a");
        EXPECT_TRUE(read.isOutput);
        EXPECT_EQ(displayName(read.type), displayName(type));
        EXPECT_TRUE(read.value == value) << displayName(type);
        EXPECT_TRUE(reader.atEnd()) << displayName(type);
    }
}

TEST(ParameterReader, ReadsTheNullOfEveryType)
{
    for (const auto &[type, value] : samples()) {
        const Bytes sent = parameter(type, Value());
        ByteReader reader(sent);
        const CallParameter read = takeParameter(reader);
        EXPECT_TRUE(isNull(read.value)) << displayName(type);
        EXPECT_EQ(displayName(read.type), displayName(type));
        EXPECT_TRUE(reader.atEnd()) << displayName(type);
    }
}

TEST(ParameterReader, ReadsTheOldLargeTypesWithoutATextPointer)
{
    const Value null;
    const std::tuple<const char *, const char *, Value> cases[] = {
        {"00 00 63 FF FF FF 7F 09 04 D0 00 34 02 00 00 00 E9 00", "nvarchar(max)", std::string("é")},
        {"00 00 23 FF FF FF 7F 09 04 D0 00 34 01 00 00 00 E9", "varchar(max)", std::string("é")},
        {"00 00 22 FF FF FF 7F 01 00 00 00 E9", "varbinary(max)", Bytes{0xE9}},
        {"00 00 63 FF FF FF 7F 09 04 D0 00 34 FF FF FF FF", "nvarchar(max)", null},
    };
    for (const auto &[sent, type, value] : cases) {
        const Bytes content = valueBytes(sent);
        ByteReader reader(content);
        const CallParameter read = takeParameter(reader);
        EXPECT_EQ(displayName(read.type), type);
        EXPECT_TRUE(read.value == value) << sent;
        EXPECT_FALSE(read.isOutput);
    }
}

TEST(ParameterReader, RefusesEveryTruncation)
{
    for (const auto &[type, value] : samples()) {
        const Bytes whole = parameter(type, value);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            ByteReader reader({whole.data(), size});
            EXPECT_THROW(takeParameter(reader), ProtocolError) << displayName(type) << " cut to " << size;
        }
    }
}

TEST(ParameterReader, RefusesValuesThatDoNotFitTheirType)
{
    for (const char *sent : {
             "00 00 26 03 03 01 02 03",             // an int of three bytes
             "00 00 26 04 02 01 02",                // an int with a smallint in it
             "00 00 6A 05 27 00 05 01 01 00 00 00", // 39 digits
             "00 00 6A 05 02 03 05 01 01 00 00 00", // a scale above the precision
             "00 00 6A 11 26 00 11 01 FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF", // a number above 38
                                                                                        // digits
             "00 00 29 08 05 00 00 00 00 00",                                           // a scale above seven
             "00 00 29 00 05 FF FF FF FF FF",                                           // far beyond midnight
             "00 00 29 00 03 80 51 01",                                     // the second after midnight
             "00 00 28 03 DB B9 37",                                        // the day after the last
             "00 00 6F 08 08 FF FF FF 7F 00 00 00 00",                      // far in the future
             "00 00 6F 08 08 00 00 00 80 00 00 00 00",                      // far in the past
             "00 00 24 10 0F 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F", // a GUID of 15 bytes
             "00 00 E7 0A 00 09 04 D0 00 34 01 00 61",                      // half a character
         }) {
        const Bytes content = valueBytes(sent);
        ByteReader reader(content);
        EXPECT_THROW(takeParameter(reader), ProtocolError) << sent;
    }
}

TEST(ParameterReader, NamesTheParameterOfATypeItDoesNotTake)
{
    for (const char *sent : {"01 61 00 00 F1 00", "01 61 00 00 62", "01 61 00 00 F0", "01 61 00 00 F3"}) {
        const Bytes content = valueBytes(sent);
        ByteReader reader(content);
        try {
            takeParameter(reader);
            FAIL() << sent;
        } catch (const UnsupportedParameter &refused) {
            EXPECT_STREQ(refused.what(), "Parameter 'a' is of a type that this server does not take.");
        }
    }
}

TEST(ParameterReader, NeverReadsOutsideOfRandomBytes)
{
    std::mt19937 random(20240229); // the same bytes in every run
    for (int round = 0; round < 20'000; ++round) {
        Bytes content(4 + random() % 40);
        for (std::uint8_t &byte : content)
            byte = static_cast<std::uint8_t>(random());
        content[0] = 0;
        ByteReader reader(content);
        try {
            takeParameter(reader);
        } catch (const ProtocolError &) { // asan watches
        } catch (const UnsupportedParameter &) {
        }
    }
}
