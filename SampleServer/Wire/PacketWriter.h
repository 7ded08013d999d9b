#pragma once

#include "Wire/Packet.h"
#include "Wire/Transport.h"

#include <concepts>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

namespace SampleServer {

/// Writes responses, split into packets. Numbers are little-endian. Packets are buffered and sent when the
/// buffer is full, on flush() and at the end of the message.
class PacketWriter
{
public:
    explicit PacketWriter(Transport &transport);

    /// Sets the session's process id for the packet headers; 0 before there is a session.
    void setProcessId(std::uint16_t processId) { m_processId = processId; }

    /// Takes effect with the next message; call it between two messages.
    void setPacketSize(std::size_t size);

    /// Returns memory to write `count` bytes directly; null if the current packet has no contiguous space for
    /// them.
    std::uint8_t *claim(std::size_t count)
    {
        if (static_cast<std::size_t>(m_packetEnd - m_cursor) < count)
            return nullptr;
        return std::exchange(m_cursor, m_cursor + count);
    }

    template <std::integral T>
    void put(T value)
    {
        if (std::uint8_t *place = claim(sizeof(T)))
            std::memcpy(place, &value, sizeof(T));
        else
            putAcrossPackets(&value, sizeof(T));
    }

    void putBytes(const void *bytes, std::size_t count)
    {
        if (std::uint8_t *place = count == 0 ? nullptr : claim(count))
            std::memcpy(place, bytes, count);
        else
            putAcrossPackets(bytes, count);
    }
    /// UTF-16LE without a length.
    void putUnits(std::u16string_view text) { putBytes(text.data(), text.size() * 2); }
    /// A B_VARCHAR: the number of units in a byte, then the units; truncated at 255 units.
    void putShortText(std::u16string_view text);
    /// A US_VARCHAR: the number of units in two bytes, then the units.
    void putLongText(std::u16string_view text);

    /// Sends the full packets and keeps the current one.
    void sendFullPackets();
    /// Sends everything immediately; the message continues.
    void flush();
    /// Ends the message and sends it.
    void endMessage();

private:
    void putAcrossPackets(const void *bytes, std::size_t count);
    void startPacket();
    void closePacket(std::uint8_t status);
    void layOutBuffer();

    Transport &m_transport;
    std::uint16_t m_processId = 0;
    std::uint8_t m_packetId = 1;
    std::size_t m_packetSize = DefaultPacketSize;
    std::vector<std::uint8_t> m_buffer;    ///< closed packets, then the current one; space for whole packets
    std::uint8_t *m_packetStart = nullptr; ///< header of the current packet
    std::uint8_t *m_packetEnd = nullptr;   ///< end of the current packet
    std::uint8_t *m_cursor = nullptr;
};

} // namespace SampleServer
