#pragma once

#include "Types/Value.h"
#include "Wire/NtlmHashes.h"

#include <span>
#include <string>

namespace SampleServer::Ntlm {

/// Creates the CHALLENGE_MESSAGE (MS-NLMP 2.2.1.2) that answers a NEGOTIATE_MESSAGE, for a server with this
/// name. Throws ProtocolError if the client's message is invalid or does not support Unicode.
Bytes challengeMessage(std::span<const std::uint8_t> negotiate, const Challenge &challenge,
                       std::string_view serverName);

/// An AUTHENTICATE_MESSAGE (MS-NLMP 2.2.1.3).
struct Authentication
{
    std::u16string domain;
    std::u16string user;
    Bytes lmResponse;
    Bytes ntResponse;
    bool extendedSessionSecurity = false;

    /// Whether the NTLM or NTLMv2 response proves that the client knows the password.
    bool proves(std::u16string_view password, const Challenge &challenge) const;
};

/// Throws ProtocolError if the message is invalid.
Authentication parseAuthentication(std::span<const std::uint8_t> message);

} // namespace SampleServer::Ntlm
