#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace SampleServer {

/// The protocol versions the server speaks, in their order. 7.3 came in two steps: A has the date types, B
/// has NBCROW.
enum class TdsVersion : std::uint8_t { V71, V72, V73A, V73B, V74 };

/// The version a LOGIN7 asks for; empty for one that is not spoken here. Revisions within a version are not
/// distinguished.
std::optional<TdsVersion> tdsVersionFromLogin(std::uint32_t loginVersion);
/// The four bytes of the version, most significant first, in LOGINACK.
std::uint32_t loginAckVersion(TdsVersion version);
/// Reads "7.1" to "7.4"; "7.3" is 7.3B.
std::optional<TdsVersion> tdsVersionFromText(std::string_view text);

} // namespace SampleServer
