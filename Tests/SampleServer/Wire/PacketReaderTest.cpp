#include "Wire/PacketReader.h"

#include "MemoryTransport.h"
#include "Wire/ProtocolError.h"

#include <gtest/gtest.h>

namespace PacketReaderTest {

using namespace SampleServer;
using namespace std::chrono_literals;
using Bytes = MemoryTransport::Bytes;

namespace {

Bytes packet(PacketType type, std::uint8_t status, const std::string &content)
{
    const std::size_t length = content.size() + PacketHeaderSize;
    Bytes bytes{static_cast<std::uint8_t>(type),
                status,
                static_cast<std::uint8_t>(length >> 8),
                static_cast<std::uint8_t>(length),
                0,
                0,
                1,
                0};
    std::copy(content.begin(), content.end(), std::back_inserter(bytes));
    return bytes;
}

Bytes chained(Bytes first, const Bytes &second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

std::string text(const Bytes &bytes)
{
    return {bytes.begin(), bytes.end()};
}

const Bytes TwoPackets =
    chained(packet(PacketType::SqlBatch, 0, "select "), packet(PacketType::SqlBatch, 1, "1"));
const Bytes AttentionPacket = packet(PacketType::Attention, 1, "");

} // namespace

TEST(PacketReader, AssemblesAMessageSplitAnywhere)
{
    for (std::size_t cut = 1; cut < TwoPackets.size(); ++cut) {
        MemoryTransport transport;
        const auto middle = TwoPackets.begin() + static_cast<std::ptrdiff_t>(cut);
        transport.incoming = {Bytes(TwoPackets.begin(), middle), Bytes(middle, TwoPackets.end())};
        PacketReader reader(transport);
        const RequestMessage message = reader.read();
        EXPECT_EQ(text(message.payload), "select 1") << "cut at " << cut;
        EXPECT_EQ(message.type, PacketType::SqlBatch);
        EXPECT_EQ(message.status, PacketStatus::EndOfMessage);
    }
}

TEST(PacketReader, AssemblesAMessageThatArrivesByteByByte)
{
    MemoryTransport transport;
    for (const std::uint8_t byte : TwoPackets)
        transport.incoming.push_back({byte});
    PacketReader reader(transport);
    EXPECT_EQ(text(reader.read().payload), "select 1");
}

TEST(PacketReader, KeepsTheNextMessageThatArrivedWithTheFirst)
{
    MemoryTransport transport;
    transport.incoming = {
        chained(packet(PacketType::SqlBatch, 1, "one"), packet(PacketType::SqlBatch, 1, "two"))};
    PacketReader reader(transport);
    EXPECT_EQ(text(reader.read().payload), "one");
    EXPECT_EQ(text(reader.read().payload), "two");
}

TEST(PacketReader, TakesAPacketOfTheLargestSize)
{
    MemoryTransport transport;
    const std::string content(MaximumPacketSize - PacketHeaderSize, 'x');
    transport.incoming = {packet(PacketType::SqlBatch, 1, content)};
    EXPECT_EQ(text(PacketReader(transport).read().payload), content);
}

TEST(PacketReader, RefusesALengthShorterThanAHeader)
{
    MemoryTransport transport;
    transport.incoming = {{1, 1, 0, 7, 0, 0, 1, 0}};
    EXPECT_THROW(PacketReader(transport).read(), ProtocolError);
}

TEST(PacketReader, RefusesALengthAboveTheLargestPacket)
{
    MemoryTransport transport;
    transport.incoming = {{1, 1, 0x80, 0, 0, 0, 1, 0}};
    EXPECT_THROW(PacketReader(transport).read(), ProtocolError);
}

TEST(PacketReader, RefusesAMessageAboveTheLimitBeforeItIsRead)
{
    MemoryTransport transport;
    transport.incoming = {chained(packet(PacketType::SqlBatch, 0, "12345"), {1, 1, 0, 14, 0, 0, 1, 0})};
    PacketReader reader(transport);
    reader.setMessageLimit(10);
    EXPECT_THROW(reader.read(), ProtocolError);
}

TEST(PacketReader, RefusesAMessageThatChangesItsType)
{
    MemoryTransport transport;
    transport.incoming = {chained(packet(PacketType::SqlBatch, 0, "a"), packet(PacketType::Rpc, 1, "b"))};
    EXPECT_THROW(PacketReader(transport).read(), ProtocolError);
}

TEST(PacketReader, FailsOnADisconnectInTheMiddleOfAPacket)
{
    MemoryTransport transport;
    transport.incoming = {Bytes(TwoPackets.begin(), TwoPackets.begin() + 10)};
    EXPECT_THROW(PacketReader(transport).read(), ConnectionLost);
}

TEST(PacketReader, ReturnsAnAttentionInPlaceOfTheMessageItInterrupts)
{
    MemoryTransport transport;
    transport.incoming = {chained(packet(PacketType::SqlBatch, 0, "select "), AttentionPacket)};
    const RequestMessage message = PacketReader(transport).read();
    EXPECT_EQ(message.type, PacketType::Attention);
    EXPECT_TRUE(message.payload.empty());
}

TEST(PacketReader, TakesAnAttentionThatArrivesInPieces)
{
    MemoryTransport transport;
    transport.incoming = {Bytes(AttentionPacket.begin(), AttentionPacket.begin() + 3),
                          Bytes(AttentionPacket.begin() + 3, AttentionPacket.end())};
    PacketReader reader(transport);
    EXPECT_TRUE(reader.takeAttention(0ms));
    EXPECT_FALSE(reader.takeAttention(0ms));
}

TEST(PacketReader, KeepsARequestThatArrivesTooEarly)
{
    MemoryTransport transport;
    transport.incoming = {packet(PacketType::SqlBatch, 1, "early")};
    PacketReader reader(transport);
    EXPECT_FALSE(reader.takeAttention(0ms));
    EXPECT_EQ(text(reader.read().payload), "early");
}

TEST(PacketReader, FailsWhenTheDeadlinePasses)
{
    MemoryTransport transport;
    PacketReader reader(transport);
    reader.setDeadline(PacketReader::Clock::now());
    EXPECT_THROW(reader.read(), ProtocolError);
}

} // namespace PacketReaderTest
