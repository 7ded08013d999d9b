#include "Wire/PacketWriter.h"

#include "MemoryTransport.h"

#include <gtest/gtest.h>
#include <numeric>

using namespace SampleServer;
using Bytes = MemoryTransport::Bytes;

namespace {

/// The sizes and status bytes of the packets in a stream; checks that it consists of whole packets.
std::vector<std::pair<std::size_t, int>> packetsIn(const Bytes &stream)
{
    std::vector<std::pair<std::size_t, int>> packets;
    std::size_t at = 0;
    while (at + PacketHeaderSize <= stream.size()) {
        const auto length = static_cast<std::size_t>(stream[at + 2] << 8 | stream[at + 3]);
        packets.emplace_back(length, stream[at + 1]);
        at += length;
    }
    EXPECT_EQ(at, stream.size());
    return packets;
}

Bytes counting(std::size_t size)
{
    Bytes bytes(size);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
    return bytes;
}

} // namespace

TEST(PacketWriter, WritesAHeaderWithTypeStatusLengthProcessAndNumber)
{
    MemoryTransport transport;
    PacketWriter writer(transport);
    writer.setProcessId(51);
    writer.put<std::uint16_t>(0x1234);
    writer.endMessage();
    EXPECT_EQ(hex(transport.written), "04 01 00 0A 00 33 01 00 34 12");
}

TEST(PacketWriter, SplitsNumbersAndTextsAtAnyPacketBoundary)
{
    for (std::size_t filler = 490; filler < 512; ++filler) {
        MemoryTransport transport;
        PacketWriter writer(transport);
        writer.setPacketSize(512);
        const Bytes bytes = counting(filler);
        writer.putBytes(bytes.data(), bytes.size());
        writer.put<std::uint64_t>(0x0807060504030201);
        writer.putShortText(u"AB");
        writer.endMessage();

        Bytes expected = bytes;
        for (const std::uint8_t byte : {1, 2, 3, 4, 5, 6, 7, 8, 2, int{'A'}, 0, int{'B'}, 0})
            expected.push_back(byte);
        EXPECT_EQ(payloadOf(transport.written), expected) << filler;
        for (const auto &[size, status] : packetsIn(transport.written))
            EXPECT_LE(size, 512u);
    }
}

TEST(PacketWriter, MarksAFullPacketAsTheLastWhenNothingFollows)
{
    MemoryTransport transport;
    PacketWriter writer(transport);
    writer.setPacketSize(512);
    const Bytes bytes = counting(2 * (512 - PacketHeaderSize));
    writer.putBytes(bytes.data(), bytes.size());
    writer.endMessage();
    const std::vector<std::pair<std::size_t, int>> expected = {{512, 0}, {512, 1}};
    EXPECT_EQ(packetsIn(transport.written), expected);
}

TEST(PacketWriter, SendsAMessageOfManyBuffersWithoutLoss)
{
    for (const std::size_t packetSize : {512u, 4096u, 32767u}) {
        MemoryTransport transport;
        PacketWriter writer(transport);
        writer.setPacketSize(packetSize);
        const Bytes bytes = counting(300'001);
        writer.putBytes(bytes.data(), bytes.size());
        writer.endMessage();
        EXPECT_EQ(payloadOf(transport.written), bytes);
        const auto packets = packetsIn(transport.written);
        EXPECT_EQ(packets.size(), (bytes.size() + packetSize - 9) / (packetSize - 8));
        EXPECT_EQ(packets.back().second, 1);
        EXPECT_LT(transport.writes, 12u) << "packets of " << packetSize << " are not gathered";
    }
}

TEST(PacketWriter, FlushSendsAPacketThatDoesNotEndTheMessage)
{
    MemoryTransport transport;
    PacketWriter writer(transport);
    writer.put<std::uint8_t>(1);
    writer.flush();
    EXPECT_EQ(hex(transport.written), "04 00 00 09 00 00 01 00 01");
    writer.flush();
    EXPECT_EQ(transport.written.size(), 9u) << "there was nothing to send";
    writer.put<std::uint8_t>(2);
    writer.endMessage();
    EXPECT_EQ(hex(std::span(transport.written).subspan(9)), "04 01 00 09 00 00 02 00 02");
}

TEST(PacketWriter, SendFullPacketsKeepsTheIncompleteOne)
{
    MemoryTransport transport;
    PacketWriter writer(transport);
    writer.setPacketSize(512);
    const Bytes bytes = counting(600);
    writer.putBytes(bytes.data(), bytes.size());
    writer.sendFullPackets();
    EXPECT_EQ(transport.written.size(), 512u);
    writer.endMessage();
    EXPECT_EQ(payloadOf(transport.written), bytes);
}

TEST(PacketWriter, TruncatesTextsAtTheLimitOfTheirLengthField)
{
    MemoryTransport transport;
    PacketWriter writer(transport);
    writer.putShortText(std::u16string(300, u'x'));
    writer.endMessage();
    const Bytes payload = payloadOf(transport.written);
    EXPECT_EQ(payload.size(), 1u + 2 * 255);
    EXPECT_EQ(payload[0], 255);
}
