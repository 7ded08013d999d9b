#include "Support/HostileServerBytes.h"
#include "Support/HostileServerRelay.h"
#include "Support/TestCertificates.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <QElapsedTimer>

#include <algorithm>

using namespace WireTest;
using namespace HostileServerBytes;

namespace {

constexpr char PreloginType = 0x12;
constexpr char AnswerType = 4;

/// What of a conversation should not be read by others.
const QString Sql = QStringLiteral("SELECT 'result' + 'text' AS alias1, 'sqltext'");
const QString Result = QStringLiteral("resulttext");

std::string utf16(const QString &text)
{
    const auto size = static_cast<std::size_t>(text.size()) * 2;
    return std::string(reinterpret_cast<const char *>(text.utf16()), size);
}

/// A password as LOGIN7 holds it, which anyone can turn back.
std::string obfuscated(const QString &password)
{
    std::string bytes = utf16(password);
    for (char &byte : bytes) {
        const auto old = static_cast<unsigned char>(byte);
        byte = static_cast<char>((old << 4 | old >> 4) ^ 0xA5);
    }
    return bytes;
}

bool canRead(const std::string &bytes, const QString &text)
{
    return bytes.find(text.toStdString()) != std::string::npos ||
           bytes.find(utf16(text)) != std::string::npos;
}

bool canReadPassword(const std::string &bytes, const QString &password)
{
    return canRead(bytes, password) || bytes.find(obfuscated(password)) != std::string::npos;
}

/// What follows the packets at the start, all of one of these types.
std::string behindPackets(std::string bytes, std::initializer_list<char> types)
{
    while (bytes.size() >= 8 && std::find(types.begin(), types.end(), bytes[0]) != types.end())
        bytes.erase(0, static_cast<unsigned char>(bytes[2]) << 8 | static_cast<unsigned char>(bytes[3]));
    return bytes;
}

/// Whether the bytes are whole TLS records and nothing else.
bool isAllRecords(std::string bytes)
{
    constexpr char Major = 3;
    constexpr int FirstType = 20, LastType = 23;
    while (bytes.size() >= 5 && bytes[0] >= FirstType && bytes[0] <= LastType && bytes[1] == Major)
        bytes.erase(0,
                    5 + (static_cast<unsigned char>(bytes[3]) << 8 | static_cast<unsigned char>(bytes[4])));
    return bytes.empty();
}

std::shared_ptr<MSSQLDatabaseConnectionDetails> settingsOf(quint16 port, const char *encryption)
{
    auto details = encryptedSettings(port);
    QVariantMap parameters = details->sessionParameters();
    parameters.insert(QStringLiteral("encryption"), QString::fromLatin1(encryption));
    if (QLatin1String(encryption) == QLatin1String("request"))
        parameters.remove(QStringLiteral("trustedCertificateFile")); // which would require encryption
    details->setSessionParameters(parameters);
    details->setUsername(QStringLiteral("username-of-the-tests"));
    details->setPassword(QStringLiteral("password-of-the-tests"));
    return details;
}

/// A server that encrypts what the client wants, behind a relay.
struct Listening
{
    SampleServerFixture server{{[] {
                                    auto arguments = TestCertificates::shared().usual().arguments("request");
                                    arguments.insert(arguments.end(), {"--user", "username-of-the-tests"});
                                    return arguments;
                                }(),
                                {{"VANTOR_SAMPLE_PASSWORD", "password-of-the-tests"}}}};
    HostileServerRelay relay{server.port(), HostileServerRelay::Fault::None, 0};
    std::shared_ptr<MSSQLDatabaseConnectionDetails> details;

    explicit Listening(const char *encryption)
        : details(settingsOf(relay.port(), encryption))
    {
        EXPECT_EQ(scalar(*connectedClient(details), Sql), KNValue(Result));
    }
};

/// Connecting to what speaks no TLS where it should must fail with a text, and in time.
std::string failureWith(quint16 port, qint64 bound)
{
    const auto details = encryptedSettings(port);
    QVariantMap parameters = details->sessionParameters();
    parameters.insert(QStringLiteral("loginTimeout"), 1);
    details->setSessionParameters(parameters);
    MSSQLClient client(details);
    KNError error;
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(client.connect(&error));
    EXPECT_LT(timer.elapsed(), bound);
    EXPECT_FALSE(client.isConnected());
    EXPECT_TRUE(error);
    return error.localizedDescription().toStdString();
}

} // namespace

TEST(EncryptedBytes, AreTlsRecordsAfterHandshake)
{
    const Listening listening("require");
    const std::string client = listening.relay.saidByClient();
    const std::string server = listening.relay.saidByServer();
    ASSERT_TRUE(client.starts_with(PreloginType));
    ASSERT_TRUE(server.starts_with(AnswerType));
    const std::string clientRest = behindPackets(client, {PreloginType});
    const std::string serverRest = behindPackets(server, {AnswerType, PreloginType});
    EXPECT_GT(clientRest.size(), 300U);
    EXPECT_GT(serverRest.size(), 300U);
    EXPECT_TRUE(isAllRecords(clientRest));
    EXPECT_TRUE(isAllRecords(serverRest));
}

TEST(EncryptedBytes, RevealNoPlainText)
{
    const Listening listening("require");
    for (const std::string &bytes : {listening.relay.saidByClient(), listening.relay.saidByServer()}) {
        for (const QString &text : {listening.details->username(), Sql, Result, QStringLiteral("sqltext"),
                                    QStringLiteral("alias1"), QStringLiteral("TEXTSIZE")})
            EXPECT_FALSE(canRead(bytes, text)) << text.toStdString();
        EXPECT_FALSE(canReadPassword(bytes, listening.details->password()));
    }
}

TEST(EncryptedBytes, OfLoginOnlyHidePasswordOnly)
{
    const Listening listening("request");
    const std::string client = listening.relay.saidByClient();
    EXPECT_FALSE(canReadPassword(client, listening.details->password()));
    EXPECT_FALSE(canRead(client, listening.details->username()));
    EXPECT_TRUE(canRead(client, Sql));
    EXPECT_TRUE(canRead(listening.relay.saidByServer(), Result));
}

/// Makes the client's PRELOGIN say this about encryption (MS-TDS 2.2.6.5).
void changeWish(HostileServerRelay &relay, std::uint8_t wish)
{
    relay.changeClient([wish](std::span<std::uint8_t> bytes) {
        // A PRELOGIN message begins with the version option; a TLS handshake has its own packets inside.
        constexpr std::uint8_t Prelogin = 18;
        constexpr std::uint8_t VersionOption = 0;
        if (bytes.size() < 16 || bytes[0] != Prelogin || bytes[8] != VersionOption)
            return;
        // The second option holds the offset of the wish about encryption.
        bytes[std::size_t{8} + bytes[14] * 256U + bytes[15]] = wish;
    });
}

TEST(EncryptedBytes, StayEncryptedWithNamedCertificateAfterPreloginChange)
{
    constexpr std::uint8_t EncryptOff = 0, EncryptNotSupported = 2;
    const SampleServerFixture server({TestCertificates::shared().usual().arguments("request"), {}});
    for (const std::uint8_t wish : {EncryptOff, EncryptNotSupported}) {
        SCOPED_TRACE(int(wish));
        HostileServerRelay relay(server.port(), HostileServerRelay::Fault::None, 0);
        changeWish(relay, wish);
        const auto details = encryptedSettings(relay.port());
        QVariantMap parameters = details->sessionParameters();
        parameters.insert(QStringLiteral("encryption"), QStringLiteral("request"));
        details->setSessionParameters(parameters);
        MSSQLClient client(details);
        KNError error;
        EXPECT_FALSE(client.connect(&error));
        EXPECT_FALSE(client.isConnected());
        EXPECT_FALSE(canReadPassword(relay.saidByClient(), details->password()));
    }
}

TEST(EncryptedBytes, StayEncryptedWhenPreloginIsDowngraded)
{
    const SampleServerFixture server({TestCertificates::shared().usual().arguments("request"), {}});
    for (int row = 0; row < 4; ++row) {
        SCOPED_TRACE(row);
        HostileServerRelay relay(server.port(), HostileServerRelay::Fault::None, 0);
        changeWish(relay, 0);
        MSSQLClient client(encryptedSettings(relay.port()));
        KNError error;
        EXPECT_FALSE(client.tryConnect(row, false, &error));
        EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("encrypts the login alone")))
            << error.localizedDescription().toStdString();
        EXPECT_FALSE(client.isConnected());
    }
}

/// Every byte of the server's answer about encryption, and every wish that a client could be given.
TEST(EncryptedBytes, StayEncryptedAfterAnyPreloginChange)
{
    const SampleServerFixture server({TestCertificates::shared().usual().arguments("request"), {}});
    const auto expectHidden = [&](HostileServerRelay &relay) {
        const auto details = encryptedSettings(relay.port());
        QVariantMap parameters = details->sessionParameters();
        parameters.insert(QStringLiteral("loginTimeout"), 1);
        details->setSessionParameters(parameters);
        MSSQLClient client(details);
        KNError error;
        const bool isConnected = client.connect(&error);
        EXPECT_NE(isConnected, bool(error));
        EXPECT_FALSE(canReadPassword(relay.saidByClient(), details->password()));
    };
    constexpr std::uint64_t AnswerBytes = 43; // with the header of its packet
    for (std::uint64_t at = 0; at < AnswerBytes; ++at) {
        SCOPED_TRACE(at);
        HostileServerRelay relay(server.port(), HostileServerRelay::Fault::Corrupt, at);
        expectHidden(relay);
    }
    for (const int wish :
         {0, 1, 2, 3, 4, 5, 0x10, 0x20, 0x40, 0x7F, 0x80, 0x81, 0x82, 0x83, 0xA0, 0xFE, 0xFF}) {
        SCOPED_TRACE(wish);
        HostileServerRelay relay(server.port(), HostileServerRelay::Fault::None, 0);
        changeWish(relay, static_cast<std::uint8_t>(wish));
        expectHidden(relay);
    }
}

TEST(EncryptedBytes, AreReadableWithoutEncryption)
{
    const Listening listening("off");
    EXPECT_TRUE(canReadPassword(listening.relay.saidByClient(), listening.details->password()));
    EXPECT_TRUE(canRead(listening.relay.saidByClient(), listening.details->username()));
}

TEST(CutHandshake, ReturnsErrorAtEveryByte)
{
    const SampleServerFixture server({TestCertificates::shared().usual().arguments("require"), {}});
    for (const auto fault : {HostileServerRelay::Fault::Close, HostileServerRelay::Fault::Reset}) {
        for (std::uint64_t at = 0; at < 1100; at += 50) {
            SCOPED_TRACE(at);
            const HostileServerRelay relay(server.port(), fault, at);
            failureWith(relay.port(), 10'000);
        }
    }
}

TEST(CutHandshake, TimesOutWhenServerStopsSending)
{
    const SampleServerFixture server({TestCertificates::shared().usual().arguments("require"), {}});
    for (const std::uint64_t at : {0, 100, 700}) {
        SCOPED_TRACE(at);
        const HostileServerRelay relay(server.port(), HostileServerRelay::Fault::Stall, at);
        const std::string failure = failureWith(relay.port(), 8000);
        EXPECT_NE(failure.find(at == 0 ? "then said nothing"
                                       : "did not finish the TLS handshake and the login within 1 s."),
                  std::string::npos)
            << failure;
    }
}

TEST(SpoiledHandshake, ReportsHandshakeError)
{
    const Bytes garbage(600, 0x5A);
    for (const Bytes &answer : {packet(garbage), garbage, packet({}), Bytes{}}) {
        HostileServer server({HostileServer::expect(PreloginPacket),
                              HostileServer::send(packet(preloginAnswer(1))),
                              HostileServer::expect(PreloginPacket), HostileServer::send(answer)});
        const std::string failure = failureWith(server.port(), 8000);
        EXPECT_NE(failure.find("The TLS handshake with the server failed"), std::string::npos) << failure;
    }
}

TEST(SpoiledHandshake, WithAByteChangedNeverLogsIn)
{
    const SampleServerFixture server({TestCertificates::shared().usual().arguments("require"), {}});
    for (std::uint64_t at = 60; at < 600; at += 20) {
        SCOPED_TRACE(at);
        // Behind the prelogin and the header of the packet that holds the server's first say.
        const HostileServerRelay relay(server.port(), HostileServerRelay::Fault::Corrupt, at);
        failureWith(relay.port(), 10'000);
    }
}

TEST(EncryptedBytes, OfADowngradedLoginAreMeasuredAsNone)
{
    const SampleServerFixture server({TestCertificates::shared().usual().arguments("request"), {}});
    HostileServerRelay relay(server.port(), HostileServerRelay::Fault::None, 0);
    constexpr std::uint8_t NotSupported = 2;
    changeWish(relay, NotSupported);
    const auto details = settings(relay.port()); // requests encryption
    MSSQLClient client(details);
    KNError error;
    ASSERT_TRUE(client.connect(&error)) << error.localizedDescription().toStdString();
    EXPECT_EQ(client.encryption(), VantorEncryption::None);
}
