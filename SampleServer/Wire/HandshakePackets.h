#pragma once

#include "Wire/Packet.h"
#include "Wire/Transport.h"

#include <array>
#include <vector>

namespace SampleServer {

/// Transports the bytes of a TLS handshake in PRELOGIN packets (MS-TDS 2.2.6.5). Reads no byte behind the
/// current packet from the underlying transport. Throws ProtocolError for other packets.
class HandshakePackets final : public Transport
{
public:
    explicit HandshakePackets(Transport &transport)
        : m_transport(transport)
    {
    }

    bool waitReadable(std::chrono::milliseconds timeout) override;
    std::size_t read(std::span<std::uint8_t> buffer) override;
    /// Buffers the bytes for flush().
    void write(std::span<const std::uint8_t> bytes) override;
    /// Sends the buffered bytes as one message.
    void flush();

private:
    void takeHeader();

    Transport &m_transport;
    std::array<std::uint8_t, PacketHeaderSize> m_header{};
    std::size_t m_headerSize = 0;  ///< received bytes of the next header
    std::size_t m_contentLeft = 0; ///< of the current packet
    std::vector<std::uint8_t> m_written;
};

} // namespace SampleServer
