#pragma once

#include "Wire/Packet.h"
#include "Wire/Transport.h"

#include <vector>

namespace SampleServer {

/// A request put together from its packets.
struct RequestMessage
{
    PacketType type = PacketType::SqlBatch;
    std::uint8_t status = 0; ///< the status bits of all its packets
    std::vector<std::uint8_t> payload;
};

/// Puts the client's packets together to messages, however the bytes were cut on their way.
/// Throws ProtocolError for what is no packet or exceeds the limit, ConnectionLost when the client is gone.
class PacketReader
{
public:
    using Clock = std::chrono::steady_clock;

    explicit PacketReader(Transport &transport);

    /// The size above which a message ends the connection: small until the client has logged in.
    void setMessageLimit(std::size_t bytes) { m_messageLimit = bytes; }
    /// When the client must have said what it has to say; Clock::time_point::max() for no limit.
    void setDeadline(Clock::time_point deadline) { m_deadline = deadline; }

    /// Whether bytes behind the last message have come.
    bool hasMore() const { return buffered() > 0; }
    /// Waits for a whole message. An attention that cuts off an unfinished message is returned in its place.
    RequestMessage read();
    /// Waits at most that long for an attention packet and takes it; zero only looks. Other packets stay for
    /// read().
    bool takeAttention(std::chrono::milliseconds timeout);

private:
    std::size_t buffered() const { return m_end - m_begin; }
    void fill();
    std::size_t packetLength() const;

    Transport &m_transport;
    std::vector<std::uint8_t> m_buffer; ///< bytes received and not consumed: [m_begin, m_end)
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
    std::size_t m_messageLimit;
    Clock::time_point m_deadline = Clock::time_point::max();
};

} // namespace SampleServer
