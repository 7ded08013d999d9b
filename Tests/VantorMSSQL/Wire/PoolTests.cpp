#include "Database/VantorDatabaseConnectionPool.h"
#include "Database/VantorTabConnection.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <thread>

using namespace WireTest;

namespace {

class Pool : public testing::Test
{
protected:
    VantorDatabaseConnectionPool pool;
    std::shared_ptr<MSSQLDatabaseConnectionDetails> details = settings(SampleServerFixture::shared().port());

    KNValue scalar(const char *sql)
    {
        KNValue value;
        KNError error;
        pool.executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) {
                const auto rows = client.executeQuery(QString::fromUtf8(sql), failure);
                if (rows && rows->next())
                    value = rows->objectForColumnIndex(0);
            },
            *details, &error, true);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
        return value;
    }
    void run(const char *sql)
    {
        KNError error;
        pool.executeQuery([&](VantorDatabaseClient &client,
                              KNError *failure) { client.executeNonQuery(QString::fromUtf8(sql), failure); },
                          *details, &error);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
    }
};

} // namespace

TEST_F(Pool, KeepsASessionForTheNextOne)
{
    const KNValue first = scalar("SELECT @@SPID");
    EXPECT_EQ(scalar("SELECT @@SPID"), first);
}

TEST_F(Pool, RollsBackOpenTransaction)
{
    run("CREATE TABLE #left (a int)");
    run("BEGIN TRANSACTION INSERT #left VALUES (1) BEGIN TRANSACTION");
    EXPECT_EQ(scalar("SELECT @@TRANCOUNT"), KNValue(0));
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM #left"), KNValue(0));
}

TEST_F(Pool, NoticesThatTheServerWasRestarted)
{
    SampleServerFixture own;
    details = settings(own.port());
    scalar("SELECT 1");
    EXPECT_EQ(pool.idleCount(), 1U);
    own.kill();
    KNError error;
    EXPECT_FALSE(pool.executeQuery([](VantorDatabaseClient &, KNError *) {}, *details, &error));
    EXPECT_TRUE(error);
    EXPECT_EQ(pool.idleCount(), 0U);
}

TEST_F(Pool, ATabGoesOnInTheDatabaseThatItsUserHadChosen)
{
    const auto tab = pool.connectionForTab(*details);
    KNError error;
    tab->executeQuery(
        [](VantorDatabaseClient &client, KNError *failure) {
            client.executeNonQuery(QStringLiteral("USE shop CREATE TABLE #kept (a int)"), failure);
        },
        &error);
    EXPECT_FALSE(error);
    EXPECT_EQ(tab->connectionDetails()->database(), QStringLiteral("shop"));
    EXPECT_TRUE(tab->executeQuery(
        [](VantorDatabaseClient &client, KNError *failure) {
            client.executeQuery(QStringLiteral("SELECT a FROM #kept"), failure);
            client.disconnect();
        },
        &error));
    EXPECT_TRUE(tab->executeQuery(
        [](VantorDatabaseClient &client, KNError *failure) {
            const auto rows = client.executeQuery(QStringLiteral("SELECT DB_NAME()"), failure);
            ASSERT_TRUE(rows && rows->next());
            EXPECT_EQ(rows->objectForColumnIndex(0), KNValue(QStringLiteral("shop")));
        },
        &error));
}

/// Two hundred threads, on four kinds of settings, with work of every outcome.
TEST_F(Pool, ServesTwoHundredThreads)
{
#ifdef __SANITIZE_THREAD__
    constexpr std::chrono::seconds Duration(60);
#else
    constexpr std::chrono::seconds Duration(5);
#endif
    const auto end = std::chrono::steady_clock::now() + Duration;
    std::atomic<int> wrong = 0;
    std::atomic<int> right = 0;
    std::mutex mutex;
    QString firstError; // guarded by mutex
    std::vector<std::thread> threads;
    for (int number = 0; number < 200; ++number) {
        threads.emplace_back([&, number] {
            const auto own = std::static_pointer_cast<MSSQLDatabaseConnectionDetails>(details->copy());
            const QStringList databases = {QString(), QStringLiteral("master"), QStringLiteral("shop"),
                                           QStringLiteral("tempdb")};
            own->setDatabase(databases[number % 4]);
            for (int round = 0; round == 0 || std::chrono::steady_clock::now() < end; ++round) {
                KNError error;
                KNValue value;
                const bool ran = pool.executeQuery(
                    [&](VantorDatabaseClient &client, KNError *failure) {
                        if (round % 5 == 1)
                            client.executeQuery(QStringLiteral("SELECT nope FROM shop.dbo.Customers"),
                                                failure);
                        else if (round % 5 == 2)
                            client.disconnect();
                        else if (const auto rows = client.executeQuery(
                                     QStringLiteral("BEGIN TRANSACTION SELECT %1").arg(number), failure);
                                 rows && rows->next())
                            value = rows->objectForColumnIndex(0);
                    },
                    *own, &error, true);
                const bool shouldFail = round % 5 == 1;
                const bool hasValue = round % 5 == 1 || round % 5 == 2 || value == KNValue(number);
                const bool isRight = ran != shouldFail && hasValue;
                (isRight ? right : wrong) += 1;
                if (const std::lock_guard lock(mutex); !isRight && firstError.isEmpty())
                    firstError = QStringLiteral("round %1: ").arg(round) + error.localizedDescription();
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0) << firstError.toStdString();
    EXPECT_GE(right, 200);
    EXPECT_LE(pool.idleCount(), 16U);
}
