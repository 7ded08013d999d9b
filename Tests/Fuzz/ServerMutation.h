#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// Changes the bytes that a server sends on one connection. The changes depend on the seed only, and their
/// places on positions in the stream of unchanged bytes; time has no influence. Immutable, so any thread may
/// use it.
class ServerMutation
{
public:
    using Bytes = std::vector<std::uint8_t>;

    enum class Kind {
        FlipBit,
        SetByte,         ///< to a value at an edge, such as 0 or 0xFF
        SetLength,       ///< two or four bytes, to a length at an edge
        RemoveBytes,     ///< the packet becomes shorter, its header is right
        TruncatePacket,  ///< bytes are missing although its header counts them
        SetPacketLength, ///< its header counts what is not there
        DuplicateToken,
        InsertToken,
        DropConnection,
    };
    static constexpr unsigned KindCount = 9;

    struct Change
    {
        Kind kind;
        std::uint64_t position; ///< in the server's stream, counted from 0
        std::uint32_t value;    ///< what varies within a kind
    };

    /// A server's frame as it is passed on.
    struct Result
    {
        Bytes bytes;
        bool isLast = false; ///< the connection is closed after these bytes
    };

    /// One to three changes at positions in [begin, end), which must not be empty.
    ServerMutation(std::uint64_t seed, std::uint64_t begin, std::uint64_t end);
    /// Changes nothing.
    ServerMutation() = default;

    /// Such as "FlipBit at 123 (45), DropConnection at 678 (9)".
    std::string description() const;
    /// Changes a TDS packet or a TLS record that begins at a position of the stream.
    Result apply(std::span<const std::uint8_t> frame, std::uint64_t position) const;

private:
    std::vector<Change> m_changes; ///< the highest position first, so that earlier ones stay valid
};
