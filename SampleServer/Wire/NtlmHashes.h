#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace SampleServer::Ntlm {

using Hash = std::array<std::uint8_t, 16>;
using Challenge = std::array<std::uint8_t, 8>;
using Response = std::array<std::uint8_t, 24>;

/// NTOWFv1: the NTLM hash of a password (MS-NLMP 3.3.1).
Hash passwordHash(std::u16string_view password);
/// NTOWFv2: the NTLM hash of a password for a user and domain (MS-NLMP 3.3.2).
Hash accountHash(std::u16string_view password, std::u16string_view user, std::u16string_view domain);

/// DESL: the NTLM response to a challenge.
Response response(const Hash &passwordHash, const Challenge &challenge);
/// The challenge used by both sides with extended session security.
Challenge sessionChallenge(const Challenge &server, const Challenge &client);
/// The proof at the start of an NTLMv2 response; `blob` is the remainder of the response.
Hash proof(const Hash &accountHash, const Challenge &server, std::span<const std::uint8_t> blob);

} // namespace SampleServer::Ntlm
