#include "Wire/HandshakePackets.h"

#include "Wire/Countdown.h"
#include "Wire/ProtocolError.h"

namespace SampleServer {

bool HandshakePackets::waitReadable(std::chrono::milliseconds timeout)
{
    const Countdown countdown(timeout);
    while (m_contentLeft == 0) {
        if (!m_transport.waitReadable(countdown.left()))
            return false;
        takeHeader();
    }
    return m_transport.waitReadable(countdown.left());
}

/// Reads the available part of a packet header.
void HandshakePackets::takeHeader()
{
    m_headerSize += m_transport.read(std::span(m_header).subspan(m_headerSize));
    if (m_headerSize < m_header.size())
        return;
    const auto length = static_cast<std::size_t>(m_header[2] << 8 | m_header[3]);
    if (m_header[0] != static_cast<std::uint8_t>(PacketType::Prelogin) || length <= PacketHeaderSize ||
        length > MaximumPacketSize)
        throw ProtocolError("A TLS handshake is not wrapped in packets.");
    m_headerSize = 0;
    m_contentLeft = length - PacketHeaderSize;
}

std::size_t HandshakePackets::read(std::span<std::uint8_t> buffer)
{
    waitReadable(Forever);
    const std::size_t count = m_transport.read(buffer.first(std::min(buffer.size(), m_contentLeft)));
    m_contentLeft -= count;
    return count;
}

void HandshakePackets::write(std::span<const std::uint8_t> bytes)
{
    m_written.insert(m_written.end(), bytes.begin(), bytes.end());
}

void HandshakePackets::flush()
{
    std::span<const std::uint8_t> left = m_written;
    for (std::uint8_t number = 1; !left.empty(); ++number) {
        const auto content = left.first(std::min(left.size(), DefaultPacketSize - PacketHeaderSize));
        left = left.subspan(content.size());
        const std::size_t length = PacketHeaderSize + content.size();
        std::vector<std::uint8_t> packet = {static_cast<std::uint8_t>(PacketType::Prelogin),
                                            left.empty() ? PacketStatus::EndOfMessage : std::uint8_t{0},
                                            static_cast<std::uint8_t>(length >> 8),
                                            static_cast<std::uint8_t>(length),
                                            0,
                                            0,
                                            number,
                                            0};
        packet.insert(packet.end(), content.begin(), content.end());
        m_transport.write(packet);
    }
    m_written.clear();
}

} // namespace SampleServer
