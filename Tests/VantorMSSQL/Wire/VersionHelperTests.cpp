#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNAssert.h"
#include "Implementations/MSSQLSystemDatabaseQueries.h"
#include "Implementations/MSSQLVersionHelper.h"
#include "Support/HostileServerBytes.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <thread>

using namespace WireTest;
using namespace HostileServerBytes;

namespace {

/// A sample server that says it is this one.
struct ServerWithBanner
{
    explicit ServerWithBanner(const char *banner)
        : server({.arguments = {"--version-banner", banner}})
        , details(settings(server.port()))
    {
    }

    SampleServerFixture server;
    std::shared_ptr<MSSQLDatabaseConnectionDetails> details;
    MSSQLVersionHelper helper;
};

} // namespace

TEST(VersionHelper, TellsTheServersBanner)
{
    ServerWithBanner server("Microsoft SQL Server 2019 (RTM) - 15.0.2000.5 (X64)");
    EXPECT_EQ(server.helper.versionForDBC(*server.details),
              QStringLiteral("Microsoft SQL Server 2019 (RTM) - 15.0.2000.5 (X64)"));
    EXPECT_FALSE(server.helper.isDBCAzure(*server.details));
    EXPECT_FALSE(server.helper.isSQL2000(*server.details));
}

TEST(VersionHelper, KnowsSqlServer2000)
{
    ServerWithBanner server("Microsoft SQL Server  2000 - 8.00.2039 (Intel X86)");
    EXPECT_TRUE(server.helper.isSQL2000(*server.details));
    EXPECT_FALSE(server.helper.isDBCAzure(*server.details));
}

TEST(VersionHelper, AzureIsNeverSqlServer2000)
{
    ServerWithBanner server("Microsoft SQL AZURE (RTM) - 12.0.2000.8");
    EXPECT_TRUE(server.helper.isDBCAzure(*server.details));
    EXPECT_FALSE(server.helper.isSQL2000(*server.details));
}

TEST(VersionHelper, AsksOncePerConnection)
{
    ServerWithBanner server("Microsoft SQL Server 2022");
    server.details->setConnectionId(QStringLiteral("saved"));
    EXPECT_EQ(server.helper.versionForDBC(*server.details), QStringLiteral("Microsoft SQL Server 2022"));
    server.server.kill();
    EXPECT_EQ(server.helper.versionForDBC(*server.details), QStringLiteral("Microsoft SQL Server 2022"));
    const auto renamed = settings(1);
    renamed->setConnectionId(QStringLiteral("saved"));
    EXPECT_EQ(server.helper.versionForDBC(*renamed), QStringLiteral("Microsoft SQL Server 2022"));
}

TEST(VersionHelper, ConnectionsThatWereNeverSavedShareByTheirDescription)
{
    ServerWithBanner server("Microsoft SQL Server 2022");
    server.helper.versionForDBC(*server.details);
    server.server.kill();
    const auto alike = std::static_pointer_cast<MSSQLDatabaseConnectionDetails>(server.details->copy());
    alike->setPassword(QStringLiteral("another"));
    EXPECT_EQ(server.helper.versionForDBC(*alike), QStringLiteral("Microsoft SQL Server 2022"));
}

TEST(VersionHelper, WhenTheServerCannotBeReachedTheVersionIsEmptyAndStaysSo)
{
    quint16 port = 0;
    {
        const HostileServer closed(HostileServer::Script{});
        port = closed.port();
    }
    const auto details = settings(port);
    MSSQLVersionHelper helper;
    EXPECT_EQ(helper.versionForDBC(*details), QStringLiteral(""));
    EXPECT_FALSE(helper.versionForDBC(*details).isNull());
    EXPECT_FALSE(helper.isSQL2000(*details));
}

TEST(VersionHelper, AServerThatReturnsNoRowsIsAskedOnce)
{
    const auto answer = [](const char *column) {
        return HostileServer::Script{
            HostileServer::expect(BatchPacket),
            HostileServer::send(
                packet(column ? HostileServerBytes::joined({textColumn(column), done()}) : done()))};
    };
    HostileServer::Script script = HostileServer::joined(HostileServer::acceptedLogin(), answer(nullptr));
    script = HostileServer::joined(script, answer("version"));
    script = HostileServer::joined(script, answer(nullptr)); // the reset on the way back to the pool
    const HostileServer server(script);
    const auto details = settings(server.port());
    details->setTdsVersion(8);
    details->setUseNTLMv2(false);
    MSSQLVersionHelper helper;
    EXPECT_EQ(helper.versionForDBC(*details), QStringLiteral(""));
    EXPECT_EQ(helper.versionForDBC(*details), QStringLiteral(""));
    EXPECT_EQ(server.connectionCount(), 1U);
    EXPECT_TRUE(server.failures().empty());
}

TEST(VersionHelper, ManyThreadsAskTheServerOnce)
{
    ServerWithBanner server("Microsoft SQL Server 2022");
    std::vector<std::thread> threads;
    std::atomic<int> right = 0;
    for (int number = 0; number < 16; ++number)
        threads.emplace_back([&] {
            right +=
                server.helper.versionForDBC(*server.details) == QStringLiteral("Microsoft SQL Server 2022");
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(right, 16);
}

TEST(SystemDatabaseQueries, GivesATextByItsTitle)
{
    const MSSQLSystemDatabaseQueries queries(*settings(1));
    const QString query = queries.queryByTitle(QStringLiteral("DatabaseTree_ServerVersion"));
    EXPECT_TRUE(query.contains(QStringLiteral("@@VERSION")));
    EXPECT_EQ(query, query.trimmed());
}

TEST(SystemDatabaseQueries, AnUnknownTitleIsAProgrammingError)
{
    const MSSQLSystemDatabaseQueries queries(*settings(1));
    try {
        queries.queryByTitle(QStringLiteral("NoSuchTitle"));
        FAIL();
    } catch (const KNAssertionFailure &failure) {
        EXPECT_EQ(failure.message(), QStringLiteral("Unable to receive query for: NoSuchTitle"));
        EXPECT_EQ(failure.sourcePath(), QStringLiteral("Implementations/MSSQLSystemDatabaseQueries"));
    }
}

TEST(SystemDatabaseQueries, AreReachedThroughTheSettings)
{
    const auto loader = settings(1)->queryLoader();
    EXPECT_FALSE(loader->queryByTitle(QStringLiteral("DatabaseTree_ServerVersion")).isEmpty());
}
