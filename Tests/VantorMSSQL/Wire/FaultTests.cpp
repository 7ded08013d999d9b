#include "Database/VantorDatabaseConnectionPool.h"
#include "Support/HostileServerRelay.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <random>
#include <thread>

#include <dirent.h>

using namespace WireTest;
using namespace std::chrono_literals;

namespace {

using Fault = HostileServerRelay::Fault;

constexpr int BulkRows = 1500;
constexpr int ReadRows = 20000;

std::shared_ptr<MSSQLDatabaseConnectionDetails> quickSettings(quint16 port)
{
    const auto details = settings(port);
    details->setSessionParameters({{QStringLiteral("loginTimeout"), 5}});
    details->setTdsVersion(8);
    details->setUseNTLMv2(false);
    return details;
}

int rowCountOf(DatabaseResultSet &rows)
{
    int count = 0;
    while (rows.next())
        ++count;
    return count;
}

/// A connection of its own that reads many rows. What came must be whole, or there must be an error.
void readRows(const std::shared_ptr<MSSQLDatabaseConnectionDetails> &details, VantorDatabaseConnectionPool &)
{
    MSSQLClient client(details->copy());
    KNError error;
    if (!client.connect(&error)) {
        EXPECT_TRUE(error);
        return;
    }
    const auto rows =
        client.executeQuery(QStringLiteral("SELECT * FROM generate_rows(%1)").arg(ReadRows), &error);
    if (!error) {
        ASSERT_TRUE(rows);
        EXPECT_EQ(rowCountOf(*rows), ReadRows);
    }
}

void insertRows(const std::shared_ptr<MSSQLDatabaseConnectionDetails> &details,
                VantorDatabaseConnectionPool &)
{
    MSSQLClient client(details->copy());
    KNError error;
    if (!client.connect(&error)) {
        EXPECT_TRUE(error);
        return;
    }
    client.executeNonQuery(QStringLiteral("CREATE TABLE #t (id int, name nvarchar(50))"), &error);
    QList<QList<KNValue>> rows;
    for (int id = 0; id < BulkRows; ++id)
        rows.append({KNValue(QString::number(id)), KNValue(QStringLiteral("row %1").arg(id))});
    const QStringList names = {QStringLiteral("id"), QStringLiteral("name")};
    const QStringList types = {QStringLiteral("int"), QStringLiteral("nvarchar(50)")};
    if (!error && !client.bulkInsert(rows, {QStringLiteral("#t")}, names, types, {}, &error)) {
        EXPECT_TRUE(error);
    }
    KNError countError;
    const auto count = client.executeQuery(QStringLiteral("SELECT COUNT(*) FROM #t"), &countError);
    if (!error && !countError) {
        ASSERT_TRUE(count && count->next());
        EXPECT_EQ(count->objectForColumnIndex(0), KNValue(BulkRows));
    }
}

void askThroughThePool(const std::shared_ptr<MSSQLDatabaseConnectionDetails> &details,
                       VantorDatabaseConnectionPool &pool)
{
    for (int round = 0; round < 5; ++round) {
        KNError error;
        int rowCount = -1;
        pool.executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) {
                if (const auto rows =
                        client.executeQuery(QStringLiteral("SELECT * FROM shop.dbo.Customers"), failure))
                    rowCount = rowCountOf(*rows);
            },
            *details, &error, round % 2 == 0);
        if (!error) {
            EXPECT_GT(rowCount, 0);
        }
    }
}

using Scenario = void (*)(const std::shared_ptr<MSSQLDatabaseConnectionDetails> &,
                          VantorDatabaseConnectionPool &);
constexpr Scenario Scenarios[] = {readRows, insertRows, askThroughThePool};

int openDescriptors()
{
    int count = 0;
    if (DIR *folder = opendir("/proc/self/fd")) {
        while (readdir(folder))
            ++count;
        closedir(folder);
    }
    return count;
}

/// Runs it and returns how long it took.
double secondsOf(const std::function<void()> &work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

class Faults : public testing::TestWithParam<int>
{
protected:
    static constexpr double Bound = 20; ///< seconds, on a machine that does much else beside

    Scenario scenario = Scenarios[GetParam()];
    VantorDatabaseConnectionPool pool;
    std::mt19937 random{static_cast<std::mt19937::result_type>(GetParam() + 1)};

    void expectNextCallWorks()
    {
        KNValue value;
        KNError error;
        pool.executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) {
                const auto rows = client.executeQuery(QStringLiteral("SELECT 3"), failure);
                if (rows && rows->next())
                    value = rows->objectForColumnIndex(0);
            },
            *quickSettings(SampleServerFixture::shared().port()), &error);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
        EXPECT_EQ(value, KNValue(3));
    }
};

} // namespace

TEST_P(Faults, BrokenConnectionReturnsErrorOrResult)
{
    std::uint64_t whole = 0;
    {
        HostileServerRelay relay(SampleServerFixture::shared().port(), Fault::None, 0);
        scenario(quickSettings(relay.port()), pool);
        whole = relay.bytesFromServer();
    }
    pool.closeIdleClients();
    expectNextCallWorks();
    const int descriptors = openDescriptors();
    for (int round = 0; round < 70; ++round) {
        const Fault fault = random() % 2 ? Fault::Close : Fault::Reset;
        HostileServerRelay relay(SampleServerFixture::shared().port(), fault, random() % (whole + 1));
        EXPECT_LT(secondsOf([&] { scenario(quickSettings(relay.port()), pool); }), Bound);
        expectNextCallWorks();
    }
    pool.closeIdleClients();
    expectNextCallWorks();
    EXPECT_LE(openDescriptors(), descriptors);
}

TEST_P(Faults, KilledServerReturnsErrorOrResult)
{
    expectNextCallWorks();
    const int descriptors = openDescriptors();
    for (int round = 0; round < 40; ++round) {
        SampleServerFixture server;
        const auto delay = std::chrono::microseconds(random() % 60'000);
        std::thread killer([&] {
            std::this_thread::sleep_for(delay);
            ::kill(server.processId(), SIGKILL);
        });
        EXPECT_LT(secondsOf([&] {
                      for (int again = 0; again < 3; ++again)
                          scenario(quickSettings(server.port()), pool);
                  }),
                  Bound);
        killer.join();
        expectNextCallWorks();
    }
    pool.closeIdleClients();
    expectNextCallWorks();
    EXPECT_LE(openDescriptors(), descriptors);
}

INSTANTIATE_TEST_SUITE_P(ReadingBulkInsertPool, Faults, testing::Values(0, 1, 2));

/// A server that says nothing more among its rows is waited for until the user has enough.
TEST(StalledServer, IsLeftWithinTwoSecondsByACancelAmongItsRows)
{
    std::mt19937 random(7);
    std::uint64_t whole = 0;
    VantorDatabaseConnectionPool pool;
    {
        HostileServerRelay relay(SampleServerFixture::shared().port(), Fault::None, 0);
        readRows(quickSettings(relay.port()), pool);
        whole = relay.bytesFromServer();
    }
    for (int round = 0; round < 10; ++round) {
        constexpr std::uint64_t FirstRows = 32768; // the login and some rows
        HostileServerRelay relay(SampleServerFixture::shared().port(), Fault::Stall,
                                 FirstRows + random() % (whole - FirstRows));
        MSSQLClient client(quickSettings(relay.port()));
        KNError error;
        ASSERT_TRUE(client.connect(&error)) << error.localizedDescription().toStdString();
        KNResultSetHolder holder;
        std::atomic<bool> done = false;
        std::thread reader([&] {
            KNError failure;
            const QString sql = QStringLiteral("SELECT * FROM generate_rows(%1)").arg(ReadRows);
            client.executeQueryDetails({{sql, {0, sql.size()}}}, holder, {}, &failure);
            done = true;
        });
        EXPECT_TRUE(waitFor([&] { return holder.totalResultCount() > 0; }));
        const auto cancelUntilDone = [&] {
            while (!done) {
                KNError ignored;
                client.cancelCurrentQuery(&ignored);
            }
        };
        EXPECT_LT(secondsOf(cancelUntilDone), 3); // two, on a machine that does nothing else
        reader.join();
    }
}
