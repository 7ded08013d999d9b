#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Correct pieces of a TDS server's side (7.2 and later), for tests to send as they are, cut short or
/// spoiled.
namespace HostileServerBytes {

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::uint8_t BatchPacket = 1, RpcPacket = 3, AttentionPacket = 6, LoginPacket = 16,
                              SspiPacket = 17, PreloginPacket = 18;
inline constexpr std::uint16_t DoneMore = 1, DoneError = 2, DoneCount = 0x10, DoneAttention = 0x20;

/// Puts a payload into as many packets as it takes; the last one ends the message unless told otherwise.
Bytes packet(const Bytes &payload, bool endOfMessage = true, std::size_t packetSize = 4096);
/// One packet with a header that claims another length than it has.
Bytes packetOfClaimedLength(const Bytes &payload, std::uint16_t claimedLength);
Bytes joined(std::initializer_list<Bytes> pieces);

// Payloads.

/// 2 says that encryption is not supported.
Bytes preloginAnswer(std::uint8_t encryption = 2);
/// Everything that accepts a login: environment changes, LOGINACK, DONE.
Bytes loginAnswer(std::uint32_t tdsVersion = 0x74000004);

// Tokens. Names and texts are ASCII.

Bytes loginAck(std::uint32_t tdsVersion = 0x74000004);
Bytes environmentChange(std::uint8_t type, std::string_view newValue, std::string_view oldValue);
/// ERROR above severity 10, INFO up to it.
Bytes message(std::int32_t number, std::uint8_t severity, std::string_view text, std::int32_t line = 1);
/// COLMETADATA of nullable int columns.
Bytes intColumns(const std::vector<std::string> &names);
Bytes intRow(const std::vector<std::optional<std::int32_t>> &values);
/// COLMETADATA of one nullable nvarchar column of up to 4000 characters.
Bytes textColumn(std::string_view name);
Bytes textRow(std::string_view value);
Bytes done(std::uint16_t status = 0, std::uint64_t rowCount = 0);

} // namespace HostileServerBytes
