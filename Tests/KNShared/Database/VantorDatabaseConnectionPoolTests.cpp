#include "Database/VantorChangedPasswords.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "Database/VantorLoginProblem.h"
#include "Database/VantorTabConnection.h"

#include "Support/FakeDatabase.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <future>
#include <set>

using namespace std::chrono_literals;
using FakeDatabase::Settings;

namespace {

const KNError Failure(QStringLiteral("work"), 7, QStringLiteral("It failed."));

void doNothing(VantorDatabaseClient &, KNError *) {}

void die(VantorDatabaseClient &client, KNError *error)
{
    client.disconnect();
    *error = Failure;
}

bool waitFor(const std::function<bool()> &condition)
{
    const auto end = std::chrono::steady_clock::now() + 30s;
    while (!condition() && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(2ms);
    return condition();
}

class ConnectionPool : public testing::Test
{
protected:
    FakeDatabase::Server server;
    VantorDatabaseConnectionPool pool;
    Settings settings{server};
};

} // namespace

TEST_F(ConnectionPool, LendsAConnectedClient)
{
    bool wasConnected = false;
    KNError error = Failure;
    EXPECT_TRUE(pool.executeQuery(
        [&](VantorDatabaseClient &client, KNError *) { wasConnected = client.isConnected(); }, settings,
        &error));
    EXPECT_TRUE(wasConnected);
    EXPECT_FALSE(error);
}

TEST_F(ConnectionPool, ReusesReturnedClient)
{
    for (int round = 0; round < 5; ++round)
        EXPECT_TRUE(pool.executeQuery(doNothing, settings, nullptr));
    EXPECT_EQ(server.logins, 1);
    EXPECT_EQ(pool.idleCount(), 1U);
    EXPECT_EQ(server.handedBack, 5);
    EXPECT_EQ(server.resets, 5);
}

TEST_F(ConnectionPool, KeepsSettingsApart)
{
    Settings other(server);
    other.setDatabase(QStringLiteral("model"));
    Settings third(server);
    third.setPassword(QStringLiteral("another"));
    for (const Settings *each : {&settings, &other, &third, &settings, &other, &third})
        pool.executeQuery(
            [&](VantorDatabaseClient &client, KNError *) {
                EXPECT_EQ(client.databaseConnectionDetails().database(), each->database());
            },
            *each, nullptr);
    EXPECT_EQ(server.logins, 3);
    EXPECT_EQ(pool.idleCount(), 3U);
}

TEST_F(ConnectionPool, TheNameOfAConnectionDoesNotMatter)
{
    Settings renamed(server);
    renamed.setAlias(QStringLiteral("The same one"));
    renamed.setDatabase(QStringLiteral(""));
    pool.executeQuery(doNothing, settings, nullptr);
    pool.executeQuery(doNothing, renamed, nullptr);
    EXPECT_EQ(server.logins, 1);
}

TEST_F(ConnectionPool, LendsEachCallerItsOwnClient)
{
    std::set<VantorDatabaseClient *> lent;
    pool.executeQuery(
        [&](VantorDatabaseClient &outer, KNError *) {
            lent.insert(&outer);
            pool.executeQuery([&](VantorDatabaseClient &inner, KNError *) { lent.insert(&inner); }, settings,
                              nullptr);
        },
        settings, nullptr);
    EXPECT_EQ(lent.size(), 2U);
    EXPECT_EQ(server.logins, 2);
}

TEST_F(ConnectionPool, ReportsErrorOfWork)
{
    KNError error;
    EXPECT_FALSE(pool.executeQuery([](VantorDatabaseClient &, KNError *failure) { *failure = Failure; },
                                   settings, &error, true));
    EXPECT_EQ(error.localizedDescription(), QStringLiteral("It failed."));
    EXPECT_EQ(server.logins, 1); // an error on a living connection is nothing to repeat
    EXPECT_EQ(pool.idleCount(), 1U);
}

TEST_F(ConnectionPool, ReportsALoginThatFailsAndDoesNotCallTheWork)
{
    server.refusesLogins = true;
    KNError error;
    EXPECT_FALSE(
        pool.executeQuery([](VantorDatabaseClient &, KNError *) { FAIL(); }, settings, &error, true));
    EXPECT_EQ(error.localizedDescription(), QStringLiteral("refused"));
    EXPECT_EQ(server.logins, 1);
    server.refusesLogins = false;
    EXPECT_TRUE(pool.executeQuery(doNothing, settings, &error));
    EXPECT_FALSE(error);
}

TEST_F(ConnectionPool, ADeadClientIsNotKept)
{
    KNError error;
    EXPECT_FALSE(pool.executeQuery(die, settings, &error));
    EXPECT_TRUE(error);
    EXPECT_EQ(server.logins, 1);
    EXPECT_EQ(pool.idleCount(), 0U);
}

TEST_F(ConnectionPool, RepeatsOnceOnAFreshConnectionWhenAskedTo)
{
    int runs = 0;
    KNError error;
    EXPECT_TRUE(pool.executeQuery(
        [&](VantorDatabaseClient &client, KNError *failure) {
            if (++runs == 1)
                die(client, failure);
        },
        settings, &error, true));
    EXPECT_FALSE(error);
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(server.logins, 2);
}

TEST_F(ConnectionPool, RepeatsNoMoreThanOnce)
{
    int runs = 0;
    KNError error;
    EXPECT_FALSE(pool.executeQuery(
        [&](VantorDatabaseClient &client, KNError *failure) {
            ++runs;
            die(client, failure);
        },
        settings, &error, true));
    EXPECT_EQ(error.code(), 7);
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(server.open, 0);
}

TEST_F(ConnectionPool, DoesNotLendClosedConnections)
{
    pool.executeQuery(doNothing, settings, nullptr);
    server.hangsUp = true;
    EXPECT_TRUE(pool.executeQuery(doNothing, settings, nullptr));
    EXPECT_EQ(server.logins, 2);
    EXPECT_EQ(server.open, 1);
}

TEST_F(ConnectionPool, AClientThatCannotBeResetIsClosed)
{
    server.resetsFail = true;
    EXPECT_TRUE(pool.executeQuery(doNothing, settings, nullptr));
    EXPECT_EQ(pool.idleCount(), 0U);
    EXPECT_EQ(server.open, 0);
}

TEST_F(ConnectionPool, WorkThatThrowsLosesItsClientAndNothingElse)
{
    EXPECT_THROW(pool.executeQuery([](VantorDatabaseClient &, KNError *) { throw std::runtime_error("x"); },
                                   settings, nullptr),
                 std::runtime_error);
    EXPECT_EQ(server.open, 0);
    EXPECT_TRUE(pool.executeQuery(doNothing, settings, nullptr));
}

TEST_F(ConnectionPool, ClosesIdleClients)
{
    pool.executeQuery(doNothing, settings, nullptr);
    pool.closeIdleClients();
    EXPECT_EQ(server.open, 0);
    EXPECT_EQ(pool.idleCount(), 0U);
}

TEST_F(ConnectionPool, KeepsNothingAfterItsEnd)
{
    pool.executeQuery(
        [&](VantorDatabaseClient &, KNError *) {
            pool.end();
            EXPECT_EQ(server.open, 1);
        },
        settings, nullptr);
    EXPECT_EQ(server.open, 0);
    EXPECT_TRUE(pool.executeQuery(doNothing, settings, nullptr));
    EXPECT_EQ(server.open, 0);
}

TEST_F(ConnectionPool, SlowLoginDoesNotBlockOthers)
{
    std::promise<void> letGo;
    const std::shared_future<void> mayGoOn(letGo.get_future());
    FakeDatabase::Server slow;
    slow.duringLogin = [&] { mayGoOn.wait(); };
    Settings slowSettings(slow);
    slowSettings.setHost(QStringLiteral("slow"));
    auto waiting =
        std::async(std::launch::async, [&] { return pool.executeQuery(doNothing, slowSettings, nullptr); });
    EXPECT_TRUE(waitFor([&] { return slow.logins == 1; }));
    EXPECT_TRUE(pool.executeQuery(doNothing, settings, nullptr));
    EXPECT_EQ(waiting.wait_for(0s), std::future_status::timeout);
    letGo.set_value();
    EXPECT_TRUE(waiting.get());
    pool.closeIdleClients(); // this test's own server ends before the pool
}

TEST_F(ConnectionPool, RemembersDetectedLoginSettings)
{
    pool.executeQuery(doNothing, settings, nullptr);
    pool.closeIdleClients();
    pool.executeQuery(
        [](VantorDatabaseClient &client, KNError *) {
            EXPECT_FALSE(client.databaseConnectionDetails().connectedWithDetails().isEmpty());
        },
        settings, nullptr);
    EXPECT_EQ(server.logins, 2);
}

TEST_F(ConnectionPool, ProbesAgainWhenRememberedSettingsFail)
{
    server.refusesKnownVersion = true;
    pool.executeQuery(doNothing, settings, nullptr);
    pool.closeIdleClients();
    KNError error;
    EXPECT_TRUE(pool.executeQuery(doNothing, settings, &error)) << error.localizedDescription().toStdString();
    EXPECT_EQ(server.logins, 3);
    pool.closeIdleClients();
    EXPECT_TRUE(pool.executeQuery(doNothing, settings, &error));
    EXPECT_EQ(server.logins, 4); // and does not try it again
}

TEST_F(ConnectionPool, AKnownVersionThatNeverWorkedHereIsNotTriedTwiceInARow)
{
    settings.setConnectedWithDetails({{QStringLiteral("version"), 1}});
    server.refusesKnownVersion = true;
    EXPECT_FALSE(pool.executeQuery(doNothing, settings, nullptr));
    EXPECT_EQ(server.logins, 1); // the password may be wrong, and wrong ones lock accounts
    EXPECT_TRUE(pool.executeQuery(doNothing, settings, nullptr));
    EXPECT_EQ(server.logins, 2);
}

TEST(ConnectionPoolLimits, IdleClientsAreFewForEachConnection)
{
    FakeDatabase::Server server;
    VantorDatabaseConnectionPool pool({.idlePerConnection = 2, .idle = 3});
    const Settings settings(server);
    const std::function<void(int)> nest = [&](int depth) {
        if (depth > 0)
            pool.executeQuery([&](VantorDatabaseClient &, KNError *) { nest(depth - 1); }, settings, nullptr);
    };
    nest(10);
    EXPECT_TRUE(waitFor([&] { return server.open == 2; })) << server.open;
    Settings other(server);
    other.setDatabase(QStringLiteral("other"));
    pool.executeQuery(
        [&](VantorDatabaseClient &, KNError *) { pool.executeQuery(doNothing, other, nullptr); }, other,
        nullptr);
    EXPECT_TRUE(waitFor([&] { return server.open == 3; })) << server.open;
}

TEST(ConnectionPoolLimits, AnIdleClientIsClosedAfterItsTime)
{
    FakeDatabase::Server server;
    VantorDatabaseConnectionPool pool({.idleTime = 50ms});
    pool.executeQuery(doNothing, Settings(server), nullptr);
    EXPECT_TRUE(waitFor([&] { return server.open == 0; }));
    EXPECT_EQ(pool.idleCount(), 0U);
}

TEST(ConnectionPoolLimits, ManyThreadsShareOnePool)
{
    FakeDatabase::Server server;
    VantorDatabaseConnectionPool pool({.idlePerConnection = 3, .idleTime = 1ms});
    std::atomic<int> runs = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < 16; ++number) {
        threads.emplace_back([&, number] {
            Settings settings(server);
            settings.setDatabase(QString::number(number % 3));
            for (int round = 0; round < 200; ++round) {
                pool.executeQuery(
                    [&](VantorDatabaseClient &client, KNError *error) {
                        ++runs;
                        if (round % 7 == 0)
                            die(client, error);
                    },
                    settings, nullptr, round % 2 == 0);
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_GE(runs, 16 * 200);
    EXPECT_TRUE(waitFor([&] { return server.open == 0; }));
}

TEST_F(ConnectionPool, ATabKeepsItsClientForItself)
{
    pool.executeQuery(doNothing, settings, nullptr);
    const auto tab = pool.connectionForTab(settings);
    EXPECT_FALSE(tab->isConnected());
    VantorDatabaseClient *first = nullptr;
    EXPECT_TRUE(
        tab->executeQuery([&](VantorDatabaseClient &client, KNError *) { first = &client; }, nullptr));
    EXPECT_TRUE(tab->isConnected());
    EXPECT_TRUE(pool.executeQuery([&](VantorDatabaseClient &client, KNError *) { EXPECT_NE(&client, first); },
                                  settings, nullptr));
    EXPECT_TRUE(tab->executeQuery([&](VantorDatabaseClient &client, KNError *) { EXPECT_EQ(&client, first); },
                                  nullptr));
    EXPECT_EQ(server.resets, 2); // of the pool's own client: what a tab left open is its user's
}

TEST_F(ConnectionPool, ATabsClientIsClosedWithIt)
{
    auto tab = pool.connectionForTab(settings);
    tab->executeQuery(doNothing, nullptr);
    EXPECT_EQ(server.open, 1);
    tab.reset();
    EXPECT_EQ(server.open, 0);
}

TEST_F(ConnectionPool, ATabThatLostItsClientGoesOnInTheDatabaseItWasIn)
{
    const auto tab = pool.connectionForTab(settings);
    KNError error;
    EXPECT_FALSE(tab->executeQuery(
        [](VantorDatabaseClient &client, KNError *failure) {
            static_cast<FakeDatabase::Client &>(client).database = QStringLiteral("shop");
            die(client, failure);
        },
        &error));
    EXPECT_FALSE(tab->isConnected());
    EXPECT_TRUE(tab->takeNotice().isNull());
    EXPECT_TRUE(tab->executeQuery(
        [](VantorDatabaseClient &client, KNError *) {
            EXPECT_EQ(client.databaseConnectionDetails().database(), QStringLiteral("shop"));
        },
        &error));
    EXPECT_FALSE(error);
    EXPECT_EQ(tab->connectionDetails()->database(), QStringLiteral("shop"));
    EXPECT_TRUE(
        tab->takeNotice().startsWith(QStringLiteral("The connection was lost. A new one was opened")));
    EXPECT_TRUE(tab->takeNotice().isNull()) << "said twice";
}

TEST_F(ConnectionPool, TabWithLostSessionStateWaitsForConfirmation)
{
    VantorSessionState transaction;
    transaction.hasTransaction = true;
    VantorSessionState tables;
    tables.hasTemporaryTables = true;
    VantorSessionState options;
    options.hasOptions = true;
    const std::vector<std::pair<VantorSessionState, QString>> cases = {
        {transaction,
         QStringLiteral("The session was lost: its open transaction was rolled back by the server.")},
        {tables, QStringLiteral("The session was lost: its temporary tables are gone.")},
        {options, QStringLiteral("The session was lost: its SET options are gone.")}};
    for (const auto &[state, text] : cases) {
        const auto tab = pool.connectionForTab(settings);
        EXPECT_TRUE(tab->executeQuery(doNothing, nullptr));
        EXPECT_FALSE(tab->hasSessionState());
        tab->addSessionState(state);
        EXPECT_TRUE(tab->hasSessionState());
        const int logins = server.logins;
        server.hangsUp = true;
        KNError error;
        for (int round = 0; round < 2; ++round) {
            EXPECT_FALSE(tab->executeQuery([](VantorDatabaseClient &, KNError *) { FAIL(); }, &error));
            EXPECT_TRUE(VantorTabConnection::isSessionLost(error));
            EXPECT_EQ(error.localizedDescription(), text);
        }
        EXPECT_EQ(server.logins, logins);
        server.hangsUp = false;
        tab->beginNewSession();
        EXPECT_TRUE(tab->executeQuery(doNothing, &error));
        EXPECT_FALSE(tab->hasSessionState());
    }
}

TEST_F(ConnectionPool, ATabThatLostAnEmptySessionConnectsAgainByItself)
{
    const auto tab = pool.connectionForTab(settings);
    EXPECT_TRUE(tab->executeQuery(doNothing, nullptr));
    VantorSessionState transaction;
    transaction.hasTransaction = true;
    tab->addSessionState(transaction);
    tab->setHasTransaction(false); // it was committed
    server.hangsUp = true;
    EXPECT_TRUE(tab->executeQuery(doNothing, nullptr));
    EXPECT_EQ(server.logins, 2);
}

TEST_F(ConnectionPool, UsesAChangedPasswordUntilTheOldOneSucceeds)
{
    settings.setPassword(QStringLiteral("old"));
    QStringList used;
    const auto note = [&](VantorDatabaseClient &client, KNError *) {
        used.append(client.databaseConnectionDetails().password());
    };
    const auto tab = pool.connectionForTab(settings);
    VantorChangedPasswords::shared().add(settings, QStringLiteral("new"));
    EXPECT_TRUE(pool.executeQuery(note, settings, nullptr));
    EXPECT_TRUE(tab->executeQuery(note, nullptr));
    VantorChangedPasswords::shared().add(settings, QStringLiteral("newer"));
    EXPECT_TRUE(pool.executeQuery(note, settings, nullptr));
    KNError error;
    pool.keep(settings, pool.connectedClient(settings, &error)); // the user has entered the old one
    EXPECT_TRUE(pool.executeQuery(note, settings, nullptr));
    EXPECT_EQ(used, (QStringList{QStringLiteral("new"), QStringLiteral("new"), QStringLiteral("newer"),
                                 QStringLiteral("old")}));
}

TEST_F(ConnectionPool, DoesNotRepeatRefusedLogin)
{
    pool.executeQuery(doNothing, settings, nullptr);
    pool.closeIdleClients();
    server.refusal = KNError(QStringLiteral("fake"), 1, QStringLiteral("wrong password"),
                             VantorLoginProblemInfo(VantorLoginProblem::LoginRefused));
    server.refusesLogins = true;
    for (int round = 0; round < 3; ++round)
        EXPECT_FALSE(pool.executeQuery(doNothing, settings, nullptr));
    EXPECT_EQ(server.logins, 2);
    server.refusesLogins = false;
    pool.forgetRefusals(settings);
    EXPECT_TRUE(pool.executeQuery(doNothing, settings, nullptr));
    EXPECT_EQ(server.logins, 3);
}

TEST_F(ConnectionPool, ATabThatConnectsCanBeCancelled)
{
    const auto tab = pool.connectionForTab(settings);
    server.duringLogin = [&] { EXPECT_TRUE(waitFor([&] { return server.cancels > 0; })); };
    std::thread runner([&] { tab->executeQuery(doNothing, nullptr); });
    EXPECT_TRUE(waitFor([&] { return server.logins == 1; }));
    KNError error;
    EXPECT_TRUE(tab->cancelCurrentQuery(&error));
    runner.join();
    EXPECT_EQ(server.cancels, 1);
}

TEST_F(ConnectionPool, ATabIsCancelledFromAnotherThread)
{
    const auto tab = pool.connectionForTab(settings);
    KNError error;
    EXPECT_TRUE(tab->cancelCurrentQuery(&error));
    std::atomic<bool> running = false;
    std::thread runner([&] {
        tab->executeQuery(
            [&](VantorDatabaseClient &client, KNError *) {
                running = true;
                EXPECT_TRUE(waitFor([&] { return client.wasCancelled(); }));
            },
            nullptr);
    });
    EXPECT_TRUE(waitFor([&] { return running.load(); }));
    EXPECT_TRUE(tab->cancelCurrentQuery(&error));
    runner.join();
}

TEST_F(ConnectionPool, KnowsTheWeakestEncryptionOfItsSessions)
{
    EXPECT_EQ(pool.encryptionOf(settings), VantorEncryption::Unknown);
    server.encryption = VantorEncryption::Verified;
    KNError error;
    const auto first = pool.connectedClient(settings, &error);
    EXPECT_EQ(pool.encryptionOf(settings), VantorEncryption::Verified);
    server.encryption = VantorEncryption::LoginOnly;
    settings.setDatabase(QStringLiteral("other"));
    const auto second = pool.connectedClient(settings, &error);
    server.encryption = VantorEncryption::Unverified;
    const auto third = pool.connectedClient(settings, &error);
    settings.setDatabase(QString());
    EXPECT_EQ(pool.encryptionOf(settings), VantorEncryption::LoginOnly);
    settings.setUsername(QStringLiteral("another"));
    EXPECT_EQ(pool.encryptionOf(settings), VantorEncryption::Unknown);
}

TEST_F(ConnectionPool, LendsAClientThatWasKept)
{
    KNError error;
    auto client = pool.connectedClient(settings, &error);
    ASSERT_TRUE(client);
    pool.keep(settings, std::move(client));
    EXPECT_EQ(pool.idleCount(), 1U);
    EXPECT_TRUE(pool.executeQuery(doNothing, settings, nullptr));
    EXPECT_EQ(server.logins, 1);
}
