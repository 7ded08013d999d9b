#include "Wire/LoginHandshake.h"

#include "Engine/Server.h"
#include "Types/Text.h"
#include "Wire/Prelogin.h"
#include "Wire/ProtocolError.h"

#include <algorithm>
#include <atomic>
#include <thread>

#include <sys/random.h>

namespace SampleServer {

namespace {

ServerMessage serverMessage(std::int32_t number, std::uint8_t state, std::uint8_t severity, std::string text)
{
    ServerMessage message;
    message.number = number;
    message.state = state;
    message.severity = severity;
    message.text = std::move(text);
    return message;
}

bool sameName(std::string_view left, std::string_view right)
{
    return toUpper(left) == toUpper(right);
}

Ntlm::Challenge randomChallenge()
{
    Ntlm::Challenge challenge;
    if (::getrandom(challenge.data(), challenge.size(), 0) != static_cast<ssize_t>(challenge.size()))
        throw std::runtime_error("There are no random numbers for a challenge.");
    return challenge;
}

/// Slows down password guessing: each further consecutive failure is answered later.
class LoginBrake
{
public:
    void failed()
    {
        constexpr int FreeFailures = 20;
        constexpr int LongestPause = 500; // milliseconds
        const int failures = ++m_failures;
        std::this_thread::sleep_for(
            std::chrono::milliseconds(std::clamp(25 * (failures - FreeFailures), 0, LongestPause)));
    }
    void succeeded() { m_failures = 0; }

private:
    std::atomic<int> m_failures = 0; ///< consecutive
};

LoginBrake &loginBrake()
{
    static LoginBrake brake;
    return brake;
}

} // namespace

LoginHandshake::LoginHandshake(TlsTransport &transport, PacketReader &in, PacketWriter &out,
                               const ServerSettings &settings)
    : m_transport(transport)
    , m_in(in)
    , m_out(out)
    , m_settings(settings)
{
}

std::optional<AcceptedLogin> LoginHandshake::authenticate()
{
    const auto deadline = PacketReader::Clock::now() + m_settings.loginTimeout;
    m_in.setDeadline(deadline);
    const RequestMessage message = readLogin(deadline);
    if (message.type != PacketType::Login7)
        throw ProtocolError("A connection does not start with a login.");
    const Login7 login = parseLogin7(message.payload);

    // An unsupported version closes the connection without a message, so that a probing client tries the next
    // lower version.
    const auto version = tdsVersionFromLogin(login.tdsVersion);
    if (!version || *version > m_settings.highestVersion)
        throw ProtocolError("The client asks for a protocol version that is not offered.");

    TokenWriter tokens(m_out, *version);
    const auto account = provenAccount(login, tokens);
    if (!account)
        return std::nullopt;
    AcceptedLogin accepted{login, *version, DefaultPacketSize, *account,
                           login.database.empty() ? "master" : login.database};
    if (!m_settings.server->hasDatabase(accepted.database)) {
        refuse(tokens, *account, accepted.database);
        return std::nullopt;
    }
    if (login.packetSize != 0)
        accepted.packetSize = std::clamp<std::size_t>(login.packetSize, MinimumPacketSize, MaximumPacketSize);
    m_in.setDeadline(PacketReader::Clock::time_point::max());
    return accepted;
}

/// Negotiates encryption and reads the login with it. Later data is encrypted unless only the login was to
/// be.
RequestMessage LoginHandshake::readLogin(PacketReader::Clock::time_point deadline)
{
    RequestMessage message = m_in.read();
    const Encryption agreed =
        message.type == PacketType::Prelogin ? answerPrelogin(message) : Encryption::NotSupported;
    if (agreed == Encryption::NotSupported) {
        if (m_settings.tls == TlsPolicy::Require)
            throw ProtocolError("A client that cannot encrypt is not let in.");
        return message.type == PacketType::Prelogin ? m_in.read() : message;
    }
    if (m_in.hasMore())
        throw ProtocolError("A client goes on before it knows what is encrypted.");
    m_transport.start(*m_settings.certificate, deadline);
    message = m_in.read();
    if (agreed == Encryption::Off)
        m_transport.stop();
    return message;
}

/// Sends the negotiated encryption to the client and returns it.
Encryption LoginHandshake::answerPrelogin(const RequestMessage &message)
{
    const Prelogin request = parsePrelogin(message.payload);
    const Encryption answer = agreedEncryption(request.encryption, m_settings.tls);
    const Bytes response = preloginResponse(request, answer, m_settings.programVersion);
    m_out.putBytes(response.data(), response.size());
    m_out.endMessage();
    return request.encryption == Encryption::NotSupported ? Encryption::NotSupported : answer;
}

/// The authenticated account; empty after a refusal.
std::optional<std::string> LoginHandshake::provenAccount(const Login7 &login, TokenWriter &tokens)
{
    std::string account = login.userName;
    const bool known = login.integratedSecurity ? authenticateNtlm(login.sspi, account)
                                                : sameName(login.userName, m_settings.user) &&
                                                      login.password == m_settings.password;
    if (known) {
        loginBrake().succeeded();
        return account;
    }
    loginBrake().failed();
    refuse(tokens, account);
    return std::nullopt;
}

bool LoginHandshake::authenticateNtlm(Bytes negotiate, std::string &account)
{
    const Ntlm::Challenge challenge = randomChallenge();
    TokenWriter(m_out, TdsVersion::V74)
        .sspi(Ntlm::challengeMessage(negotiate, challenge, m_settings.server->options().serverName));
    m_out.endMessage();
    const RequestMessage message = m_in.read();
    if (message.type != PacketType::Sspi)
        throw ProtocolError("An integrated login stops in its middle.");
    const Ntlm::Authentication authentication = Ntlm::parseAuthentication(message.payload);
    const std::string user = toUtf8(authentication.user);
    account = authentication.domain.empty() ? user : toUtf8(authentication.domain) + '\\' + user;
    return sameName(user, m_settings.user) && authentication.proves(toUtf16(m_settings.password), challenge);
}

void LoginHandshake::refuse(TokenWriter &tokens, std::string_view account, std::string_view unknownDatabase)
{
    const std::string &serverName = m_settings.server->options().serverName;
    if (!unknownDatabase.empty()) {
        tokens.message(serverMessage(4060, 1, 11,
                                     "Cannot open database \"" + std::string(unknownDatabase) +
                                         "\" requested by the login. The login failed."),
                       serverName);
    }
    tokens.message(serverMessage(18456, 1, 14, "Login failed for user '" + std::string(account) + "'."),
                   serverName);
    tokens.done(TokenWriter::Done::Statement, DoneStatus::Error, 0, 0);
    m_out.endMessage();
}

void LoginHandshake::confirm(const AcceptedLogin &login)
{
    TokenWriter tokens(m_out, login.version);
    using Text = TokenWriter::EnvironmentText;
    const std::string &serverName = m_settings.server->options().serverName;
    tokens.environmentText(Text::Database, login.database, "master");
    tokens.message(serverMessage(5701, 2, 0, "Changed database context to '" + login.database + "'."),
                   serverName);
    tokens.environmentCollation();
    tokens.environmentText(Text::Language, "us_english", "");
    tokens.message(serverMessage(5703, 1, 0, "Changed language setting to us_english."), serverName);
    tokens.loginAck(m_settings.programVersion);
    tokens.environmentText(Text::PacketSize, std::to_string(login.packetSize),
                           std::to_string(DefaultPacketSize));
    if (login.request.featureExtension && login.version >= TdsVersion::V74)
        tokens.featureExtensionAck(login.request.utf8Feature);
    tokens.done(TokenWriter::Done::Statement, 0, 0, 0);
    m_out.endMessage();
    m_out.setPacketSize(login.packetSize);
}

} // namespace SampleServer
