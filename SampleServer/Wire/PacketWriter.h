#pragma once

#include "Wire/Packet.h"
#include "Wire/Transport.h"

#include <concepts>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

namespace SampleServer {

/// Writes one response after another, cut into packets. Numbers are little-endian. Packets collect in a
/// buffer and leave when it is full, on flush() and at the end of the message.
class PacketWriter
{
public:
    explicit PacketWriter(Transport &transport);

    /// The number of the session, which every packet carries; 0 until there is one.
    void setProcessId(std::uint16_t processId) { m_processId = processId; }

    /// Takes effect with the next message; call it between two.
    void setPacketSize(std::size_t size);

    /// Where to write `count` bytes directly, or null when the current packet has no room for them in one
    /// piece.
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
    /// A B_VARCHAR: the count of units in a byte, then the units; cut at 255 units.
    void putShortText(std::u16string_view text);
    /// A US_VARCHAR: the count of units in two bytes, then the units.
    void putLongText(std::u16string_view text);

    /// Sends the packets that are full and keeps the one that is not.
    void sendFullPackets();
    /// Sends everything now; the message goes on.
    void flush();
    /// Closes the message and sends it.
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
    std::vector<std::uint8_t> m_buffer; ///< closed packets, then the current one, with room for whole packets
    std::uint8_t *m_packetStart = nullptr; ///< the current packet's header
    std::uint8_t *m_packetEnd = nullptr;   ///< where the current packet is full
    std::uint8_t *m_cursor = nullptr;
};

} // namespace SampleServer
