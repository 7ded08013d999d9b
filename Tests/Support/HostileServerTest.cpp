#include "Support/HostileServer.h"

#include "SampleServer/Wire/WireClient.h"
#include "Support/HostileServerBytes.h"
#include "Support/HostileServerRelay.h"

#include <gtest/gtest.h>

using namespace HostileServerBytes;
using namespace std::chrono_literals;

namespace {

using Script = HostileServer::Script;

Script afterLogin(const Script &rest)
{
    return HostileServer::joined(HostileServer::acceptedLogin(), rest);
}

/// A server whose answer to every batch is one DONE: 21 bytes.
Script answering(int batches)
{
    Script script = HostileServer::acceptedLogin();
    for (int count = 0; count < batches; ++count) {
        script.push_back(HostileServer::expect(BatchPacket));
        script.push_back(HostileServer::send(packet(done(0, 7))));
    }
    script.push_back(HostileServer::stall());
    return script;
}

} // namespace

TEST(HostileServer, PlaysALoginAndAResult)
{
    const HostileServer server(afterLogin(
        {HostileServer::expect(BatchPacket),
         HostileServer::send(packet(joined({intColumns({"a"}), intRow({7}), done(DoneCount, 1)})))}));
    WireClient client(server.port());
    EXPECT_EQ(WireClient::finalStatus(client.login()), 0);
    EXPECT_TRUE(WireClient::contains(client.batch(u"x"), {0xD1, 4, 7, 0, 0, 0}));
    EXPECT_TRUE(client.waitForClose()) << "the script is over";
    EXPECT_TRUE(server.failures().empty());
    EXPECT_EQ(server.connectionCount(), 1u);
}

TEST(HostileServer, RecordsUnexpectedClientActions)
{
    const HostileServer server({HostileServer::expect(LoginPacket)});
    WireClient client(server.port());
    client.sendMessage(PreloginPacket, LoginBytes::prelogin(2));
    EXPECT_TRUE(client.waitForClose());
    ASSERT_EQ(server.failures().size(), 1u);
    EXPECT_EQ(server.failures()[0], "Expected a packet of type 16 and got 18.");
}

TEST(HostileServer, SendsTheFirstBytesOnly)
{
    const HostileServer server({HostileServer::sendFirst(9, packet(done()))});
    EXPECT_THROW(WireClient(server.port()).readPacket(), std::runtime_error);
    const HostileServer whole({HostileServer::sendByteByByte(packet(done()))});
    EXPECT_EQ(WireClient(whole.port()).readPacket(), packet(done()));
}

TEST(HostileServer, StaysSilentUntilReleased)
{
    HostileServer server({HostileServer::stall()});
    WireClient client(server.port());
    EXPECT_FALSE(client.waitForClose(50ms));
    server.release();
    EXPECT_TRUE(client.waitForClose());
}

TEST(HostileServer, ClosesWithAResetWhereAsked)
{
    const HostileServer server({HostileServer::expect(PreloginPacket), HostileServer::reset()});
    WireClient client(server.port());
    client.sendMessage(PreloginPacket, LoginBytes::prelogin(2));
    EXPECT_TRUE(client.waitForClose());
    EXPECT_EQ(client.lastError(), ECONNRESET);
}

TEST(HostileServer, AsksForTheScriptOfEachConnection)
{
    const HostileServer server([](std::uint64_t connection) -> Script {
        return {HostileServer::send(packet(done(0, connection)))};
    });
    for (const std::uint8_t connection : {0, 1, 2})
        EXPECT_EQ(WireClient(server.port()).readMessage()[5], connection);
}

TEST(HostileServerRelay, PassesEverythingAndCountsIt)
{
    const HostileServer server(answering(2));
    const HostileServerRelay relay(server.port(), HostileServerRelay::Fault::None, 0);
    WireClient client(relay.port());
    client.login();
    const std::uint64_t afterLogin = relay.bytesFromServer();
    EXPECT_EQ(client.batch(u"x"), done(0, 7));
    EXPECT_EQ(relay.bytesFromServer(), afterLogin + 21);
}

TEST(HostileServerRelay, StrikesAtItsByte)
{
    using Fault = HostileServerRelay::Fault;
    const HostileServer server(answering(1));
    const std::uint64_t loginSize = packet(preloginAnswer()).size() + packet(loginAnswer()).size();
    for (const std::uint64_t offset : {0, 10, 20}) {
        for (const Fault fault : {Fault::Close, Fault::Reset, Fault::Stall, Fault::Corrupt}) {
            const HostileServerRelay relay(server.port(), fault, loginSize + offset);
            WireClient client(relay.port());
            client.login();
            client.sendBatch(u"x");
            if (fault == Fault::Corrupt) {
                Bytes expected = packet(done(0, 7));
                expected[offset] = static_cast<std::uint8_t>(~expected[offset]);
                Bytes received(expected.size());
                client.readBytes(received);
                EXPECT_EQ(received, expected);
            } else {
                Bytes received(offset);
                client.readBytes(received);
                EXPECT_EQ(client.waitForClose(fault == Fault::Stall ? 30ms : 10s), fault != Fault::Stall);
            }
        }
    }
}

TEST(HostileServerRelay, ClosesWhenTheServerIsGone)
{
    std::uint16_t port = 0;
    {
        const HostileServer server(Script{});
        port = server.port();
    }
    const HostileServerRelay relay(port, HostileServerRelay::Fault::None, 0);
    EXPECT_TRUE(WireClient(relay.port()).waitForClose());
}
