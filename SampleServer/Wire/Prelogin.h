#pragma once

#include "Types/Value.h"
#include "Wire/TokenWriter.h"

#include <span>

namespace SampleServer {

/// What a client and a server say about encryption before the login (MS-TDS 2.2.6.5).
enum class Encryption : std::uint8_t { Off = 0, On = 1, NotSupported = 2, Required = 3 };

/// What the server does about encryption: nothing, what the client asks for, or all of it.
enum class TlsPolicy { Off, Request, Require };

/// What of a PRELOGIN message the server acts on.
struct Prelogin
{
    Encryption encryption = Encryption::NotSupported;
    bool federatedAuthentication = false; ///< the client offers it
};

/// Throws ProtocolError for a message whose options point outside of it.
Prelogin parsePrelogin(std::span<const std::uint8_t> message);
/// What to answer to a client's wish. Off, said by both, encrypts the login alone; after NotSupported, said
/// by either, nothing is encrypted.
Encryption agreedEncryption(Encryption asked, TlsPolicy policy);
/// The answer's content.
Bytes preloginResponse(const Prelogin &request, Encryption encryption, const ProgramVersion &version);

} // namespace SampleServer
