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

/// NTOWFv1: what NTLM makes of a password (MS-NLMP 3.3.1).
Hash passwordHash(std::u16string_view password);
/// NTOWFv2: the same for one user of one domain (MS-NLMP 3.3.2).
Hash accountHash(std::u16string_view password, std::u16string_view user, std::u16string_view domain);

/// DESL: the NTLM response to a challenge.
Response response(const Hash &passwordHash, const Challenge &challenge);
/// The challenge that both sides use under extended session security.
Challenge sessionChallenge(const Challenge &server, const Challenge &client);
/// The proof that opens an NTLMv2 response; `blob` is what follows it there.
Hash proof(const Hash &accountHash, const Challenge &server, std::span<const std::uint8_t> blob);

} // namespace SampleServer::Ntlm
