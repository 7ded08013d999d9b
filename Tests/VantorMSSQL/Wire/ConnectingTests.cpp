#include "Foundation/KNLogHelper.h"
#include "Implementations/MSSQLInstancePort.h"
#include "Support/HostileServerBytes.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>

#include <sybdb.h>

#include <atomic>
#include <cstdio>
#include <thread>

using namespace WireTest;

namespace {

const QString LoginErrorDomain = QStringLiteral("com.quorvex.mssql.databaseConnection");

std::unique_ptr<SampleServerFixture> serverOfVersion(const char *version)
{
    return std::make_unique<SampleServerFixture>(SampleServerFixture::Options{{"--tds", version}, {}});
}

/// What the log says while `work` runs.
QStringList logOf(const std::function<void()> &work)
{
    QStringList lines;
    KNLogHelper::sharedInstance()->setObserver([&](const QString &line) { lines.append(line); });
    work();
    KNLogHelper::sharedInstance()->setObserver({});
    return lines;
}

} // namespace

TEST(Connecting, LogsInAndOut)
{
    const auto client = connectedClient();
    EXPECT_TRUE(client->isConnected());
    client->disconnect();
    EXPECT_FALSE(client->isConnected());
    client->disconnect();
    EXPECT_FALSE(client->isConnected());
}

TEST(Connecting, IsConnectedLogsMissingConnection)
{
    const MSSQLClient client(settings(1));
    bool connected = true;
    const QStringList log = logOf([&] { connected = client.isConnected(); });
    EXPECT_FALSE(connected);
    EXPECT_EQ(log.filter(QStringLiteral("MSSQL::isConnected no dbProc.")).size(), 1);
}

TEST(Connecting, RemembersTheNewestVersionAfterSuccess)
{
    const auto client = connectedClient();
    EXPECT_EQ(client->databaseConnectionDetails().tdsVersion(), DBVERSION_74);
    EXPECT_EQ(client->databaseConnectionDetails().useNTLMv2(), false);
}

TEST(Connecting, ProbesDownToTheServersVersion)
{
    for (const char *version : {"7.3", "7.2", "7.1"}) {
        const auto server = serverOfVersion(version);
        const auto client = connectedClient(settings(server->port()));
        EXPECT_EQ(client->databaseConnectionDetails().tdsVersion(), DBVERSION_74) << version;
        EXPECT_EQ(scalar(*client, QStringLiteral("SELECT 40 + 2")), KNValue(42)) << version;
    }
}

TEST(Connecting, MakesOneAttemptWithRememberedVersion)
{
    const auto details = settings(SampleServerFixture::shared().port());
    details->setTdsVersion(DBVERSION_72);
    details->setUseNTLMv2(false);
    MSSQLClient client(details);
    KNError error;
    bool connected = false;
    const QStringList log = logOf([&] { connected = client.connect(&error); });
    EXPECT_TRUE(connected);
    EXPECT_EQ(log.filter(QStringLiteral("Going to dbopen")).size(), 1);
    EXPECT_EQ(log.filter(QStringLiteral("Going to dbopen with NTLMv2: NO. TDS: 6.")).size(), 1);
    EXPECT_EQ(client.databaseConnectionDetails().tdsVersion(), DBVERSION_74);
}

TEST(Connecting, AnUnknownRememberedVersionMeansTheOldest)
{
    const auto details = settings(SampleServerFixture::shared().port());
    details->setTdsVersion(99);
    details->setUseNTLMv2(false);
    MSSQLClient client(details);
    KNError error;
    const QStringList log = logOf([&] { client.connect(&error); });
    EXPECT_EQ(log.filter(QStringLiteral("Going to dbopen with NTLMv2: NO. TDS: 5.")).size(), 1);
}

TEST(Connecting, DoesNotFallBackFromRememberedVersion)
{
    const auto server = serverOfVersion("7.1");
    const auto details = settings(server->port());
    details->setTdsVersion(DBVERSION_74);
    details->setUseNTLMv2(false);
    MSSQLClient client(details);
    KNError error;
    const QStringList log = logOf([&] { EXPECT_FALSE(client.connect(&error)); });
    EXPECT_EQ(log.filter(QStringLiteral("Going to dbopen")).size(), 1);
    EXPECT_EQ(error.domain(), LoginErrorDomain);
}

TEST(Connecting, AWrongPasswordIsReportedWithTheServersWords)
{
    const auto details = settings(SampleServerFixture::shared().port());
    details->setPassword(QStringLiteral("a wrong one that nobody may read"));
    MSSQLClient client(details);
    KNError error;
    QStringList log = logOf([&] { EXPECT_FALSE(client.connect(&error)); });
    EXPECT_EQ(error.domain(), LoginErrorDomain);
    EXPECT_EQ(error.code(), 0);
    EXPECT_EQ(error.localizedDescription(),
              QStringLiteral("Login failed for user 'sa'. (Msg 18456, Level 14)."));
    EXPECT_EQ(log.filter(QStringLiteral("Going to dbopen")).size(), 1); // others would count as well
    EXPECT_TRUE(log.filter(details->password()).isEmpty());
    EXPECT_FALSE(details->description().contains(details->password()));
    EXPECT_FALSE(client.isConnected());
}

TEST(Connecting, AWindowsLoginIsTriedWithNtlmV2AfterAllVersions)
{
    const auto details = settings(SampleServerFixture::shared().port());
    details->setUsername(QStringLiteral("CORP\\alice"));
    details->setPassword(QStringLiteral("wrong"));
    MSSQLClient client(details);
    KNError error;
    const QStringList log = logOf([&] { EXPECT_FALSE(client.connect(&error)); });
    EXPECT_EQ(log.filter(QStringLiteral("Going to dbopen with NTLMv2: NO")).size(), 4);
    EXPECT_EQ(log.filter(QStringLiteral("Going to dbopen with NTLMv2: YES")).size(), 4);
    EXPECT_EQ(log.filter(QStringLiteral("MSSQL failed to connect (TDS71, NTLMv2 = YES). Error: ")).size(), 1);
}

TEST(Connecting, AWindowsAccountLogsInWithBothKindsOfNtlm)
{
    for (const bool useNTLMv2 : {false, true}) {
        const auto details = settings(SampleServerFixture::shared().port());
        details->setUsername(QStringLiteral("CORP\\") + details->username());
        MSSQLClient client(details);
        KNError error;
        EXPECT_TRUE(client.tryConnect(0, useNTLMv2, &error)) << error.localizedDescription().toStdString();
        EXPECT_EQ(details->useNTLMv2(), useNTLMv2);
    }
}

TEST(Connecting, AnUnknownDatabaseIsReported)
{
    const auto details = settings(SampleServerFixture::shared().port());
    details->setDatabase(QStringLiteral("nowhere"));
    MSSQLClient client(details);
    KNError error;
    EXPECT_FALSE(client.connect(&error));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("Msg 4060")))
        << error.localizedDescription().toStdString();
}

TEST(Connecting, BeginsInTheDatabaseOfTheSettings)
{
    const auto details = settings(SampleServerFixture::shared().port());
    details->setDatabase(QStringLiteral("shop"));
    EXPECT_EQ(scalar(*connectedClient(details), QStringLiteral("SELECT DB_NAME()")),
              KNValue(QStringLiteral("shop")));
}

TEST(Connecting, StopsProbingWhenConnectionIsRefused)
{
    const auto server = std::make_unique<SampleServerFixture>();
    const auto details = settings(server->port());
    server->stop();
    MSSQLClient client(details);
    KNError error;
    const QStringList log = logOf([&] { EXPECT_FALSE(client.connect(&error)); });
    EXPECT_EQ(log.filter(QStringLiteral("Going to dbopen")).size(), 1);
    EXPECT_TRUE(
        error.localizedDescription().contains(QStringLiteral("Server is unavailable or does not exist")))
        << error.localizedDescription().toStdString();
}

TEST(Connecting, SilentServerTimesOut)
{
    HostileServer server({HostileServer::stall()});
    const auto details = settings(server.port());
    details->setSessionParameters({{QStringLiteral("loginTimeout"), 1}});
    MSSQLClient client(details);
    KNError error;
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(client.tryConnect(0, false, &error));
    EXPECT_LT(timer.elapsed(), 5000);
    EXPECT_EQ(error.domain(), LoginErrorDomain);
    EXPECT_FALSE(error.localizedDescription().isEmpty());
}

TEST(Connecting, FindsAnInstanceThroughTheBrowser)
{
    SampleServerFixture server({{"--browser-port", "0", "--instance", "EXPRESS"}, {}});
    setBrowserServicePort(server.browserPort());
    const auto details = settings(server.port());
    details->setHost(QStringLiteral("127.0.0.1\\express"));
    EXPECT_EQ(scalar(*connectedClient(details), QStringLiteral("SELECT 7")), KNValue(7));

    details->setHost(QStringLiteral("127.0.0.1\\other"));
    details->setSessionParameters({{QStringLiteral("loginTimeout"), 1}});
    MSSQLClient client(details);
    KNError error;
    EXPECT_FALSE(client.connect(&error));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("other")));
    setBrowserServicePort(1434);
}

TEST(Connecting, CarriesTheUsersDatabaseOverToThePool)
{
    const auto client = connectedClient();
    MSSQLDatabaseConnectionDetails entry;
    client->prepareForPool(entry, true);
    EXPECT_TRUE(entry.database().isNull()) << "master is where a login without a database begins";
    run(*client, QStringLiteral("USE shop"));
    client->prepareForPool(entry, false);
    EXPECT_TRUE(entry.database().isNull());
    client->prepareForPool(entry, true);
    EXPECT_EQ(entry.database(), QStringLiteral("shop"));
    EXPECT_EQ(client->databaseConnectionDetails().database(), QStringLiteral("shop"));
    run(*client, QStringLiteral("USE master"));
    client->prepareForPool(entry, true);
    EXPECT_EQ(entry.database(), QStringLiteral("master"));
}

TEST(Connecting, KeepsFiveHundredClientsOpenAtOnce)
{
    std::vector<std::unique_ptr<MSSQLClient>> clients;
    for (int i = 0; i < 500; ++i) {
        const auto details = settings(SampleServerFixture::shared().port());
        details->setTdsVersion(DBVERSION_74);
        details->setUseNTLMv2(false);
        clients.push_back(connectedClient(details));
        ASSERT_FALSE(HasFailure()) << i;
    }
    for (int i : {0, 250, 499})
        EXPECT_EQ(scalar(*clients[static_cast<std::size_t>(i)], QStringLiteral("SELECT %1").arg(i)),
                  KNValue(i));
}

TEST(Connecting, TwoHundredClientsWorkAtOnce)
{
    const auto details = settings(SampleServerFixture::shared().port());
    details->setTdsVersion(DBVERSION_74);
    details->setUseNTLMv2(false);
    std::atomic<int> rightAnswers = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < 200; ++number) {
        threads.emplace_back([&, number] {
            const auto copy = std::static_pointer_cast<MSSQLDatabaseConnectionDetails>(details->copy());
            const auto client = connectedClient(copy);
            for (int round = 0; round < 5; ++round) {
                const int answer = number * 1000 + round;
                rightAnswers += scalar(*client, QStringLiteral("SELECT %1").arg(answer)) == KNValue(answer);
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(rightAnswers, 1000);
}

TEST(Connecting, ProtocolTraceIsPrivate)
{
    QCoreApplication::setApplicationName(QStringLiteral("wire tests"));
    const QStringList log = logOf([] { MSSQLClient::enableFreeTDSLogging(); });
    const QStringList opened = log.filter(QStringLiteral("Open LogFile ("));
    ASSERT_EQ(opened.size(), 1);
    const QString path = opened.first().section(QLatin1Char('('), 1).section(QLatin1Char(')'), 0, 0);
    const auto details = settings(SampleServerFixture::shared().port());
    details->setPassword(QStringLiteral("a-password-for-the-trace"));
    KNError error;
    MSSQLClient(details).connect(&error);
    QFile trace(path);
    EXPECT_EQ(trace.permissions() &
                  (QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup | QFile::WriteOther),
              QFile::Permissions());
    ASSERT_TRUE(trace.open(QIODevice::ReadOnly));
    QByteArray text;
    // The refusal comes behind everything that a login is set to.
    ASSERT_TRUE(waitFor([&] {
        text += trace.readAll();
        return text.contains("dbloginfree");
    }));
    EXPECT_FALSE(text.contains(details->password().toUtf8()));
    EXPECT_EQ(std::fflush(nullptr), 0); // returns while the trace's thread waits for text
}
