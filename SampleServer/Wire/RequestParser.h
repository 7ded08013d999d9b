#pragma once

#include "Wire/ByteReader.h"
#include "Wire/TdsVersion.h"

#include <optional>
#include <string>

namespace SampleServer {

/// Takes the ALL_HEADERS off that requests have in front from 7.2 on. Throws ProtocolError, as do all of
/// these.
void skipHeaders(ByteReader &request, TdsVersion version);

/// The text of an SQL batch.
std::string parseBatch(std::span<const std::uint8_t> payload, TdsVersion version);

/// The T-SQL that says the same as a transaction manager request; empty for one that T-SQL cannot say.
std::optional<std::string> parseTransactionRequest(std::span<const std::uint8_t> payload, TdsVersion version);

} // namespace SampleServer
