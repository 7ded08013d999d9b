#pragma once

#include "Types/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace SampleServer {

/// The bytes of a hierarchyid from its text form "/1/2.1/"; empty when the text is none.
/// [MS-SSCLRT] 2.1: every label is a bit string whose prefix says its range.
std::optional<Bytes> hierarchyIdFromString(std::string_view text);
/// The text form; bytes that are no hierarchyid give what could be read before the fault.
std::string hierarchyIdToString(const Bytes &bytes);

} // namespace SampleServer
