#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace SampleServer {

/// The supported protocol versions in order. 7.3 has two revisions: A has the date types, B has NBCROW.
enum class TdsVersion : std::uint8_t { V71, V72, V73A, V73B, V74 };

/// Returns the version that a LOGIN7 requests; empty if it is not supported. Revisions within a version are
/// not distinguished.
std::optional<TdsVersion> tdsVersionFromLogin(std::uint32_t loginVersion);
/// The four version bytes in LOGINACK, most significant first.
std::uint32_t loginAckVersion(TdsVersion version);
/// Parses "7.1" to "7.4"; "7.3" is 7.3B.
std::optional<TdsVersion> tdsVersionFromText(std::string_view text);

} // namespace SampleServer
