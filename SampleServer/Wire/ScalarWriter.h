#pragma once

#include "Types/Value.h"
#include "Wire/WireType.h"

namespace SampleServer {

/// Writes a scalar's bytes, `wire.maxLength` of them, without a length. The value is not NULL and of the
/// type's alternative; a number outside the type's range throws std::range_error.
void putScalar(PacketWriter &out, const WireType &wire, const Value &value);

} // namespace SampleServer
