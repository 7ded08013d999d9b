#pragma once

#include "Wire/Packet.h"
#include "Wire/Transport.h"

#include <vector>

namespace SampleServer {

/// A request assembled from its packets.
struct RequestMessage
{
    PacketType type = PacketType::SqlBatch;
    std::uint8_t status = 0; ///< the status bits of all its packets
    std::vector<std::uint8_t> payload;
};

/// Assembles the client's packets into messages, regardless of how the bytes arrive. Throws ProtocolError for
/// invalid packets or messages above the limit, ConnectionLost if the client has disconnected.
class PacketReader
{
public:
    using Clock = std::chrono::steady_clock;

    explicit PacketReader(Transport &transport);

    /// Sets the maximum message size; larger messages end the connection. Small until the client has logged
    /// in.
    void setMessageLimit(std::size_t bytes) { m_messageLimit = bytes; }
    /// Sets the time by which the client's messages must have arrived; Clock::time_point::max() for no limit.
    void setDeadline(Clock::time_point deadline) { m_deadline = deadline; }

    /// Whether bytes after the last message have arrived.
    bool hasMore() const { return buffered() > 0; }
    /// Waits for a whole message. An attention that interrupts an unfinished message is returned instead of
    /// it.
    RequestMessage read();
    /// Waits for an attention packet until the timeout expires and consumes it; a timeout of zero only
    /// checks. Other packets remain for read().
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
