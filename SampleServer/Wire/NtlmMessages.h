#pragma once

#include "Types/Value.h"
#include "Wire/NtlmHashes.h"

#include <span>
#include <string>

namespace SampleServer::Ntlm {

/// The CHALLENGE_MESSAGE (MS-NLMP 2.2.1.2) that answers a NEGOTIATE_MESSAGE, for a server of that name.
/// Throws ProtocolError when the client's message is none or does not speak Unicode.
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

    /// Whether its NTLM or NTLMv2 response proves that the client knows the password.
    bool proves(std::u16string_view password, const Challenge &challenge) const;
};

/// Throws ProtocolError when the message is none.
Authentication parseAuthentication(std::span<const std::uint8_t> message);

} // namespace SampleServer::Ntlm
