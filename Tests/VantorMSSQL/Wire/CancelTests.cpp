#include "Support/HostileServerBytes.h"
#include "Support/HostileServerRelay.h"
#include "Support/TestCertificates.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <algorithm>
#include <thread>

using namespace WireTest;

namespace {

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// A batch that runs on a thread of its own.
class Running
{
public:
    Running(MSSQLClient &client, const QString &sql)
        : m_client(client)
    {
        m_thread = std::thread([this, sql] {
            m_client.executeQueryDetails({{sql, {0, sql.size()}, 0}}, m_holder, {}, &m_error);
            m_done = true;
        });
    }
    ~Running() { m_thread.join(); }

    KNResultSetHolder &holder() { return m_holder; }
    const KNError &error() const { return m_error; }
    /// What the last cancel() has reported.
    const KNError &cancelError() const { return m_cancelError; }

    /// Cancels, and gives the milliseconds until both threads had control again.
    double cancel()
    {
        const auto start = Clock::now();
        // On a busy machine the first request may come before the run has begun.
        do {
            m_cancelError.clear();
            const bool isCancelled = m_client.cancelCurrentQuery(&m_cancelError);
            EXPECT_EQ(isCancelled, !m_cancelError);
        } while (!m_client.wasCancelled() && !m_done);
        EXPECT_TRUE(waitFor([this] { return m_done.load(); }));
        return millisecondsSince(start);
    }

private:
    MSSQLClient &m_client;
    KNResultSetHolder m_holder;
    KNError m_error;
    KNError m_cancelError;
    std::atomic<bool> m_done = false;
    std::thread m_thread;
};

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr double Slowness = 10;
#else
constexpr double Slowness = 1;
#endif
constexpr double WhileWaiting = 50 * Slowness;
constexpr double WhileStreaming = 100 * Slowness;

class Cancelling : public testing::TestWithParam<Protection>
{
protected:
    void SetUp() override
    {
        run(*client,
            QStringLiteral("CREATE TABLE #kept (a int); INSERT INTO #kept VALUES (42); BEGIN TRANSACTION"));
    }

    void expectSessionLivesOn()
    {
        EXPECT_TRUE(client->isConnected());
        EXPECT_EQ(scalar(*client, QStringLiteral("SELECT a FROM #kept")), KNValue(42));
        EXPECT_EQ(scalar(*client, QStringLiteral("SELECT @@TRANCOUNT")), KNValue(1));
    }

    std::unique_ptr<MSSQLClient> client = connectedClient(sharedSettings(GetParam()));
};

bool isWaitingAtServer(MSSQLClient &)
{
    // Long enough that the batch has been sent; whether it has or not, the cancel must work.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    return true;
}

} // namespace

TEST_P(Cancelling, WaitForFirstAnswerReturnsAtOnce)
{
    for (int i = 0; i < 20; ++i) {
        Running batch(*client, QStringLiteral("WAITFOR DELAY '00:10:00'"));
        isWaitingAtServer(*client);
        EXPECT_LT(batch.cancel(), WhileWaiting);
        EXPECT_TRUE(client->wasCancelled());
        EXPECT_EQ(batch.error().localizedDescription(), QStringLiteral("Query was cancelled."));
    }
    expectSessionLivesOn();
}

TEST_P(Cancelling, WaitAfterFirstResultReturnsAtOnce)
{
    for (int i = 0; i < 10; ++i) {
        Running batch(
            *client,
            QStringLiteral("SELECT 1 AS a; RAISERROR('now', 0, 1) WITH NOWAIT; WAITFOR DELAY '00:10:00'"));
        ASSERT_TRUE(batch.holder().waitForMoreThan(0, std::chrono::seconds(30)));
        isWaitingAtServer(*client);
        EXPECT_LT(batch.cancel(), WhileWaiting);
        EXPECT_EQ(batch.holder().resultSets().first()->rows().value(0, 0), KNValue(1));
    }
    expectSessionLivesOn();
}

TEST_P(Cancelling, WaitAfterMessageReturnsAtOnce)
{
    for (int i = 0; i < 10; ++i) {
        Running batch(*client,
                      QStringLiteral("RAISERROR('now', 0, 1) WITH NOWAIT; WAITFOR DELAY '00:10:00'"));
        isWaitingAtServer(*client);
        EXPECT_LT(batch.cancel(), WhileWaiting);
    }
    expectSessionLivesOn();
}

TEST_P(Cancelling, LockWaitReturnsAtOnce)
{
    const auto other = connectedClient(sharedSettings(GetParam()));
    run(*other, QStringLiteral("USE shop; CREATE TABLE locked (a int); INSERT INTO locked VALUES (1)"));
    run(*other, QStringLiteral("BEGIN TRANSACTION; UPDATE locked SET a = 2"));
    Running batch(*client, QStringLiteral("UPDATE shop.dbo.locked SET a = 3"));
    isWaitingAtServer(*client);
    EXPECT_LT(batch.cancel(), WhileWaiting);
    run(*other, QStringLiteral("ROLLBACK; DROP TABLE locked"));
    expectSessionLivesOn();
}

TEST_P(Cancelling, StopsStreamingAndKeepsReceivedRows)
{
    std::vector<double> times;
    for (int i = 0; i < 11; ++i) {
        Running batch(*client, QStringLiteral("SELECT * FROM generate_rows(100000000)"));
        ASSERT_TRUE(batch.holder().waitForMoreThan(0, std::chrono::seconds(30)));
        const auto resultSet = batch.holder().resultSets().first();
        ASSERT_TRUE(waitFor([&] { return resultSet->rows().rowCount() > 5000; }));
        times.push_back(batch.cancel());
        EXPECT_FALSE(batch.error());
        EXPECT_GT(resultSet->rows().rowCount(), 5000);
        EXPECT_EQ(resultSet->numberOfRowsAffected(), resultSet->rows().rowCount());
        EXPECT_TRUE(resultSet->messages().first().text.startsWith(QStringLiteral("Query was cancelled.")));
        EXPECT_TRUE(resultSet->isFinished());
    }
    // A busy machine holds single rounds up.
    std::sort(times.begin(), times.end());
    EXPECT_LT(times[times.size() / 2], WhileStreaming);
    EXPECT_LT(times.back(), 20 * WhileStreaming);
    expectSessionLivesOn();
}

TEST_P(Cancelling, DoesNotWaitForSlowReader)
{
    KNResultSetHolder holder;
    holder.setReadAhead(1);
    const QString sql = QStringLiteral("SELECT * FROM generate_rows(100000000)");
    KNError error;
    std::thread worker([&] { client->executeQueryDetails({{sql, {0, sql.size()}, 0}}, holder, {}, &error); });
    ASSERT_TRUE(holder.waitForMoreThan(0, std::chrono::seconds(30)));
    const auto start = Clock::now();
    EXPECT_TRUE(client->cancelCurrentQuery(&error));
    worker.join();
    EXPECT_LT(millisecondsSince(start), WhileStreaming);
    expectSessionLivesOn();
}

TEST_P(Cancelling, IsSafeAtAnyTime)
{
    for (int i = 0; i < 200; ++i) {
        Running batch(*client, QStringLiteral("SELECT * FROM generate_rows(300); PRINT 'x'; SELECT 2 AS b"));
        std::this_thread::sleep_for(std::chrono::microseconds(37 * (i % 60)));
        KNError error;
        EXPECT_TRUE(client->cancelCurrentQuery(&error));
    }
    expectSessionLivesOn();
}

TEST_P(Cancelling, WhenNothingRunsIsHarmless)
{
    KNError error;
    EXPECT_TRUE(client->cancelCurrentQuery(&error));
    EXPECT_FALSE(error);
    expectSessionLivesOn();
    client->disconnect();
    EXPECT_TRUE(client->cancelCurrentQuery(&error));
}

TEST_P(Cancelling, StopsTheBatchesThatWouldFollow)
{
    KNResultSetHolder holder;
    KNError error;
    const auto batch = [](const char *sql) { return KNQueryDetails{QString::fromLatin1(sql), {0, 1}, 0}; };
    std::thread worker([&] {
        client->executeQueryDetails(
            {batch("SELECT * FROM generate_rows(100000000)"), batch("UPDATE #kept SET a = 0")}, holder, {},
            &error);
    });
    ASSERT_TRUE(holder.waitForMoreThan(0, std::chrono::seconds(30)));
    KNError cancelError;
    client->cancelCurrentQuery(&cancelError);
    worker.join();
    expectSessionLivesOn();
}

INSTANTIATE_TEST_SUITE_P(Conversations, Cancelling, testing::Values(Protection::Clear, Protection::Encrypted),
                         protectionName);

TEST(CancellingAStalledServer, InTheMiddleOfARowLosesTheSessionWithinTwoSeconds)
{
    using namespace HostileServerBytes;
    const Bytes answer = packet(joined({intColumns({"a"}), intRow({1})}), false);
    HostileServer server(
        HostileServer::joined(HostileServer::acceptedLogin(),
                              {HostileServer::expect(BatchPacket), HostileServer::send(packet(done())),
                               HostileServer::expect(BatchPacket),
                               HostileServer::sendFirst(answer.size() - 2, answer), HostileServer::stall()}));
    const auto client = connectedClient(settings(server.port()));
    Running batch(*client, QStringLiteral("SELECT 1"));
    isWaitingAtServer(*client);
    EXPECT_LT(batch.cancel(), 2000 * Slowness);
    EXPECT_FALSE(client->isConnected());
    KNError error;
    EXPECT_FALSE(client->executeQuery(QStringLiteral("SELECT 1"), &error));
    EXPECT_TRUE(error);
}

TEST(CancellingAStalledServer, InTheMiddleOfATlsRecordLosesTheSessionWithinTwoSeconds)
{
    static const SampleServerFixture server({TestCertificates::shared().usual().arguments("require"), {}});
    HostileServerRelay relay(server.port(), HostileServerRelay::Fault::Stall, UINT64_MAX);
    connectedClient(encryptedSettings(relay.port())); // the next login needs one connection only
    const std::uint64_t before = relay.bytesFromServer();
    const auto client = connectedClient(encryptedSettings(relay.port()));
    relay.strikeAfter(relay.bytesFromServer() - before + 30);
    Running batch(*client, QStringLiteral("SELECT 1"));
    isWaitingAtServer(*client);
    EXPECT_LT(batch.cancel(), 2000 * Slowness);
    EXPECT_FALSE(client->isConnected());
}

TEST(CancellingAStalledServer, ClosesConnectionAfterAcknowledgementTimeout)
{
    using namespace HostileServerBytes;
    HostileServer server(
        HostileServer::joined(HostileServer::acceptedLogin(),
                              {HostileServer::expect(BatchPacket), HostileServer::send(packet(done())),
                               HostileServer::expect(BatchPacket), HostileServer::stall()}));
    const auto client = connectedClient(settings(server.port()),
                                        {std::chrono::milliseconds(100), std::chrono::milliseconds(300)});
    Running batch(*client, QStringLiteral("SELECT 1"));
    isWaitingAtServer(*client);
    EXPECT_LT(batch.cancel(), 5000);
    EXPECT_FALSE(client->isConnected());
    EXPECT_EQ(batch.cancelError().localizedDescription(), QStringLiteral("Failed to cancel query."));
    EXPECT_EQ(batch.cancelError().domain(), QString());
    EXPECT_EQ(batch.cancelError().code(), 0);
}

TEST(CancellingAStalledServer, KeepsSessionDuringLongRollback)
{
    using namespace HostileServerBytes;
    HostileServer server(HostileServer::joined(
        HostileServer::acceptedLogin(),
        {HostileServer::expect(BatchPacket), HostileServer::send(packet(done())),
         HostileServer::expect(BatchPacket), HostileServer::expect(AttentionPacket),
         [](HostileServer::Peer &) { std::this_thread::sleep_for(std::chrono::milliseconds(2500)); },
         HostileServer::send(packet(done(DoneAttention))), HostileServer::expect(BatchPacket),
         HostileServer::send(packet(joined({intColumns({"a"}), intRow({42}), done(DoneCount, 1)}))),
         HostileServer::stall()}));
    const auto client = connectedClient(settings(server.port()));
    {
        Running batch(*client, QStringLiteral("UPDATE t SET a = 1"));
        isWaitingAtServer(*client);
        batch.cancel();
    }
    EXPECT_TRUE(client->isConnected());
    EXPECT_EQ(scalar(*client, QStringLiteral("SELECT 42")), KNValue(42));
}
