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

TEST(CellLiteral, DoublesABackslashAndTheLineEndBehindIt)
{
    EXPECT_EQ(literalOf(KNRowCell::Text, "a\\\nb"), "'a\\\\\n\nb'");
    EXPECT_EQ(literalOf(KNRowCell::Text, "'\\\r\n"), "'''\\\\\r\n\r\n'");
    EXPECT_EQ(literalOf(KNRowCell::Text, "\\\r\\b\\"), "'\\\r\\b\\'");
}

TEST(CellLiteral, WritesFloatingPointNumbersWithAnExponent)
{
    const auto literal = [](auto number, KNRowCell::Tag tag) {
        return literalOf(tag, QByteArray(reinterpret_cast<const char *>(&number), sizeof number));
    };
    EXPECT_EQ(literal(0.1, KNRowCell::Double), "0.1e0");
    EXPECT_EQ(literal(5.0, KNRowCell::Double), "5e0");
    EXPECT_EQ(literal(1e20, KNRowCell::Double), "1e+20");
    EXPECT_EQ(literal(-0.0, KNRowCell::Double), "-0e0");
    EXPECT_EQ(literal(0.12345678901234566, KNRowCell::Double), "0.12345678901234566e0");
    EXPECT_EQ(literal(0.1F, KNRowCell::Float), "0.1e0");
    EXPECT_EQ(literal(qint32{5}, KNRowCell::Int32), "5");
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
