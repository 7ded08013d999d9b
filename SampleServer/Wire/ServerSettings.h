#pragma once

#include "Wire/Prelogin.h"
#include "Wire/TdsVersion.h"
#include "Wire/TlsCertificate.h"
#include "Wire/TokenWriter.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace SampleServer {

class Server;

/// Settings shared by all connections of a sample server. Not changed while a connection is open.
struct ServerSettings
{
    std::shared_ptr<Server> server;
    std::string user = "sa"; ///< the only account, for SQL logins and as the user of any domain
    std::string password;
    TdsVersion highestVersion = TdsVersion::V74;
    ProgramVersion programVersion;
    std::chrono::milliseconds loginTimeout{30'000};
    TlsPolicy tls = TlsPolicy::Off;
    std::optional<TlsCertificate> certificate; ///< set unless `tls` is Off
};

} // namespace SampleServer
