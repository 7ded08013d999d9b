#include "LoopbackServer.h"
#include "ScriptedEngine.h"
#include "WireClient.h"

#include <gtest/gtest.h>
#include <random>

using namespace SampleServer;
using namespace std::chrono_literals;
using Bytes = WireClient::Bytes;

namespace {

void expectAlive(const LoopbackServer &server)
{
    EXPECT_TRUE(WireClient::contains(WireClient(server.port()).login(), {0xAD, 0x32, 0}));
}

/// A connection that says the bytes instead of its first message ends.
void expectClosedAfter(const LoopbackServer &server, const Bytes &bytes)
{
    WireClient client(server.port());
    client.send(bytes);
    EXPECT_TRUE(client.waitForClose());
}

} // namespace

TEST(HostileClient, IsDisconnectedForMalformedPackets)
{
    LoopbackServer server;
    expectClosedAfter(server, {18, 1, 0, 0, 0, 0, 1, 0});               // shorter than its header
    expectClosedAfter(server, {18, 1, 0xFF, 0xFF, 0, 0, 1, 0});         // larger than any packet
    expectClosedAfter(server, {0xEE, 1, 0, 9, 0, 0, 1, 0, 1});          // of an unknown type
    expectClosedAfter(server, {1, 1, 0, 10, 0, 0, 1, 0, 'x', 0});       // a batch before the login
    expectClosedAfter(server, {18, 1, 0, 9, 0, 0, 1, 0, 0});            // a prelogin cut short
    expectClosedAfter(server, {16, 1, 0, 12, 0, 0, 1, 0, 94, 0, 0, 0}); // a login cut short
    expectClosedAfter(server, {'G', 'E', 'T', ' ', '/', '\r', '\n', '\r', '\n'});
    expectAlive(server);
}

TEST(HostileClient, IsDisconnectedForALoginThatNeverEnds)
{
    LoopbackServer server;
    WireClient client(server.port());
    Bytes packet = {16, 0, 0x10, 0, 0, 0, 1, 0};
    packet.resize(4096);
    const auto flood = [&] {
        for (int count = 0; count < 10'000; ++count) // 40 MB, which nobody should keep
            client.send(packet);
    };
    EXPECT_THROW(flood(), std::runtime_error);
    expectAlive(server);
}

TEST(HostileClient, IsDisconnectedForSilenceDuringTheLogin)
{
    ServerSettings settings = LoopbackServer::defaultSettings();
    settings.loginTimeout = 100ms;
    LoopbackServer server(settings);
    WireClient silent(server.port());
    WireClient dripping(server.port());
    dripping.send({18, 1, 0});
    EXPECT_TRUE(silent.waitForClose());
    EXPECT_TRUE(dripping.waitForClose());
}

TEST(HostileClient, MayBeSilentAfterTheLogin)
{
    ServerSettings settings = LoopbackServer::defaultSettings();
    settings.loginTimeout = 100ms;
    LoopbackServer server(settings);
    WireClient client(server.port());
    client.login();
    EXPECT_FALSE(client.waitForClose(300ms));
}

TEST(HostileClient, IsDisconnectedForMalformedRequests)
{
    LoopbackServer server;
    const std::pair<std::uint8_t, Bytes> requests[] = {
        {1, {1, 0, 0, 0}},                // headers shorter than their length
        {1, {0xFF, 0xFF, 0xFF, 0xFF}},    // headers beyond the message
        {1, {4, 0, 0, 0, 'x'}},           // half a character
        {3, {4, 0, 0, 0, 0xFE, 0xFF, 1}}, // a name beyond the message
        {14, {4, 0, 0, 0, 5, 0}},         // a transaction request cut short
        {7, {1, 2, 3}},                   // a bulk load without INSERT BULK
        {18, LoginBytes::prelogin(2)},    // another prelogin
        {16, LoginBytes::login7({})},     // another login
    };
    for (const auto &[type, payload] : requests) {
        WireClient client(server.port());
        client.login();
        client.sendMessage(type, payload);
        EXPECT_TRUE(client.waitForClose()) << "packet type " << int(type);
    }
    expectAlive(server);
}

TEST(HostileClient, MaySendRandomBytesWithoutHarm)
{
    LoopbackServer server;
    std::mt19937 random(20240229); // the same bytes in every run
    for (int round = 0; round < 200; ++round) {
        Bytes garbage(random() % 600);
        for (std::uint8_t &byte : garbage)
            byte = static_cast<std::uint8_t>(random());
        if (round % 2 == 0 && garbage.size() > 8) { // a right header, so that the content is looked at
            garbage[0] = static_cast<std::uint8_t>(round % 4 == 0 ? 16 : 18);
            garbage[1] = 1;
            garbage[2] = static_cast<std::uint8_t>(garbage.size() >> 8);
            garbage[3] = static_cast<std::uint8_t>(garbage.size());
        }
        WireClient client(server.port());
        client.send(garbage);
    }
    expectAlive(server);
}

TEST(HostileClient, MayCloseAtEveryByteOfALogin)
{
    LoopbackServer server;
    Bytes conversation = {18, 1, 0, 26, 0, 0, 1, 0};
    const Bytes prelogin = LoginBytes::prelogin(2);
    conversation.insert(conversation.end(), prelogin.begin(), prelogin.end());
    for (std::size_t size = 0; size <= conversation.size(); ++size)
        WireClient(server.port())
            .send(Bytes(conversation.begin(), conversation.begin() + static_cast<std::ptrdiff_t>(size)));
    expectAlive(server);
}

TEST(HostileClient, CannotEndOtherSessionsByAnEngineFailure)
{
    ScriptedEngine::define("fails", [](ResultSink &) { throw std::runtime_error("a defect"); });
    LoopbackServer server;
    WireClient client(server.port());
    client.login();
    client.sendBatch(u"fails");
    EXPECT_TRUE(client.waitForClose());
    expectAlive(server);
}
