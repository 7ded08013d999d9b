#include "Implementations/MSSQLMessageList.h"
#include "Support/HostileServerBytes.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <QFile>

#include <thread>

using namespace WireTest;
using namespace HostileServerBytes;
using namespace std::chrono_literals;

// Servers that send without end: time and memory stay bounded.

namespace {

using Clock = std::chrono::steady_clock;

// A sanitizer keeps freed memory for a while.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr qint64 MostMegabytes = 2000;
constexpr auto LongestCancel = 60s;
#else
constexpr qint64 MostMegabytes = 300;
constexpr auto LongestCancel = 15s;
#endif

/// Sends the same tokens again and again, until the client goes.
HostileServer::Step flood(const Bytes &begin, const Bytes &tokens)
{
    Bytes many;
    while (many.size() < 100'000)
        many.insert(many.end(), tokens.begin(), tokens.end());
    return [first = packet(begin, false), again = packet(many, false)](HostileServer::Peer &peer) {
        peer.send(first);
        for (;;)
            peer.send(again);
    };
}

qint64 residentMegabytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readLine().split(' ').value(1).toLongLong() * 4096 / 1'000'000;
}

struct Flood
{
    const char *name;
    Bytes begin;
    Bytes tokens;
};

std::vector<Flood> floods()
{
    return {{"messages", message(50000, 0, "hello"), message(50000, 0, "hello again")},
            {"errors", message(50000, 16, "no"), message(50000, 16, "no")},
            {"rows", intColumns({"a"}), intRow({1})},
            {"results without columns", done(DoneMore), done(DoneMore)},
            {"failures", joined({message(50000, 16, "no"), done(DoneMore | DoneError)}),
             done(DoneMore | DoneError)}};
}

/// Cancels a batch whose results never end.
void expectCancelEnds(const Flood &one)
{
    SCOPED_TRACE(one.name);
    HostileServer server(afterLogin({flood(one.begin, one.tokens)}));
    const auto client = connectedClient(settings(server.port()));
    const QString sql = QStringLiteral("SELECT a FROM dbo.t");
    KNResultSetHolder holder;
    holder.setRowLimit(1000);
    KNError error;
    std::thread worker([&] { client->executeQueryDetails({{sql, {0, sql.size()}, 0}}, holder, {}, &error); });
    std::this_thread::sleep_for(300ms);
    const auto start = Clock::now();
    KNError ignored;
    client->cancelCurrentQuery(&ignored);
    worker.join();
    EXPECT_LT(Clock::now() - start, LongestCancel);
}

} // namespace

// All at once, because each takes as long as the client waits for the server to acknowledge the cancellation.
TEST(FloodingServer, CanBeCancelledInAnyPhase)
{
    const qint64 before = residentMegabytes();
    const std::vector<Flood> all = floods();
    std::vector<std::thread> threads;
    for (const Flood &one : all)
        threads.emplace_back([&one] { expectCancelEnds(one); });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_LT(residentMegabytes() - before, MostMegabytes);
    EXPECT_EQ(scalar(*connectedClient(), QStringLiteral("SELECT 3")), KNValue(3));
}

TEST(FloodingServer, EndsALoginAtItsTime)
{
    HostileServer server(HostileServer::Script{
        HostileServer::expect(PreloginPacket), HostileServer::send(packet(preloginAnswer())),
        HostileServer::expect(LoginPacket),
        flood(message(50000, 0, "hello"), message(50000, 0, "hello again"))});
    const auto details = settings(server.port());
    details->setSessionParameters({{QStringLiteral("loginTimeout"), 1}});
    MSSQLClient client(details);
    const auto start = Clock::now();
    KNError error;
    EXPECT_FALSE(client.connect(&error));
    EXPECT_TRUE(error);
    EXPECT_LT(Clock::now() - start, 5s);
}

TEST(FloodingServer, EndsTheSetUpOfASessionAtItsTime)
{
    HostileServer server(
        HostileServer::joined(HostileServer::acceptedLogin(),
                              {HostileServer::expect(BatchPacket),
                               flood(message(50000, 0, "hello"), message(50000, 0, "hello again"))}));
    const auto details = settings(server.port());
    details->setSessionParameters({{QStringLiteral("loginTimeout"), 1}});
    details->setTdsVersion(8);
    details->setUseNTLMv2(false);
    MSSQLClient client(details);
    const auto start = Clock::now();
    KNError error;
    EXPECT_FALSE(client.connect(&error));
    EXPECT_TRUE(error);
    EXPECT_LT(Clock::now() - start, 15s);
}

TEST(ResultsOfABatch, WithoutColumnsAreListedUpToALimitAndThenCounted)
{
    Bytes tokens;
    const Bytes one = done(DoneMore | DoneCount, 1);
    for (int i = 0; i < 60'000; ++i)
        tokens.insert(tokens.end(), one.begin(), one.end());
    HostileServer server(afterLogin({HostileServer::send(packet(joined({tokens, done(DoneCount, 1)})))}));
    const auto client = connectedClient(settings(server.port()));
    const auto results = run(*client, QStringLiteral("SELECT a FROM dbo.t"));
    ASSERT_EQ(results.size(), 50'000);
    ASSERT_EQ(results.last()->messages().size(), 2);
    EXPECT_EQ(results.last()->messages().at(0).text,
              QStringLiteral("Command completed successfully. (1 rows affected)."));
    EXPECT_EQ(results.last()->messages().at(1).text, QStringLiteral("10001 more statements without rows."));
}
