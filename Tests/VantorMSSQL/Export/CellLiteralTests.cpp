#include "Export/MSSQLCellLiteral.h"

#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <array>

namespace CellLiteralTests {

namespace {

QByteArray literalOf(KNRowCell::Tag tag, const QByteArray &bytes)
{
    KNByteBuffer buffer;
    MSSQLCellLiteral::append(buffer, {tag, reinterpret_cast<const unsigned char *>(bytes.constData()),
                                      static_cast<std::size_t>(bytes.size())});
    return QByteArray(buffer.data(), static_cast<qsizetype>(buffer.size()));
}

} // namespace

TEST(CellLiteral, QuotesTextAndMarksUnicode)
{
    EXPECT_EQ(literalOf(KNRowCell::Null, ""), "NULL");
    EXPECT_EQ(literalOf(KNRowCell::Text, ""), "''");
    EXPECT_EQ(literalOf(KNRowCell::Text, "it's 'quoted'"), "'it''s ''quoted'''");
    EXPECT_EQ(literalOf(KNRowCell::Text, "Zoë's"), "N'Zoë''s'");
    EXPECT_EQ(literalOf(KNRowCell::Text, "null"), "'null'");
}

TEST(CellLiteral, WritesBytesAndGuids)
{
    EXPECT_EQ(literalOf(KNRowCell::Bytes, QByteArray("\x00\xAB", 2)), "0x00AB");
    EXPECT_EQ(literalOf(KNRowCell::Bytes, ""), "0x");
    EXPECT_EQ(literalOf(KNRowCell::Guid, QByteArray::fromHex("FF19966F868B11D0B42D00C04FC964FF")),
              "'6F9619FF-8B86-D011-B42D-00C04FC964FF'");
    EXPECT_EQ(literalOf(KNRowCell::True, ""), "1");
}

} // namespace CellLiteralTests
