#pragma once

#include "Types/Value.h"

#include <span>

namespace SampleServer {

/// Reads the bytes of a scalar parameter: the counterpart of putScalar(). Throws ProtocolError if there are
/// too many or too few bytes or the value is outside the type's range.
Value scalarFrom(const SqlType &type, std::span<const std::uint8_t> bytes);

} // namespace SampleServer
