#include "Database/VantorDatabaseConnectionPool.h"
#include "Database/VantorLoginProblem.h"
#include "Database/VantorTabConnection.h"
#include "Support/LoginCounter.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <thread>

using namespace WireTest;

namespace {

KNError refusalOf(const std::shared_ptr<MSSQLDatabaseConnectionDetails> &details)
{
    KNError error;
    EXPECT_FALSE(MSSQLClient(details).connect(&error));
    return error;
}

void runNothing(VantorDatabaseClient &, KNError *) {}

} // namespace

TEST(RefusedLogin, CostsOneAttempt)
{
    // Wrong password or user, disabled, locked out, password expired, password must change, untrusted domain
    for (const int number : {18456, 18470, 18486, 18487, 18488, 18452}) {
        const LoginCounter server(number, "Refused.");
        const KNError error = refusalOf(settings(server.port()));
        EXPECT_EQ(server.logins(), 1) << number;
        EXPECT_EQ(VantorLoginProblemOf(error), VantorLoginProblem::LoginRefused) << number;
        EXPECT_EQ(error.localizedDescription(), QStringLiteral("Refused. (Msg %1, Level 14).").arg(number));
    }
}

TEST(RefusedLogin, NamesServerAndPortAndSuggestsRemedy)
{
    const LoginCounter server;
    const QString suggestion = refusalOf(settings(server.port())).recoverySuggestion();
    for (const QString &part : {QStringLiteral("127.0.0.1"), QString::number(server.port()),
                                QStringLiteral("user name"), QStringLiteral("password")})
        EXPECT_TRUE(suggestion.contains(part)) << suggestion.toStdString();
}

TEST(RefusedLogin, OfADatabaseIsToldApart)
{
    for (const int number : {4060, 911, 916, 4064}) {
        const LoginCounter server(number, "Cannot open database.");
        const KNError error = refusalOf(settings(server.port()));
        EXPECT_EQ(server.logins(), 1) << number;
        EXPECT_EQ(VantorLoginProblemOf(error), VantorLoginProblem::DatabaseRefused) << number;
    }
    // A real server sends 18456 behind 4060.
    const auto details = settings(SampleServerFixture::shared().port());
    details->setDatabase(QStringLiteral("nowhere"));
    EXPECT_EQ(VantorLoginProblemOf(refusalOf(details)), VantorLoginProblem::DatabaseRefused);
}

TEST(RefusedLogin, OfAWindowsAccountIsTriedWithBothKindsOfNtlm)
{
    const LoginCounter server;
    const auto details = settings(server.port());
    details->setUsername(QStringLiteral("CORP\\alice"));
    refusalOf(details);
    EXPECT_EQ(server.logins(), 8);
}

TEST(RefusedLogin, OfAnotherKindGoesOnProbing)
{
    const LoginCounter server(17836, "Length specified in network packet payload did not match.");
    refusalOf(settings(server.port()));
    EXPECT_EQ(server.logins(), 4);
}

TEST(RefusedLogin, IsNotRepeatedByThePoolUntilTheUserWantsIt)
{
    const LoginCounter server;
    VantorDatabaseConnectionPool pool;
    const auto details = settings(server.port());
    KNError first;
    for (int round = 0; round < 3; ++round) {
        KNError error;
        EXPECT_FALSE(pool.executeQuery(runNothing, *details, &error, true));
        EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("Msg 18456")));
        details->setDatabase(QString::number(round)); // whatever the database
    }
    EXPECT_EQ(server.logins(), 1);
    pool.forgetRefusals(*details);
    EXPECT_FALSE(pool.executeQuery(runNothing, *details, &first, true));
    EXPECT_EQ(server.logins(), 2);
    details->setPassword(QStringLiteral("another"));
    EXPECT_FALSE(pool.executeQuery(runNothing, *details, &first, true));
    EXPECT_EQ(server.logins(), 3);
}

TEST(RefusedLogin, IsOneForAllThatAskAtOnce)
{
    const LoginCounter server;
    VantorDatabaseConnectionPool pool;
    const auto details = settings(server.port());
    std::vector<std::thread> threads;
    for (int number = 0; number < 12; ++number)
        threads.emplace_back([&] { EXPECT_FALSE(pool.executeQuery(runNothing, *details, nullptr)); });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(server.logins(), 1);
}

TEST(RefusedLogin, IsOneForEachRunOfATab)
{
    const LoginCounter server;
    VantorDatabaseConnectionPool pool;
    const auto tab = pool.connectionForTab(*settings(server.port()));
    KNError error;
    EXPECT_FALSE(tab->executeQuery(runNothing, &error));
    EXPECT_FALSE(tab->executeQuery(runNothing, &error));
    EXPECT_EQ(server.logins(), 2);
}

TEST(LoginTexts, ThatNoLoginCanCarryAreErrorsAndAreNotSent)
{
    const LoginCounter server;
    const QString nul = QStringLiteral("a") + QChar::Null + QStringLiteral("b");
    const QString tooLong = QString(65, QChar(0xE4)); // 130 bytes in UTF-8
    for (const QString &text : {nul, tooLong}) {
        auto details = settings(server.port());
        details->setUsername(text);
        EXPECT_TRUE(refusalOf(details).localizedDescription().contains(QStringLiteral("user name")));
        details = settings(server.port());
        details->setPassword(text);
        const QString description = refusalOf(details).localizedDescription();
        EXPECT_TRUE(description.contains(QStringLiteral("password"))) << description.toStdString();
        EXPECT_FALSE(description.contains(text));
    }
    auto details = settings(server.port());
    details->setDatabase(nul);
    EXPECT_TRUE(refusalOf(details).localizedDescription().contains(QStringLiteral("NUL")));
    EXPECT_EQ(server.logins(), 0);
}

TEST(LoginTexts, OfTheGreatestLengthReachTheServer)
{
    const LoginCounter server;
    const auto details = settings(server.port());
    details->setUsername(QString(64, QChar(0xE4))); // 128 bytes
    details->setPassword(QString(128, u'p'));
    EXPECT_TRUE(refusalOf(details).localizedDescription().contains(QStringLiteral("18456")));
    EXPECT_EQ(server.logins(), 1);
}

TEST(LoginTexts, DatabaseWithANameBeyondTheLoginIsReached)
{
    SampleServerFixture server;
    const QString name = QString(70, QChar(0x4E2D)) + QStringLiteral(" ]x"); // 213 bytes in UTF-8
    {
        const auto client = connectedClient(settings(server.port()));
        run(*client,
            QStringLiteral("CREATE DATABASE [%1]").arg(QString(name).replace(u']', QLatin1String("]]"))));
    }
    auto details = settings(server.port());
    details->setDatabase(name);
    EXPECT_EQ(scalar(*connectedClient(details), QStringLiteral("SELECT DB_NAME()")).text(), name);

    details->setDatabase(QString(100, QChar(0x4E2D)));
    const KNError error = refusalOf(details);
    EXPECT_TRUE(error.localizedDescription().contains(details->database()))
        << error.localizedDescription().toStdString();
    EXPECT_EQ(VantorLoginProblemOf(error), VantorLoginProblem::DatabaseRefused);
}
