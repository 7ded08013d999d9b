#pragma once

#include "Types/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace SampleServer {

/// "6F9619FF-8B86-D011-B42D-00C04FC964FF".
std::string toString(const Guid &guid);
/// Parses the text form with or without braces; text after the 36 characters is ignored, as the server does.
std::optional<Guid> guidFromString(std::string_view text);
/// A random GUID (version 4).
Guid newGuid();
/// The bytes in the server's comparison order: the last group first.
std::array<std::uint8_t, 16> sortableBytes(const Guid &guid);
Guid guidFromSortableBytes(const std::uint8_t *bytes);

} // namespace SampleServer
