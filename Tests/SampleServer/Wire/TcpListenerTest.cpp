#include "LoopbackServer.h"
#include "ScriptedEngine.h"
#include "WireClient.h"

#include <dirent.h>
#include <gtest/gtest.h>

using namespace SampleServer;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

std::size_t openDescriptors()
{
    std::size_t count = 0;
    DIR *folder = ::opendir("/proc/self/fd");
    while (::readdir(folder))
        ++count;
    ::closedir(folder);
    return count;
}

} // namespace

TEST(TcpListener, RefusesAnInvalidAddress)
{
    const auto ignore = [](int, std::uint64_t) {};
    EXPECT_THROW(TcpListener("nowhere", 0, ignore), std::invalid_argument);
}

TEST(TcpListener, RefusesAPortThatIsTaken)
{
    const auto ignore = [](int, std::uint64_t) {};
    TcpListener first("127.0.0.1", 0, ignore);
    EXPECT_THROW(TcpListener("127.0.0.1", first.port(), ignore), std::system_error);
}

TEST(TcpListener, ListensOnIPv6Too)
{
    TcpListener listener("::1", 0, [](int, std::uint64_t) {});
    EXPECT_NE(listener.port(), 0);
}

TEST(TcpListener, StopsWithinASecondWhileSessionsAreBusy)
{
    ScriptedEngine::define("busy waiting", [](ResultSink &sink) { sink.waitForAttention(10 * 60 * 1000); });
    ScriptedEngine::define("busy sending", [](ResultSink &sink) {
        sink.columns({{"c", {TypeId::Int}, false}}, {});
        const std::vector<Value> row = {std::int64_t{1}};
        while (!sink.attentionRequested())
            sink.row(row); // blocks as soon as the client's buffers are full
    });
    std::vector<WireClient> clients;
    auto server = std::make_unique<LoopbackServer>();
    for (const auto *batch : {u"busy waiting", u"busy sending", u""}) {
        for (int count = 0; count < 10; ++count) {
            WireClient &client = clients.emplace_back(server->port());
            client.login();
            if (*batch)
                client.sendBatch(batch);
        }
    }
    clients.emplace_back(server->port()).send({18, 1, 0}); // one in the middle of its login
    const auto start = Clock::now();
    server.reset();
    EXPECT_LT(Clock::now() - start, 1s);
    for (WireClient &client : clients)
        EXPECT_TRUE(client.waitForClose());
}

TEST(TcpListener, ServesFiveHundredClientsAtOnce)
{
    ScriptedEngine::define("number", [](ResultSink &sink) {
        ScriptedEngine::sendResult(sink, {{TypeId::Int}}, {{std::int64_t{7}}});
    });
    LoopbackServer server;
    std::vector<WireClient> clients;
    for (int count = 0; count < 500; ++count)
        clients.emplace_back(server.port()).login();
    for (WireClient &client : clients)
        client.sendBatch(u"number");
    for (WireClient &client : clients)
        EXPECT_TRUE(WireClient::contains(client.readMessage(), {0xD1, 4, 7, 0, 0, 0}));
}

TEST(TcpListener, ReleasesMemoryOfDisconnectedClients)
{
    LoopbackServer server;
    WireClient(server.port()).login();
    const std::size_t before = openDescriptors();
    for (int count = 0; count < 50; ++count)
        WireClient(server.port()).login();
    const auto deadline = Clock::now() + 10s;
    while (openDescriptors() > before && Clock::now() < deadline)
        std::this_thread::sleep_for(1ms);
    EXPECT_LE(openDescriptors(), before);
}
