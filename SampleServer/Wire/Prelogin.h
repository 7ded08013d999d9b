#pragma once

#include "Types/Value.h"
#include "Wire/TokenWriter.h"

#include <span>

namespace SampleServer {

/// The encryption options that client and server negotiate before the login (MS-TDS 2.2.6.5).
enum class Encryption : std::uint8_t { Off = 0, On = 1, NotSupported = 2, Required = 3 };

/// The server's encryption policy: none, as requested by the client, or everything.
enum class TlsPolicy { Off, Request, Require };

/// The parts of a PRELOGIN message that the server uses.
struct Prelogin
{
    Encryption encryption = Encryption::NotSupported;
    bool federatedAuthentication = false; ///< the client supports it
};

/// Throws ProtocolError for a message whose options point outside of it.
Prelogin parsePrelogin(std::span<const std::uint8_t> message);
/// The answer to a client's request. Off on both sides encrypts the login only; NotSupported on either side
/// disables encryption.
Encryption agreedEncryption(Encryption asked, TlsPolicy policy);
/// The content of the answer.
Bytes preloginResponse(const Prelogin &request, Encryption encryption, const ProgramVersion &version);

} // namespace SampleServer
