#include "Wire/RequestParser.h"

#include "MemoryTransport.h"

#include <gtest/gtest.h>

using namespace SampleServer;

namespace {

using Bytes = std::vector<std::uint8_t>;

const Bytes Headers = {22, 0, 0, 0, 18, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0};

Bytes units(const std::u16string &text)
{
    Bytes bytes;
    for (const char16_t unit : text) {
        bytes.push_back(static_cast<std::uint8_t>(unit));
        bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
    }
    return bytes;
}

Bytes joinedPieces(std::initializer_list<Bytes> pieces)
{
    Bytes all;
    for (const Bytes &piece : pieces)
        all.insert(all.end(), piece.begin(), piece.end());
    return all;
}

} // namespace

TEST(RequestParser, SkipsTheHeadersOfABatchSince72)
{
    const Bytes text = units(u"select é");
    EXPECT_EQ(parseBatch(joinedPieces({Headers, text}), TdsVersion::V72), "select é");
    EXPECT_EQ(parseBatch(text, TdsVersion::V71), "select é");
    EXPECT_EQ(parseBatch(Headers, TdsVersion::V74), "");
}

TEST(RequestParser, RefusesMalformedBatches)
{
    EXPECT_THROW(parseBatch(Bytes{}, TdsVersion::V72), ProtocolError) << "no headers";
    EXPECT_THROW(parseBatch(Bytes{3, 0, 0, 0}, TdsVersion::V72), ProtocolError)
        << "headers shorter than their length";
    EXPECT_THROW(parseBatch(Bytes{0xFF, 0xFF, 0xFF, 0xFF}, TdsVersion::V72), ProtocolError)
        << "headers too long";
    EXPECT_THROW(parseBatch(Bytes{'a', 0, 'b'}, TdsVersion::V71), ProtocolError) << "half a character";
}

TEST(RequestParser, TranslatesTransactionRequestsToTSql)
{
    const auto sql = [](const Bytes &request) { return parseTransactionRequest(request, TdsVersion::V71); };
    EXPECT_EQ(sql({5, 0, 0, 0}), "BEGIN TRANSACTION");
    EXPECT_EQ(sql({5, 0, 4, 0}), "SET TRANSACTION ISOLATION LEVEL SERIALIZABLE; BEGIN TRANSACTION");
    EXPECT_EQ(sql({7, 0, 0, 0}), "COMMIT TRANSACTION");
    EXPECT_EQ(sql({7, 0, 0, 1, 0, 0}), "COMMIT TRANSACTION; BEGIN TRANSACTION");
    EXPECT_EQ(sql({8, 0, 0, 0}), "ROLLBACK TRANSACTION");
    EXPECT_EQ(sql({9, 0, 2, 'a', 0, ']', 0}), "SAVE TRANSACTION [a]]]");
    EXPECT_EQ(sql({0, 0}), std::nullopt) << "a distributed transaction";
    EXPECT_THROW(sql({7, 0}), ProtocolError);
}
