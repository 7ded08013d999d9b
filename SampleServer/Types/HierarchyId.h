#pragma once

#include "Types/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace SampleServer {

/// Converts the text form "/1/2.1/" to the bytes of a hierarchyid; empty if the text is invalid. [MS-SSCLRT]
/// 2.1: every label is a bit string whose prefix determines its range.
std::optional<Bytes> hierarchyIdFromString(std::string_view text);
/// Returns the text form; for invalid bytes the part before the error.
std::string hierarchyIdToString(const Bytes &bytes);

} // namespace SampleServer
