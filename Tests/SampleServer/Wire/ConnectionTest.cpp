#include "LoopbackServer.h"
#include "ScriptedEngine.h"
#include "WireClient.h"

#include <gtest/gtest.h>

using namespace SampleServer;
using namespace std::chrono_literals;
using Bytes = WireClient::Bytes;

namespace {

constexpr std::uint8_t LoginAckToken = 0xAD, ErrorToken = 0xAA;

/// The ERROR token's first bytes after its length cannot be looked for, so the number with state and class
/// after it.
Bytes errorNumber(std::int32_t number, std::uint8_t state, std::uint8_t severity)
{
    Bytes bytes = WireClient::number(number);
    bytes.push_back(state);
    bytes.push_back(severity);
    return bytes;
}

StatementEnd end(std::uint64_t rows)
{
    StatementEnd result;
    result.rowCount = rows;
    return result;
}

Bytes doneToken(std::uint8_t status, std::uint8_t rows)
{
    return {0xFD, status, 0, 0, 0, rows, 0, 0, 0, 0, 0, 0, 0};
}

} // namespace

TEST(Connection, AcceptsALoginAndRunsBatches)
{
    LoopbackServer server;
    ScriptedEngine::define("one row", [](ResultSink &sink) {
        ScriptedEngine::sendResult(sink, {{TypeId::Int}}, {{std::int64_t{7}}});
    });
    WireClient client(server.port());
    const Bytes answer = client.login();
    EXPECT_TRUE(WireClient::contains(answer, {LoginAckToken}));
    EXPECT_EQ(WireClient::finalStatus(answer), 0);
    for (int round = 0; round < 3; ++round) {
        const Bytes rows = client.batch(u"one row");
        EXPECT_TRUE(WireClient::contains(rows, {0xD1, 4, 7, 0, 0, 0})) << "round " << round;
        EXPECT_EQ(WireClient::finalStatus(rows), DoneStatus::Count);
    }
}

TEST(Connection, NamesTheSessionInItsPacketsFromTheLoginOn)
{
    LoopbackServer server;
    WireClient client(server.port());
    client.sendMessage(16, LoginBytes::login7({}));
    const Bytes packet = client.readPacket();
    EXPECT_EQ(packet[4] << 8 | packet[5], 77);
}

TEST(Connection, AcceptsALoginWithoutAPrelogin)
{
    LoopbackServer server;
    WireClient client(server.port());
    client.sendMessage(16, LoginBytes::login7({}));
    EXPECT_TRUE(WireClient::contains(client.readMessage(), {LoginAckToken}));
}

TEST(Connection, RefusesAWrongPasswordAndCloses)
{
    LoopbackServer server;
    WireClient client(server.port());
    LoginBytes::Login login;
    login.password = u"sample-1";
    const Bytes answer = client.login(login);
    EXPECT_EQ(answer[0], ErrorToken);
    EXPECT_TRUE(WireClient::contains(answer, errorNumber(18456, 1, 14)));
    EXPECT_EQ(WireClient::finalStatus(answer), DoneStatus::Error);
    EXPECT_TRUE(client.waitForClose());
}

TEST(Connection, RefusesAnUnknownDatabaseWithBothErrors)
{
    LoopbackServer server;
    WireClient client(server.port());
    LoginBytes::Login login;
    login.database = u"nowhere";
    const Bytes answer = client.login(login);
    EXPECT_TRUE(WireClient::contains(answer, errorNumber(4060, 1, 11)));
    EXPECT_TRUE(WireClient::contains(answer, errorNumber(18456, 1, 14)));
    EXPECT_FALSE(WireClient::contains(answer, {LoginAckToken, 0x32, 0}));
    EXPECT_TRUE(client.waitForClose());
}

TEST(Connection, ClosesOnAnUnsupportedVersion)
{
    ServerSettings settings = LoopbackServer::defaultSettings();
    settings.highestVersion = TdsVersion::V72;
    LoopbackServer server(settings);
    for (const std::uint32_t version : {0x730A0003u, 0x730B0003u, 0x74000004u, 0x70000000u, 0x08000000u}) {
        LoginBytes::Login login;
        login.tdsVersion = version;
        WireClient client(server.port());
        client.sendMessage(18, LoginBytes::prelogin(2));
        client.readMessage();
        client.sendMessage(16, LoginBytes::login7(login));
        EXPECT_THROW(client.readMessage(), std::runtime_error) << std::hex << version;
    }
    LoginBytes::Login offered;
    offered.tdsVersion = 0x72090002;
    EXPECT_TRUE(WireClient::contains(WireClient(server.port()).login(offered), {LoginAckToken}));
}

TEST(Connection, AnswersInPacketsOfTheNegotiatedSize)
{
    LoopbackServer server;
    ScriptedEngine::define("long", [](ResultSink &sink) {
        ScriptedEngine::sendResult(sink, {{TypeId::NVarChar, SqlType::Max}}, {{std::string(100'000, 'x')}});
    });
    const std::pair<std::uint32_t, std::size_t> cases[] = {{0, 4096},    {1, 512},       {512, 512},
                                                           {8192, 8192}, {32767, 32767}, {100'000, 32767}};
    for (const auto &[asked, granted] : cases) {
        LoginBytes::Login login;
        login.packetSize = asked;
        WireClient client(server.port());
        client.login(login);
        client.sendBatch(u"long");
        EXPECT_EQ(client.readPacket().size(), granted) << "asked for " << asked;
    }
}

TEST(Connection, MarksEveryStatementButTheLastWithMore)
{
    LoopbackServer server;
    ScriptedEngine::define("three", [](ResultSink &sink) {
        for (const int rows : {1, 2, 3})
            sink.endStatement(end(static_cast<std::uint64_t>(rows)));
    });
    ScriptedEngine::define("nothing", [](ResultSink &) {});
    WireClient client(server.port());
    client.login();
    Bytes expected = doneToken(DoneStatus::Count | DoneStatus::More, 1);
    for (const Bytes &next :
         {doneToken(DoneStatus::Count | DoneStatus::More, 2), doneToken(DoneStatus::Count, 3)})
        expected.insert(expected.end(), next.begin(), next.end());
    EXPECT_EQ(client.batch(u"three"), expected);
    EXPECT_EQ(client.batch(u"nothing"), doneToken(0, 0));
}

TEST(Connection, RunsTheStatementOfExecuteSqlAsAProcedure)
{
    LoopbackServer server;
    ScriptedEngine::define("s", [](ResultSink &sink) { sink.endStatement(end(9)); });
    WireClient client(server.port());
    client.login();
    client.sendMessage(
        3, {4, 0, 0, 0, 0xFF, 0xFF, 10, 0, 0, 0, 0, 0, 0xE7, 2, 0, 9, 4, 0xD0, 0, 0x34, 2, 0, 's', 0});
    const Bytes expected = {0xFF, 0x11, 0,    0, 0, 9, 0, 0, 0, 0, 0, 0, 0, 0x79, 0, 0,
                            0,    0,    0xFE, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,    0};
    EXPECT_EQ(client.readMessage(), expected);
}

TEST(Connection, PassesParametersAndReturnsThoseForOutput)
{
    LoopbackServer server;
    ScriptedEngine::define("s", [](ResultSink &) {});
    WireClient client(server.port());
    client.login();
    client.sendMessage(3, {4,    0, 0,    0,   0xFF, 0xFF, 10, 0, 0,    0,    0, 0,  0xE7, 2, 0,    9, 4,
                           0xD0, 0, 0x34, 2,   0,    's',  0,  0, 0,    0xE7, 2, 0,  9,    4, 0xD0, 0, 0x34,
                           0,    0, 2,    '@', 0,    'a',  0,  1, 0x26, 4,    4, 21, 0,    0, 0});
    const Bytes answer = client.readMessage();
    EXPECT_TRUE(WireClient::contains(answer, {0xD1, 4, 21, 0, 0, 0}))
        << "the parameter as the session got it";
    EXPECT_TRUE(WireClient::contains(
        answer, {0xAC, 0, 0, 2, '@', 0, 'a', 0, 1, 0, 0, 0, 0, 1, 0, 0x26, 4, 4, 42, 0, 0, 0, 0xFE}));
}

TEST(Connection, RefusesAParameterOfATypeItDoesNotTake)
{
    LoopbackServer server;
    WireClient client(server.port());
    client.login();
    client.sendMessage(3, {4, 0, 0, 0, 0xFF, 0xFF, 10, 0, 0, 0, 0, 0, 0xF1, 0});
    EXPECT_TRUE(WireClient::contains(client.readMessage(), errorNumber(50000, 1, 16)));
    client.sendMessage(3, {4, 0, 0, 0, 0xFF, 0xFF, 10, 0, 0, 0});
    EXPECT_TRUE(WireClient::contains(client.readMessage(), errorNumber(214, 2, 16)));
}

TEST(Connection, CallsAProcedureAndReturnsItsStatusAndItsOutput)
{
    LoopbackServer server;
    WireClient client(server.port());
    client.login();
    client.sendMessage(3, {4,   0, 0,   0, 6,   0,   'd', 0,    'o', 0, 'u',  0, 'b', 0, 'l', 0,
                           'e', 0, 0,   0, 2,   '@', 0,   'a',  0,   0, 0x26, 4, 4,   1, 0,   0,
                           0,   2, '@', 0, 'b', 0,   1,   0x26, 4,   4, 21,   0, 0,   0});
    const Bytes answer = client.readMessage();
    EXPECT_TRUE(WireClient::contains(answer, {0x79, 2, 0, 0, 0})) << "the status";
    EXPECT_TRUE(WireClient::contains(
        answer, {0xAC, 1, 0, 2, '@', 0, 'b', 0, 1, 0, 0, 0, 0, 1, 0, 0x26, 4, 4, 42, 0, 0, 0, 0xFE}));
}

TEST(Connection, RefusesUnknownProceduresByName)
{
    LoopbackServer server;
    WireClient client(server.port());
    client.login();
    client.sendMessage(3, {4, 0, 0, 0, 0xFF, 0xFF, 13, 0, 0, 0});
    const Bytes answer = client.readMessage();
    EXPECT_TRUE(WireClient::contains(answer, errorNumber(2812, 62, 16)));
    EXPECT_EQ(WireClient::finalStatus(answer), DoneStatus::Error);
}

TEST(Connection, ReportsChangesOfDatabaseAndTransaction)
{
    LoopbackServer server;
    ScriptedEngine::define("changes", [](ResultSink &sink) {
        sink.databaseChanged("a", "b");
        sink.transactionChanged(TransactionEvent::Begun, 1);
    });
    WireClient client(server.port());
    client.login();
    const Bytes answer = client.batch(u"changes");
    EXPECT_TRUE(WireClient::contains(answer, {0xE3, 7, 0, 1, 1, 'b', 0, 1, 'a', 0}));
    EXPECT_TRUE(WireClient::contains(answer, {0xE3, 11, 0, 8, 8, 1, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(Connection, ResetsTheSessionWhenARequestAsksForIt)
{
    LoopbackServer server;
    ScriptedEngine::define("", [](ResultSink &) {});
    WireClient client(server.port());
    client.login();
    client.sendMessage(1, {4, 0, 0, 0}, 0x08);
    EXPECT_TRUE(WireClient::contains(client.readMessage(), {0xE3, 3, 0, 18, 0, 0}));
}

TEST(Connection, AnswersACancelledRequestWithoutRunningIt)
{
    LoopbackServer server;
    bool ran = false;
    ScriptedEngine::define("taken back", [&](ResultSink &) { ran = true; });
    WireClient client(server.port());
    client.login();
    client.sendMessage(1, {4, 0, 0, 0, 't', 0}, 0x02);
    EXPECT_EQ(WireClient::finalStatus(client.readMessage()), DoneStatus::Error);
    EXPECT_FALSE(ran);
}
