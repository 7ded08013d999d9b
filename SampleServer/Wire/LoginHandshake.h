#pragma once

#include "Wire/Login7.h"
#include "Wire/NtlmMessages.h"
#include "Wire/PacketReader.h"
#include "Wire/PacketWriter.h"
#include "Wire/ServerSettings.h"
#include "Wire/TlsTransport.h"

#include <optional>

namespace SampleServer {

/// An authenticated client and its negotiated settings.
struct AcceptedLogin
{
    Login7 request;
    TdsVersion version = TdsVersion::V74;
    std::size_t packetSize = DefaultPacketSize;
    std::string user; ///< "sa" or "DOMAIN\\user"
    std::string database;
};

/// The protocol from the first packet to the end of the login. Throws ProtocolError and ConnectionLost.
class LoginHandshake
{
public:
    /// `in` and `out` must use `transport`.
    LoginHandshake(TlsTransport &transport, PacketReader &in, PacketWriter &out,
                   const ServerSettings &settings);

    /// Authenticates the client; empty if it was refused with an error. An accepted client waits for
    /// confirm().
    std::optional<AcceptedLogin> authenticate();
    /// Confirms the login to the client.
    void confirm(const AcceptedLogin &login);

private:
    RequestMessage readLogin(PacketReader::Clock::time_point deadline);
    Encryption answerPrelogin(const RequestMessage &message);
    std::optional<std::string> provenAccount(const Login7 &login, TokenWriter &tokens);
    bool authenticateNtlm(Bytes negotiate, std::string &account);
    void refuse(TokenWriter &tokens, std::string_view account, std::string_view unknownDatabase = {});

    TlsTransport &m_transport;
    PacketReader &m_in;
    PacketWriter &m_out;
    const ServerSettings &m_settings;
};

} // namespace SampleServer
