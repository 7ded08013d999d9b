#include "LoopbackServer.h"
#include "ScriptedEngine.h"
#include "WireClient.h"

#include <gtest/gtest.h>

using namespace SampleServer;
using namespace std::chrono_literals;
using Bytes = WireClient::Bytes;
using Clock = std::chrono::steady_clock;

namespace {

void defineScripts()
{
    ScriptedEngine::define("wait", [](ResultSink &sink) { sink.waitForAttention(10 * 60 * 1000); });
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

/// The two messages that answer an attention during a batch: the end of what it cut off, and the
/// acknowledgement.
void expectCutOffAndAcknowledged(WireClient &client)
{
    EXPECT_EQ(WireClient::finalStatus(client.readMessage()), DoneStatus::Error);
    EXPECT_EQ(WireClient::finalStatus(client.readMessage()), DoneStatus::Attention);
}

/// The session answers batches as before.
void expectUsable(WireClient &client)
{
    EXPECT_TRUE(WireClient::contains(client.batch(u"short"), {0xD1, 4, 7, 0, 0, 0}));
}

} // namespace

TEST(Attention, EndsAWait)
{
    defineScripts();
    LoopbackServer server;
    WireClient client(server.port());
    client.login();
    client.sendBatch(u"wait");
    const auto start = Clock::now();
    client.sendAttention();
    expectCutOffAndAcknowledged(client);
    EXPECT_LT(Clock::now() - start, 5s);
    expectUsable(client);
}

TEST(Attention, EndsAStreamOfRowsThatTheClientDoesNotRead)
{
    defineScripts();
    LoopbackServer server;
    WireClient client(server.port());
    client.login();
    client.sendBatch(u"rows for ever");
    client.readPacket();
    client.sendAttention();
    expectCutOffAndAcknowledged(client);
    expectUsable(client);
}

TEST(Attention, IsAcknowledgedAfterTheEndOfTheBatch)
{
    defineScripts();
    LoopbackServer server;
    WireClient client(server.port());
    client.login();
    client.batch(u"short");
    client.sendAttention();
    EXPECT_EQ(WireClient::finalStatus(client.readMessage()), DoneStatus::Attention);
    expectUsable(client);
}

TEST(Attention, IsAcknowledgedOnceEachTime)
{
    defineScripts();
    LoopbackServer server;
    WireClient client(server.port());
    client.login();
    for (int round = 0; round < 20; ++round) {
        client.sendBatch(u"rows for ever");
        client.sendAttention();
        expectCutOffAndAcknowledged(client);
        expectUsable(client);
    }
}

TEST(Attention, AnUninterruptedWaitLastsItsTime)
{
    ScriptedEngine::define("short wait", [](ResultSink &sink) {
        const auto start = Clock::now();
        EXPECT_FALSE(sink.waitForAttention(30));
        EXPECT_GE(Clock::now() - start, 30ms);
        sink.endStatement({});
    });
    LoopbackServer server;
    WireClient client(server.port());
    client.login();
    EXPECT_EQ(WireClient::finalStatus(client.batch(u"short wait")), 0);
}

TEST(Attention, AWaitSendsFullPacketsAndFlushSendsTheRest)
{
    ScriptedEngine::define("flush and wait", [](ResultSink &sink) {
        ServerMessage message;
        message.text = "now";
        sink.message(message);
        sink.flush();
        sink.waitForAttention(10 * 60 * 1000);
    });
    LoopbackServer server;
    WireClient client(server.port());
    client.login();
    client.sendBatch(u"flush and wait");
    const Bytes packet = client.readPacket();
    EXPECT_EQ(packet[1], 0) << "the message goes on";
    EXPECT_TRUE(WireClient::contains(packet, {'n', 0, 'o', 0, 'w', 0}));
    client.sendAttention();
    expectCutOffAndAcknowledged(client);
}

TEST(Attention, ADisconnectEndsTheBatch)
{
    std::atomic<int> lost = 0;
    const auto counted = [&](auto work) {
        return [&, work](ResultSink &sink) {
            try {
                work(sink);
            } catch (const ConnectionLost &) {
                ++lost;
                throw;
            }
        };
    };
    ScriptedEngine::define("wait for the lost",
                           counted([](ResultSink &sink) { sink.waitForAttention(10 * 60 * 1000); }));
    ScriptedEngine::define("work for the lost", counted([](ResultSink &sink) {
                               while (!sink.attentionRequested())
                                   std::this_thread::sleep_for(1ms);
                           }));
    {
        LoopbackServer server;
        for (const auto *batch : {u"wait for the lost", u"work for the lost"}) {
            WireClient client(server.port());
            client.login();
            client.sendBatch(batch);
        }
        const auto deadline = Clock::now() + 10s;
        while (lost < 2 && Clock::now() < deadline)
            std::this_thread::sleep_for(1ms);
        EXPECT_EQ(lost, 2);
    }
}
