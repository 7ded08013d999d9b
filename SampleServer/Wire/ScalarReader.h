#pragma once

#include "Types/Value.h"

#include <span>

namespace SampleServer {

/// Reads a scalar's bytes as a client sends them in a parameter: the counterpart of putScalar().
/// Throws ProtocolError when they are too many or too few, or stand for a value outside the type's range.
Value scalarFrom(const SqlType &type, std::span<const std::uint8_t> bytes);

} // namespace SampleServer
