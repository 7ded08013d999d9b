#include "LoopbackServer.h"
#include "MemoryTransport.h"
#include "ScriptedEngine.h"
#include "Support/TestCertificates.h"
#include "TlsWireClient.h"
#include "Wire/HandshakePackets.h"
#include "Wire/ProtocolError.h"

#include <gtest/gtest.h>

namespace TlsTest {

using namespace SampleServer;
using namespace std::chrono_literals;
using Bytes = WireClient::Bytes;

namespace {

constexpr std::uint8_t Off = 0, On = 1, NotSupported = 2, Required = 3;
constexpr std::uint8_t PreloginType = 18, LoginType = 16;
const Bytes LoginAck = {0xAD, 0x32, 0};

ServerSettings settingsWith(TlsPolicy policy)
{
    ServerSettings settings = LoopbackServer::defaultSettings();
    const auto files = TestCertificates::shared().usual();
    settings.tls = policy;
    settings.certificate.emplace(files.certificate, files.key);
    return settings;
}

void defineScripts()
{
    ScriptedEngine::define("wait", [](ResultSink &sink) { sink.waitForAttention(600'000); });
    ScriptedEngine::define("wait a little", [](ResultSink &sink) { sink.waitForAttention(100); });
    ScriptedEngine::define("rows for ever", [](ResultSink &sink) {
        sink.columns({{"c", {TypeId::Int}, false}}, {});
        const std::vector<Value> row = {std::int64_t{1}};
        while (!sink.attentionRequested())
            sink.row(row);
    });
    ScriptedEngine::define("short", [](ResultSink &sink) {
        ScriptedEngine::sendResult(sink, {{TypeId::Int}}, {{std::int64_t{7}}});
    });
}

/// The packet of a message that fits into one.
Bytes packetOf(std::uint8_t type, const Bytes &payload)
{
    const std::size_t length = payload.size() + 8;
    Bytes packet = {type, 1, static_cast<std::uint8_t>(length >> 8), static_cast<std::uint8_t>(length), 0, 0,
                    1,    0};
    packet.insert(packet.end(), payload.begin(), payload.end());
    return packet;
}

bool logIn(TlsWireClient &client)
{
    client.sendMessage(LoginType, LoginBytes::login7({}));
    return WireClient::contains(client.readMessage(), LoginAck);
}

void expectUsable(WireClient &client)
{
    EXPECT_TRUE(WireClient::contains(client.batch(u"short"), {0xD1, 4, 7, 0, 0, 0}));
}

/// A client that is logged in to a server that requires encryption.
struct EncryptedSession
{
    LoopbackServer server{settingsWith(TlsPolicy::Require)};
    TlsWireClient client{server.port()};

    EncryptedSession()
    {
        defineScripts();
        client.askForEncryption(On);
        client.startTls();
        EXPECT_TRUE(logIn(client));
    }
};

} // namespace

TEST(Tls, IsNegotiatedFromBothSidesOptions)
{
    const auto agreed = [](TlsPolicy policy) {
        Bytes answers;
        for (const std::uint8_t wish : {Off, On, NotSupported, Required, std::uint8_t{77}})
            answers.push_back(static_cast<std::uint8_t>(
                agreedEncryption(static_cast<SampleServer::Encryption>(wish), policy)));
        return answers;
    };
    EXPECT_EQ(agreed(TlsPolicy::Off),
              Bytes({NotSupported, NotSupported, NotSupported, NotSupported, NotSupported}));
    EXPECT_EQ(agreed(TlsPolicy::Request), Bytes({Off, On, NotSupported, On, NotSupported}));
    EXPECT_EQ(agreed(TlsPolicy::Require), Bytes({Required, On, Required, On, Required}));
}

TEST(Tls, EncryptsEverythingWhenTheClientAsks)
{
    defineScripts();
    for (const TlsPolicy policy : {TlsPolicy::Request, TlsPolicy::Require}) {
        LoopbackServer server(settingsWith(policy));
        TlsWireClient client(server.port());
        EXPECT_EQ(client.askForEncryption(On), On);
        client.startTls();
        EXPECT_EQ(client.version(), "TLS1.2");
        EXPECT_TRUE(logIn(client));
        expectUsable(client);
    }
}

TEST(Tls, EncryptsEverythingWhenTheServerRequiresIt)
{
    defineScripts();
    LoopbackServer server(settingsWith(TlsPolicy::Require));
    TlsWireClient client(server.port());
    EXPECT_EQ(client.askForEncryption(Off), Required);
    client.startTls();
    EXPECT_TRUE(logIn(client));
    expectUsable(client);
}

TEST(Tls, EncryptsOnlyTheLoginWhenNeitherSideAsksForMore)
{
    defineScripts();
    LoopbackServer server(settingsWith(TlsPolicy::Request));
    TlsWireClient client(server.port());
    EXPECT_EQ(client.askForEncryption(Off), Off);
    client.startTls();
    client.sendMessage(LoginType, LoginBytes::login7({}));
    client.stopTls();
    EXPECT_TRUE(WireClient::contains(client.readMessage(), LoginAck));
    expectUsable(client);
}

TEST(Tls, IsOptionalWhenTheServerOnlyRequestsIt)
{
    LoopbackServer server(settingsWith(TlsPolicy::Request));
    EXPECT_TRUE(WireClient::contains(WireClient(server.port()).login(), LoginAck));
}

TEST(Tls, RefusesClientsWithoutItWhenRequired)
{
    LoopbackServer server(settingsWith(TlsPolicy::Require));
    TlsWireClient unable(server.port());
    EXPECT_EQ(unable.askForEncryption(NotSupported), Required);
    unable.sendMessage(LoginType, LoginBytes::login7({}));
    EXPECT_TRUE(unable.waitForClose());
    WireClient withoutPrelogin(server.port());
    withoutPrelogin.sendMessage(LoginType, LoginBytes::login7({}));
    EXPECT_TRUE(withoutPrelogin.waitForClose());
    TlsWireClient pretending(server.port());
    EXPECT_EQ(pretending.askForEncryption(On), On);
    pretending.sendMessage(LoginType, LoginBytes::login7({}));
    EXPECT_TRUE(pretending.waitForClose());
}

TEST(Tls, HandshakesInPacketsOfAnySize)
{
    LoopbackServer server(settingsWith(TlsPolicy::Require));
    for (const std::size_t packetSize : {9, 10, 64, 512}) {
        TlsWireClient client(server.port());
        client.askForEncryption(On);
        client.startTls(packetSize);
        EXPECT_TRUE(logIn(client)) << packetSize;
    }
}

TEST(Tls, CarriesAttentions)
{
    EncryptedSession session;
    for (const auto *batch : {u"wait", u"rows for ever"}) {
        session.client.sendBatch(batch);
        session.client.sendAttention();
        EXPECT_EQ(WireClient::finalStatus(session.client.readMessage()), DoneStatus::Error);
        EXPECT_EQ(WireClient::finalStatus(session.client.readMessage()), DoneStatus::Attention);
        expectUsable(session.client);
    }
}

TEST(Tls, ReadsAnAttentionInTheSameRecordAsItsBatch)
{
    EncryptedSession session;
    Bytes batch = {22, 0, 0, 0, 18, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0};
    for (const char unit : std::string("wait")) {
        batch.push_back(static_cast<std::uint8_t>(unit));
        batch.push_back(0);
    }
    Bytes both = packetOf(1, batch);
    const Bytes attention = packetOf(6, {});
    both.insert(both.end(), attention.begin(), attention.end());
    session.client.send(both);
    EXPECT_EQ(WireClient::finalStatus(session.client.readMessage()), DoneStatus::Error);
    EXPECT_EQ(WireClient::finalStatus(session.client.readMessage()), DoneStatus::Attention);
}

TEST(Tls, DoesNotWaitForTheRestOfARecordWhileABatchRuns)
{
    EncryptedSession session;
    session.client.sendBatch(u"wait a little");
    const Bytes record = session.client.encrypted(packetOf(6, {}));
    const auto half = record.begin() + static_cast<std::ptrdiff_t>(record.size() / 2);
    session.client.sendClear(Bytes(record.begin(), half));
    EXPECT_EQ(WireClient::finalStatus(session.client.readMessage()), 0);
    session.client.sendClear(Bytes(half, record.end()));
    EXPECT_EQ(WireClient::finalStatus(session.client.readMessage()), DoneStatus::Attention);
    expectUsable(session.client);
}

TEST(Tls, ReadsRecordsByteByByte)
{
    EncryptedSession session;
    for (const std::uint8_t byte : session.client.encrypted(packetOf(6, {})))
        session.client.sendClear({byte});
    EXPECT_EQ(WireClient::finalStatus(session.client.readMessage()), DoneStatus::Attention);
    expectUsable(session.client);
}

TEST(TlsClient, ThatBreaksTheProtocolIsDisconnected)
{
    LoopbackServer server(settingsWith(TlsPolicy::Require));
    const Bytes garbage(300, 0x5A);
    for (const Bytes &bytes : {garbage, packetOf(PreloginType, garbage), packetOf(1, garbage),
                               packetOf(PreloginType, {}), Bytes{PreloginType, 1, 0, 3, 0, 0, 1, 0}}) {
        TlsWireClient client(server.port());
        client.askForEncryption(On);
        client.sendClear(bytes);
        EXPECT_TRUE(client.waitForClose());
    }
    EncryptedSession session;
    session.client.sendClear(garbage);
    EXPECT_TRUE(session.client.waitForClose());
}

TEST(TlsClient, ThatDoesNotWaitForThePreloginResponseIsDisconnected)
{
    LoopbackServer server(settingsWith(TlsPolicy::Require));
    WireClient client(server.port());
    Bytes bytes = packetOf(PreloginType, LoginBytes::prelogin(On));
    const Bytes early = packetOf(PreloginType, Bytes(20, 0x16));
    bytes.insert(bytes.end(), early.begin(), early.end());
    client.send(bytes);
    EXPECT_TRUE(client.waitForClose());
}

TEST(TlsClient, ThatStopsSendingIsDisconnected)
{
    ServerSettings settings = settingsWith(TlsPolicy::Require);
    settings.loginTimeout = 200ms;
    LoopbackServer server(settings);
    TlsWireClient silent(server.port());
    silent.askForEncryption(On);
    TlsWireClient inAHeader(server.port());
    inAHeader.askForEncryption(On);
    inAHeader.sendClear({PreloginType, 1, 0});
    TlsWireClient behindTheHandshake(server.port());
    behindTheHandshake.askForEncryption(On);
    behindTheHandshake.startTls();
    behindTheHandshake.sendClear({23, 3, 3});
    for (TlsWireClient *client : {&silent, &inAHeader, &behindTheHandshake})
        EXPECT_TRUE(client->waitForClose());
}

TEST(HandshakePackets, ReturnTheirContentSplitAnywhere)
{
    Bytes bytes = packetOf(PreloginType, {1, 2, 3});
    const Bytes second = packetOf(PreloginType, {4});
    bytes.insert(bytes.end(), second.begin(), second.end());
    MemoryTransport below;
    for (const std::uint8_t byte : bytes)
        below.incoming.push_back({byte});
    HandshakePackets packets(below);
    Bytes content;
    while (packets.waitReadable(0ms)) {
        Bytes buffer(2);
        buffer.resize(packets.read(buffer));
        content.insert(content.end(), buffer.begin(), buffer.end());
    }
    EXPECT_EQ(content, Bytes({1, 2, 3, 4}));
}

TEST(HandshakePackets, LeaveTheBytesAfterThem)
{
    Bytes bytes = packetOf(PreloginType, {1, 2, 3});
    bytes.push_back(0x17);
    MemoryTransport below;
    below.incoming.push_back(bytes);
    HandshakePackets packets(below);
    Bytes buffer(10);
    EXPECT_EQ(packets.read(buffer), 3U);
    EXPECT_EQ(below.incoming.front(), Bytes({0x17}));
}

TEST(HandshakePackets, SplitALongMessage)
{
    MemoryTransport below;
    HandshakePackets packets(below);
    packets.write(Bytes(4000, 1));
    packets.write(Bytes(1000, 2));
    EXPECT_TRUE(below.written.empty());
    packets.flush();
    packets.flush();
    ASSERT_EQ(below.written.size(), 5016U);
    EXPECT_EQ(hex(std::span(below.written).first(8)), "12 00 10 00 00 00 01 00");
    EXPECT_EQ(hex(std::span(below.written).subspan(4096, 8)), "12 01 03 98 00 00 02 00");
}

TEST(TlsCertificate, ErrorsNameTheFile)
{
    const auto files = TestCertificates::shared().usual();
    const auto others = TestCertificates::shared().issue({});
    const auto failureOf = [](const std::string &certificate, const std::string &key) -> std::string {
        try {
            TlsCertificate{certificate, key};
        } catch (const std::runtime_error &error) {
            return error.what();
        }
        return "none";
    };
    EXPECT_EQ(failureOf(files.certificate, files.key), "none");
    EXPECT_EQ(failureOf("/nowhere", files.key), "The file '/nowhere' cannot be read.");
    EXPECT_EQ(failureOf(files.certificate, "/nowhere"), "The file '/nowhere' cannot be read.");
    for (const std::string &key : {files.certificate, others.key})
        EXPECT_NE(failureOf(files.certificate, key).find("cannot be used with the key"), std::string::npos);
}

} // namespace TlsTest
