#pragma once

#include "Types/Value.h"

#include <span>
#include <string>

namespace SampleServer {

/// The content of a LOGIN7 message (MS-TDS 2.2.6.4). Texts are UTF-8.
struct Login7
{
    std::uint32_t tdsVersion = 0;
    std::uint32_t packetSize = 0; ///< 0: the server's choice
    std::string userName;
    std::string password;
    std::string database;
    std::string hostName;
    std::string applicationName;
    bool odbc = false;               ///< the client requests the settings of ODBC clients
    Bytes sspi;                      ///< the first NTLM message of an integrated login
    bool integratedSecurity = false; ///< authenticates with SSPI instead of user name and password
    bool featureExtension = false;
    bool utf8Feature = false;
};

/// Throws ProtocolError for a message whose fields point outside of it or exceed 128 characters.
Login7 parseLogin7(std::span<const std::uint8_t> message);

/// Removes the obfuscation from the bytes of a LOGIN7 password.
Bytes revealPassword(std::span<const std::uint8_t> obfuscated);

} // namespace SampleServer
