#pragma once

#include "Wire/ByteReader.h"
#include "Wire/TdsVersion.h"

#include <optional>
#include <string>

namespace SampleServer {

/// Skips the ALL_HEADERS at the start of requests from 7.2 on. Throws ProtocolError, as do all functions
/// here.
void skipHeaders(ByteReader &request, TdsVersion version);

/// Returns the text of an SQL batch.
std::string parseBatch(std::span<const std::uint8_t> payload, TdsVersion version);

/// Translates a transaction manager request to T-SQL; empty if there is no equivalent.
std::optional<std::string> parseTransactionRequest(std::span<const std::uint8_t> payload, TdsVersion version);

} // namespace SampleServer
