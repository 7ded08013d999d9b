#pragma once

#include "Types/ResultSink.h"
#include "Wire/Transport.h"

#include <algorithm>
#include <cstdio>
#include <deque>
#include <string>
#include <vector>

/// A transport between a test and the wire: what the client is to have said, in the pieces in which it
/// arrives, and what the server has written. A read beyond the last piece loses the connection.
class MemoryTransport final : public SampleServer::Transport
{
public:
    using Bytes = std::vector<std::uint8_t>;

    std::deque<Bytes> incoming;
    Bytes written;
    std::size_t writes = 0; ///< how many calls it took

    bool waitReadable(std::chrono::milliseconds) override { return !incoming.empty(); }

    std::size_t read(std::span<std::uint8_t> buffer) override
    {
        if (incoming.empty())
            throw SampleServer::ConnectionLost();
        Bytes &piece = incoming.front();
        const std::size_t count = std::min(buffer.size(), piece.size());
        std::copy_n(piece.begin(), count, buffer.begin());
        piece.erase(piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(count));
        if (piece.empty())
            incoming.pop_front();
        return count;
    }

    void write(std::span<const std::uint8_t> bytes) override
    {
        written.insert(written.end(), bytes.begin(), bytes.end());
        ++writes;
    }
};

/// "01 0A FF".
inline std::string hex(std::span<const std::uint8_t> bytes)
{
    std::string text;
    for (const std::uint8_t byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%s%02X", text.empty() ? "" : " ", byte);
        text += digits;
    }
    return text;
}

/// The content of the packets that a writer has sent, without their headers.
inline MemoryTransport::Bytes payloadOf(const MemoryTransport::Bytes &packets)
{
    MemoryTransport::Bytes payload;
    for (std::size_t at = 0; at + 8 <= packets.size();) {
        const auto length = static_cast<std::size_t>(packets[at + 2] << 8 | packets[at + 3]);
        payload.insert(payload.end(), packets.begin() + static_cast<std::ptrdiff_t>(at + 8),
                       packets.begin() + static_cast<std::ptrdiff_t>(std::min(at + length, packets.size())));
        at += length;
    }
    return payload;
}
