#pragma once

#include <cstddef>
#include <cstdint>

namespace SampleServer {

/// The packets of the TDS protocol (MS-TDS 2.2.3.1).
enum class PacketType : std::uint8_t {
    SqlBatch = 1,
    Rpc = 3,
    TabularResult = 4,
    Attention = 6,
    BulkLoad = 7,
    TransactionManager = 14,
    Login7 = 16,
    Sspi = 17,
    Prelogin = 18,
};

namespace PacketStatus {
inline constexpr std::uint8_t EndOfMessage = 0x01;
inline constexpr std::uint8_t Ignore = 0x02;
inline constexpr std::uint8_t ResetConnection = 0x08;
inline constexpr std::uint8_t ResetConnectionSkipTransaction = 0x10;
} // namespace PacketStatus

inline constexpr std::size_t PacketHeaderSize = 8;
inline constexpr std::size_t MinimumPacketSize = 512;
inline constexpr std::size_t DefaultPacketSize = 4096;
inline constexpr std::size_t MaximumPacketSize = 32767;

} // namespace SampleServer
