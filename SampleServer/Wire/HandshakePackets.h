#pragma once

#include "Wire/Packet.h"
#include "Wire/Transport.h"

#include <array>
#include <vector>

namespace SampleServer {

/// The bytes of a TLS handshake as the content of PRELOGIN packets (MS-TDS 2.2.6.5). Takes no byte from the
/// transport below that lies behind the packet it is reading.
/// Throws ProtocolError for what is no such packet.
class HandshakePackets final : public Transport
{
public:
    explicit HandshakePackets(Transport &transport)
        : m_transport(transport)
    {
    }

    bool waitReadable(std::chrono::milliseconds timeout) override;
    std::size_t read(std::span<std::uint8_t> buffer) override;
    /// Collects the bytes for flush().
    void write(std::span<const std::uint8_t> bytes) override;
    /// Sends what was written as one message.
    void flush();

private:
    void takeHeader();

    Transport &m_transport;
    std::array<std::uint8_t, PacketHeaderSize> m_header{};
    std::size_t m_headerSize = 0;  ///< how much of the next header has come
    std::size_t m_contentLeft = 0; ///< of the current packet
    std::vector<std::uint8_t> m_written;
};

} // namespace SampleServer
