#include "Wire/PacketWriter.h"

#include <algorithm>

namespace SampleServer {

namespace {

/// Enough packets to make one system call relatively cheap, small enough for hundreds of connections.
constexpr std::size_t BufferSize = std::size_t{64} * 1024;

} // namespace

PacketWriter::PacketWriter(Transport &transport)
    : m_transport(transport)
{
    layOutBuffer();
}

void PacketWriter::setPacketSize(std::size_t size)
{
    m_packetSize = std::clamp(size, MinimumPacketSize, MaximumPacketSize);
    layOutBuffer();
}

void PacketWriter::layOutBuffer()
{
    m_buffer.resize(BufferSize / m_packetSize * m_packetSize);
    m_packetStart = m_buffer.data();
    startPacket();
}

void PacketWriter::startPacket()
{
    m_cursor = m_packetStart + PacketHeaderSize;
    m_packetEnd = m_packetStart + m_packetSize;
}

/// Writes the current packet's header and starts the next one after it; there may be no space for that one.
void PacketWriter::closePacket(std::uint8_t status)
{
    const std::size_t length = static_cast<std::size_t>(m_cursor - m_packetStart);
    const std::uint8_t header[PacketHeaderSize] = {static_cast<std::uint8_t>(PacketType::TabularResult),
                                                   status,
                                                   static_cast<std::uint8_t>(length >> 8),
                                                   static_cast<std::uint8_t>(length),
                                                   static_cast<std::uint8_t>(m_processId >> 8),
                                                   static_cast<std::uint8_t>(m_processId),
                                                   m_packetId++,
                                                   0};
    std::memcpy(m_packetStart, header, sizeof header);
    m_packetStart = m_cursor;
}

void PacketWriter::putAcrossPackets(const void *bytes, std::size_t count)
{
    const auto *source = static_cast<const std::uint8_t *>(bytes);
    while (count > 0) {
        // A full packet is closed only when more data follows: until then it may be the last one.
        if (m_cursor == m_packetEnd) {
            closePacket(0);
            if (static_cast<std::size_t>(m_buffer.data() + m_buffer.size() - m_packetStart) < m_packetSize)
                sendFullPackets();
            else
                startPacket();
        }
        const std::size_t part = std::min(count, static_cast<std::size_t>(m_packetEnd - m_cursor));
        std::memcpy(m_cursor, source, part);
        m_cursor += part;
        source += part;
        count -= part;
    }
}

void PacketWriter::putShortText(std::u16string_view text)
{
    text = text.substr(0, 0xFF);
    put(static_cast<std::uint8_t>(text.size()));
    putUnits(text);
}

void PacketWriter::putLongText(std::u16string_view text)
{
    text = text.substr(0, 0xFFFF);
    put(static_cast<std::uint16_t>(text.size()));
    putUnits(text);
}

void PacketWriter::sendFullPackets()
{
    const std::size_t full = static_cast<std::size_t>(m_packetStart - m_buffer.data());
    if (full > 0)
        m_transport.write({m_buffer.data(), full});
    const std::size_t partial = static_cast<std::size_t>(m_cursor - m_packetStart);
    if (partial > 0)
        std::memmove(m_buffer.data(), m_packetStart, partial);
    m_packetStart = m_buffer.data();
    startPacket();
    m_cursor = m_packetStart + std::max(partial, PacketHeaderSize);
}

void PacketWriter::flush()
{
    if (m_cursor > m_packetStart + PacketHeaderSize)
        closePacket(0);
    sendFullPackets();
}

void PacketWriter::endMessage()
{
    closePacket(PacketStatus::EndOfMessage);
    sendFullPackets();
    m_packetId = 1;
}

} // namespace SampleServer
