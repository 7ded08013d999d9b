#include "EncodedColumn.h"

#include <gtest/gtest.h>

using namespace SampleServer;

namespace {

const std::string Collation = " 09 04 D0 00 34";
const std::string TextPointer = "10 73 61 6D 70 6C 65 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 ";

Value text(const std::string &utf8)
{
    return utf8;
}

/// Reassembles the hex of a partially length-prefixed value; checks its frame.
std::string chunks(const std::string &encoded)
{
    MemoryTransport::Bytes bytes;
    for (std::size_t at = 0; at < encoded.size(); at += 3)
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(encoded.substr(at, 2), nullptr, 16)));
    const auto number = [&](std::size_t at, std::size_t size) {
        std::uint64_t value = 0;
        for (std::size_t index = size; index-- > 0;)
            value = value << 8 | bytes.at(at + index);
        return value;
    };
    const std::uint64_t total = number(0, 8);
    std::string content;
    std::size_t at = 8;
    for (std::uint64_t length; (length = number(at, 4)) != 0; at += 4 + length)
        content.append(bytes.begin() + static_cast<std::ptrdiff_t>(at + 4),
                       bytes.begin() + static_cast<std::ptrdiff_t>(at + 4 + length));
    EXPECT_EQ(at + 4, bytes.size());
    EXPECT_EQ(content.size(), total);
    return content;
}

} // namespace

TEST(TextTypes, CharactersOfNTypesAreUtf16)
{
    EncodedColumn column({TypeId::NVarChar, 50}, TdsVersion::V74);
    EXPECT_EQ(column.typeInfo(), "E7 64 00" + Collation);
    EXPECT_EQ(column.value(text("aé€")), "06 00 61 00 E9 00 AC 20");
    EXPECT_EQ(column.value(text("😀")), "04 00 3D D8 00 DE");
    EXPECT_EQ(column.value(text("")), "00 00");
    EXPECT_EQ(column.value(text(std::string("a\0b", 3))), "06 00 61 00 00 00 62 00");
    EXPECT_EQ(EncodedColumn({TypeId::NChar, 4000}, TdsVersion::V71).typeInfo(), "EF 40 1F" + Collation);
}

TEST(TextTypes, ALoneSurrogateSurvives)
{
    EncodedColumn column({TypeId::NVarChar, 5}, TdsVersion::V74);
    EXPECT_EQ(column.value(text("\xED\xA0\xBD")), "02 00 3D D8");
}

TEST(TextTypes, InvalidUtf8BecomesReplacementCharacters)
{
    EncodedColumn column({TypeId::NVarChar, 5}, TdsVersion::V74);
    EXPECT_EQ(column.value(text("a\xFF")), "04 00 61 00 FD FF");
}

TEST(TextTypes, CharactersOfTheOtherTypesAreInTheCodePage)
{
    EncodedColumn column({TypeId::VarChar, 10}, TdsVersion::V74);
    EXPECT_EQ(column.typeInfo(), "A7 0A 00" + Collation);
    EXPECT_EQ(column.value(text("aé€Ω")), "04 00 61 E9 80 3F");
    EXPECT_EQ(EncodedColumn({TypeId::Char, 8000}, TdsVersion::V71).typeInfo(), "AF 40 1F" + Collation);
}

TEST(TextTypes, ShortTypesEncodeNullAsALength)
{
    for (const TypeId id :
         {TypeId::Char, TypeId::VarChar, TypeId::NChar, TypeId::NVarChar, TypeId::Binary, TypeId::VarBinary})
        EXPECT_EQ(EncodedColumn({id, 10}, TdsVersion::V72).value(Value()), "FF FF");
}

TEST(TextTypes, ATextLongerThanItsColumnIsTruncated)
{
    EXPECT_EQ(EncodedColumn({TypeId::NVarChar, 2}, TdsVersion::V74).value(text("abc")), "04 00 61 00 62 00");
    EXPECT_EQ(EncodedColumn({TypeId::NVarChar, 2}, TdsVersion::V74).value(text("éée")), "04 00 E9 00 E9 00");
    EXPECT_EQ(EncodedColumn({TypeId::VarChar, 2}, TdsVersion::V74).value(text("éée")), "02 00 E9 E9");
}

TEST(TextTypes, TheOldLargeTypesHaveATextPointerAndATableName)
{
    const std::tuple<TypeId, const char *, Value, const char *> cases[] = {
        {TypeId::Text, "23 FF FF FF 7F 09 04 D0 00 34", text("é"), "01 00 00 00 E9"},
        {TypeId::NText, "63 FE FF FF 7F 09 04 D0 00 34", text("é"), "02 00 00 00 E9 00"},
        {TypeId::Image, "22 FF FF FF 7F", Bytes{1, 2}, "02 00 00 00 01 02"},
    };
    for (const auto &[id, info, value, bytes] : cases) {
        EncodedColumn newer({id}, TdsVersion::V72);
        EXPECT_EQ(newer.typeInfo(), std::string(info) + " 00");
        EncodedColumn older({id}, TdsVersion::V71);
        EXPECT_EQ(older.typeInfo(), std::string(info) + " 00 00");
        for (EncodedColumn *column : {&newer, &older}) {
            EXPECT_EQ(column->value(value), TextPointer + bytes);
            EXPECT_EQ(column->value(Value()), "00");
        }
    }
}

TEST(TextTypes, MaxTypesComeInChunksFrom72OnAndAsTheOldLargeTypesBefore)
{
    const std::tuple<TypeId, const char *, const char *> cases[] = {
        {TypeId::VarChar, "A7 FF FF 09 04 D0 00 34", "23 FF FF FF 7F 09 04 D0 00 34 00 00"},
        {TypeId::NVarChar, "E7 FF FF 09 04 D0 00 34", "63 FE FF FF 7F 09 04 D0 00 34 00 00"},
        {TypeId::VarBinary, "A5 FF FF", "22 FF FF FF 7F 00 00"},
    };
    for (const auto &[id, chunked, old] : cases) {
        EncodedColumn column({id, SqlType::Max}, TdsVersion::V72);
        EXPECT_EQ(column.typeInfo(), chunked);
        EXPECT_EQ(column.value(Value()), "FF FF FF FF FF FF FF FF");
        EXPECT_EQ(EncodedColumn({id, SqlType::Max}, TdsVersion::V71).typeInfo(), old);
    }
    EncodedColumn column({TypeId::NVarChar, SqlType::Max}, TdsVersion::V74);
    EXPECT_EQ(column.value(text("aé")), "04 00 00 00 00 00 00 00 04 00 00 00 61 00 E9 00 00 00 00 00");
    EXPECT_EQ(column.value(text("")), "00 00 00 00 00 00 00 00 00 00 00 00");
}

TEST(TextTypes, ALongValueComesInManyChunksWithoutLoss)
{
    std::string content;
    for (int index = 0; index < 30'000; ++index)
        content += static_cast<char>('a' + index % 26);
    EncodedColumn column({TypeId::VarChar, SqlType::Max}, TdsVersion::V74);
    EXPECT_EQ(chunks(column.value(text(content))), content);
    const std::string wide = chunks(EncodedColumn({TypeId::Xml}, TdsVersion::V74).value(text(content)));
    ASSERT_EQ(wide.size(), 2 * content.size());
    for (std::size_t index = 0; index < content.size(); ++index)
        ASSERT_EQ(wide[2 * index], content[index]);
}

TEST(BinaryTypes, BytesAreUnchanged)
{
    EncodedColumn column({TypeId::VarBinary, 10}, TdsVersion::V74);
    EXPECT_EQ(column.typeInfo(), "A5 0A 00");
    EXPECT_EQ(column.value(Bytes{0, 255}), "02 00 00 FF");
    EXPECT_EQ(EncodedColumn({TypeId::Binary, 8000}, TdsVersion::V74).typeInfo(), "AD 40 1F");
}

TEST(BinaryTypes, XmlIsTextInChunksAndNTextFor71)
{
    EncodedColumn column({TypeId::Xml}, TdsVersion::V72);
    EXPECT_EQ(column.typeInfo(), "F1 00");
    EXPECT_EQ(column.value(text("<")), "02 00 00 00 00 00 00 00 02 00 00 00 3C 00 00 00 00 00");
    EXPECT_EQ(EncodedColumn({TypeId::Xml}, TdsVersion::V71).typeInfo(),
              "63 FE FF FF 7F" + Collation + " 00 00");
}

TEST(BinaryTypes, HierarchyIdIsAUserDefinedTypeAndBinaryFor71)
{
    EncodedColumn column({TypeId::HierarchyId}, TdsVersion::V72);
    EXPECT_TRUE(column.typeInfo().starts_with(
        "F0 7C 03 06 6D 00 61 00 73 00 74 00 65 00 72 00 03 73 00 79 00 73 00 0B 68 00 69 00 65 00 72"))
        << column.typeInfo();
    EXPECT_EQ(column.value(Bytes{0x58}), "01 00 00 00 00 00 00 00 01 00 00 00 58 00 00 00 00");
    EXPECT_EQ(column.value(Value()), "FF FF FF FF FF FF FF FF");
    EXPECT_EQ(EncodedColumn({TypeId::HierarchyId}, TdsVersion::V71).typeInfo(), "A5 7C 03");
}
