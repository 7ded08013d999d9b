#pragma once

#include "Types/Value.h"
#include "Wire/WireType.h"

namespace SampleServer {

/// Writes `wire.maxLength` bytes of a scalar, without a length. The value must not be NULL and must have the
/// type's alternative; a number outside the type's range throws std::range_error.
void putScalar(PacketWriter &out, const WireType &wire, const Value &value);

} // namespace SampleServer
