#include "Engine/Server.h"
#include "Engine/Session.h"
#include "Support/RecordingSink.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace SampleServer {

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto Bound = std::chrono::seconds(30);

/// A session with its own thread of work.
class Client
{
public:
    explicit Client(const std::shared_ptr<Server> &server)
        : m_session(server, "sa", "shop")
    {
    }
    ~Client()
    {
        if (m_thread.joinable())
            m_thread.join();
    }

    /// Runs a batch here and returns what happened.
    std::string run(std::string_view sql)
    {
        sink.clear();
        m_session.executeBatch(sql, sink);
        return sink.log();
    }
    std::string value(std::string_view sql)
    {
        run(sql);
        return sink.scalar();
    }
    /// Runs a batch on the client's thread.
    void start(std::string sql)
    {
        sink.clear();
        m_done = false;
        m_thread = std::thread([this, sql = std::move(sql)] {
            m_session.executeBatch(sql, sink);
            m_done = true;
        });
    }
    bool isDone() const { return m_done; }
    void join() { m_thread.join(); }

    RecordingSink sink;

private:
    Session m_session;
    std::thread m_thread;
    std::atomic<bool> m_done{false};
};

class Concurrency : public testing::Test
{
protected:
    std::shared_ptr<Server> server = std::make_shared<Server>(Server::Options{});
    Client first{server};
    Client second{server};

    /// Until the second client waits for a lock: it has started and does not end by itself.
    static void expectWaiting(const Client &client)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_FALSE(client.isDone());
    }
    static bool endsInTime(const Client &client)
    {
        const auto end = Clock::now() + Bound;
        while (!client.isDone() && Clock::now() < end)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return client.isDone();
    }
};

} // namespace

TEST_F(Concurrency, AReaderWaitsForAnOpenChangeAndSeesItsOutcome)
{
    first.run("CREATE TABLE t (a int) INSERT t VALUES (1)");
    first.run("BEGIN TRAN UPDATE t SET a = 2");
    second.start("SELECT a FROM t");
    expectWaiting(second);
    first.run("COMMIT");
    ASSERT_TRUE(endsInTime(second));
    second.join();
    EXPECT_EQ(second.sink.scalar(), "2");
}

TEST_F(Concurrency, AnAttentionEndsAWaitForALockAndTheTransactionsLiveOn)
{
    first.run("CREATE TABLE t (a int) INSERT t VALUES (1) CREATE TABLE u (b int)");
    first.run("BEGIN TRAN UPDATE t SET a = 2");
    second.run("CREATE TABLE #mine (x int) INSERT #mine VALUES (5) BEGIN TRAN INSERT #mine VALUES (6)");
    second.start("SELECT a FROM t SELECT 'not reached'");
    expectWaiting(second);
    const auto asked = Clock::now();
    second.sink.attention();
    ASSERT_TRUE(endsInTime(second));
    EXPECT_LT(Clock::now() - asked, std::chrono::milliseconds(500));
    second.join();
    EXPECT_TRUE(second.sink.results().empty());
    second.sink.clearAttention();
    EXPECT_EQ(second.value("SELECT SUM(x) * 10 + @@TRANCOUNT FROM #mine"), "111");
    EXPECT_EQ(first.value("SELECT a * 10 + @@TRANCOUNT FROM t"), "21");
    first.run("ROLLBACK");
    EXPECT_EQ(second.value("SELECT a FROM t"), "1");
}

TEST_F(Concurrency, AnAttentionUndoesALongStatementAndKeepsTheTransaction)
{
    const char *statements[] = {
        "INSERT t SELECT a.id FROM generate_rows(1000000) a CROSS JOIN generate_rows(1000) b",
        "INSERT t SELECT id FROM generate_rows(1000000000)",
        "UPDATE t SET a = a + (SELECT COUNT(*) FROM generate_rows(1000000000))",
        "UPDATE t SET a = a + 1 FROM t CROSS JOIN generate_rows(1000000000) g WHERE g.id < 0",
        "DELETE t FROM t CROSS JOIN generate_rows(1000000000) g WHERE g.id < 0",
        "SELECT id INTO made FROM generate_rows(1000000000)"};
    for (const char *statement : statements) {
        first.run("CREATE TABLE t (a int) INSERT t VALUES (1) BEGIN TRAN INSERT t VALUES (2)");
        first.start(statement);
        expectWaiting(first);
        first.sink.attention();
        ASSERT_TRUE(endsInTime(first)) << statement;
        first.join();
        first.sink.clearAttention();
        EXPECT_TRUE(first.sink.errors().empty()) << statement << '\n' << first.sink.log();
        EXPECT_EQ(first.value("SELECT SUM(a) * 10 + @@TRANCOUNT FROM t"), "31") << statement;
        first.run("INSERT t VALUES (3) COMMIT");
        EXPECT_EQ(second.value("SELECT SUM(a) FROM t"), "6") << statement;
        EXPECT_EQ(first.value("SELECT OBJECT_ID('made')"), "NULL");
        first.run("DROP TABLE t");
    }
}

TEST_F(Concurrency, LockTimeoutEndsAWaitWithAnError)
{
    first.run("CREATE TABLE t (a int) BEGIN TRAN INSERT t VALUES (1)");
    EXPECT_EQ(second.run("SET LOCK_TIMEOUT 20 SELECT a FROM t SELECT @@TRANCOUNT"),
              "message 1222 16 51 line 1: Lock request time out period exceeded.\nend error\n"
              "columns - int not null\nrow 0\nend 1\n");
}

TEST_F(Concurrency, NolockAndReadUncommittedSeeAnOpenChange)
{
    first.run("CREATE TABLE t (a int) BEGIN TRAN INSERT t VALUES (1)");
    EXPECT_EQ(second.value("SELECT COUNT(*) FROM t WITH (NOLOCK)"), "1");
    EXPECT_EQ(second.value("SET TRANSACTION ISOLATION LEVEL READ UNCOMMITTED SELECT COUNT(*) FROM t"), "1");
    first.run("ROLLBACK");
    EXPECT_EQ(second.value("SELECT COUNT(*) FROM t"), "0");
}

TEST_F(Concurrency, OtherTablesCanBeReadWhileOneChanges)
{
    first.run("CREATE TABLE t (a int)");
    first.run("BEGIN TRAN INSERT t VALUES (1)");
    EXPECT_EQ(second.value("SELECT COUNT(*) FROM Customers"), "12");
}

TEST_F(Concurrency, AWriterWaitsForAnotherOne)
{
    first.run("CREATE TABLE t (a int) BEGIN TRAN INSERT t VALUES (1)");
    second.start("INSERT t VALUES (2) SELECT COUNT(*) FROM t");
    expectWaiting(second);
    first.run("COMMIT");
    ASSERT_TRUE(endsInTime(second));
    second.join();
    EXPECT_EQ(second.sink.scalar(), "2");
}

TEST_F(Concurrency, ADeadlockHasAVictim)
{
    first.run("CREATE TABLE t (a int) CREATE DATABASE other");
    first.run("CREATE TABLE other.dbo.u (a int)");
    first.run("BEGIN TRAN INSERT t VALUES (1)");
    second.run("BEGIN TRAN INSERT other.dbo.u VALUES (1)");
    second.start("SELECT a FROM t SELECT @@TRANCOUNT");
    expectWaiting(second);
    first.run("SELECT a FROM other.dbo.u");
    EXPECT_EQ(first.sink.errors(), std::vector<std::int32_t>{1205});
    ASSERT_TRUE(endsInTime(second));
    second.join();
    EXPECT_TRUE(second.sink.errors().empty()) << second.sink.log();
    EXPECT_EQ(first.value("SELECT @@TRANCOUNT"), "0");
}

TEST_F(Concurrency, RepeatableReadKeepsWhatItRead)
{
    first.run("CREATE TABLE t (a int)");
    first.run("SET TRANSACTION ISOLATION LEVEL REPEATABLE READ BEGIN TRAN SELECT * FROM t");
    second.start("INSERT t VALUES (1)");
    expectWaiting(second);
    first.run("COMMIT");
    EXPECT_TRUE(endsInTime(second));
}

TEST_F(Concurrency, AnOpenChangeOfDefinitionsBlocksOtherSessions)
{
    first.run("BEGIN TRAN CREATE TABLE made (a int)");
    second.start("SELECT OBJECT_ID('made')");
    expectWaiting(second);
    first.run("ROLLBACK");
    ASSERT_TRUE(endsInTime(second));
    second.join();
    EXPECT_EQ(second.sink.scalar(), "NULL");
}

TEST_F(Concurrency, AChangeOfDefinitionsDoesNotBlockOtherDatabases)
{
    second.run("SELECT COUNT(*) FROM Customers"); // from here on its connection knows both databases
    first.run("BEGIN TRAN CREATE TABLE made (a int)");
    EXPECT_EQ(second.value("USE tempdb CREATE TABLE #t (a int) INSERT #t VALUES (7) SELECT a FROM #t"), "7");
    EXPECT_EQ(second.value("CREATE TABLE ##g (a int) INSERT ##g VALUES (8) SELECT a FROM ##g"), "8");
}

TEST_F(Concurrency, ASessionThatEndsRollsBackAndReleasesItsLocks)
{
    first.run("CREATE TABLE t (a int)");
    {
        Client third(server);
        third.run("BEGIN TRAN INSERT t VALUES (1) CREATE TABLE made (a int)");
    }
    EXPECT_EQ(first.value("SELECT COUNT(*) FROM t"), "0");
    EXPECT_EQ(first.value("SELECT OBJECT_ID('made')"), "NULL");
}

TEST_F(Concurrency, IdentityNumbersAreUniqueAcrossSessions)
{
    first.run("CREATE TABLE t (id int IDENTITY PRIMARY KEY, who int)");
    const std::string insert =
        "SET NOCOUNT ON DECLARE @i int = 0 WHILE @i < 200 BEGIN INSERT t (who) VALUES (@@SPID) SET @i "
        "= @i + 1 END";
    first.start(insert);
    second.start(insert);
    first.join();
    second.join();
    EXPECT_EQ(first.value("SELECT COUNT(DISTINCT id) * 10 + COUNT(DISTINCT who) FROM t"), "4002");
}

TEST_F(Concurrency, FiftySessionsTransferMoneyAtOnceAndLoseNone)
{
    first.run("CREATE TABLE ledger (account int PRIMARY KEY, amount money NOT NULL)");
    first.run("INSERT ledger SELECT id, 1000 FROM generate_rows(10)");
    std::vector<std::unique_ptr<Client>> clients;
    for (int i = 0; i < 50; ++i)
        clients.push_back(std::make_unique<Client>(server));
    const std::string work = R"sql(
        SET NOCOUNT ON
        DECLARE @i int = 0, @from int, @to int
        CREATE TABLE #own (a int, b nvarchar(20))
        WHILE @i < 10
        BEGIN
            SET @from = (@@SPID + @i) % 10 + 1
            SET @to = (@@SPID * 3 + @i * 7) % 10 + 1
            BEGIN TRAN
            UPDATE ledger SET amount = amount - 1 WHERE account = @from
            UPDATE ledger SET amount = amount + 1 WHERE account = @to
            INSERT #own VALUES (@i, N'transfer')
            IF @i % 3 = 0 ROLLBACK ELSE COMMIT
            IF (SELECT SUM(amount) FROM ledger) <> 10000 RAISERROR('money was lost', 16, 1)
            IF @i % 5 = 0
            BEGIN
                DECLARE @sql nvarchar(200) = N'CREATE TABLE made' + CAST(@@SPID AS nvarchar(10)) + N' (a int)'
                EXEC (@sql)
                SET @sql = N'DROP TABLE made' + CAST(@@SPID AS nvarchar(10))
                EXEC (@sql)
            END
            SET @i = @i + 1
        END
        SELECT COUNT(*) FROM #own)sql";
    for (const auto &client : clients)
        client->start(work);
    for (const auto &client : clients)
        client->join();
    for (const auto &client : clients) {
        EXPECT_TRUE(client->sink.errors().empty()) << client->sink.log();
        EXPECT_EQ(client->sink.scalar(), "6");
    }
    EXPECT_EQ(first.value("SELECT SUM(amount) FROM ledger"), "10000.0000");
}

} // namespace SampleServer
