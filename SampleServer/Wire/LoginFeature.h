#pragma once

#include <cstdint>

namespace SampleServer::LoginFeature {

/// Identifiers of the features that a login requests (MS-TDS 2.2.6.4).
inline constexpr std::uint8_t Utf8Support = 0x0A, Terminator = 0xFF;

} // namespace SampleServer::LoginFeature
