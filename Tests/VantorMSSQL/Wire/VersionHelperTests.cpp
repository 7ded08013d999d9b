#include "Catalog/MSSQLSystemDatabaseQueries.h"
#include "Catalog/MSSQLVersionHelper.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNAssert.h"
#include "Support/HostileServerBytes.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <thread>

using namespace WireTest;
using namespace HostileServerBytes;

namespace {

/// A sample server that says it is this one.
struct ServerWithBanner
{
    explicit ServerWithBanner(const char *banner, const char *edition = "2022")
        : server({.arguments = {"--version-banner", banner, "--edition", edition}})
        , details(settings(server.port()))
    {
    }

    SampleServerFixture server;
    std::shared_ptr<MSSQLDatabaseConnectionDetails> details;
    MSSQLVersionHelper helper;
};

} // namespace

TEST(VersionHelper, ReturnsServerBanner)
{
    ServerWithBanner server("Microsoft SQL Server 2019 (RTM) - 15.0.2000.5 (X64)");
    EXPECT_EQ(server.helper.versionForDBC(*server.details),
              QStringLiteral("Microsoft SQL Server 2019 (RTM) - 15.0.2000.5 (X64)"));
    EXPECT_FALSE(server.helper.isDBCAzure(*server.details));
    EXPECT_FALSE(server.helper.isSQL2000(*server.details));
}

TEST(VersionHelper, DetectsSqlServer2000)
{
    ServerWithBanner server("Microsoft SQL Server  2000 - 8.00.2039 (Intel X86)");
    EXPECT_TRUE(server.helper.isSQL2000(*server.details));
    EXPECT_FALSE(server.helper.isDBCAzure(*server.details));
}

TEST(VersionHelper, AzureIsNeverSqlServer2000)
{
    ServerWithBanner server("Microsoft SQL AZURE (RTM) - 12.0.2000.8.1", "azure");
    EXPECT_EQ(server.helper.versionForDBC(*server.details),
              QStringLiteral("Microsoft SQL AZURE (RTM) - 12.0.2000.8.1"));
    EXPECT_TRUE(server.helper.isDBCAzure(*server.details));
    EXPECT_FALSE(server.helper.isSQL2000(*server.details));
}

TEST(VersionHelper, AServerOnAnAzureEditionOfWindowsIsNotAzure)
{
    ServerWithBanner server(
        "Microsoft SQL Server 2022 (RTM) - 16.0.1000.6 (X64)\n\tDeveloper Edition on Windows "
        "Server 2022 Datacenter: Azure Edition 10.0 <X64>");
    EXPECT_EQ(server.helper.versionForDBC(*server.details),
              QStringLiteral("Microsoft SQL Server 2022 (RTM) - 16.0.1000.6 (X64)"));
    EXPECT_FALSE(server.helper.isDBCAzure(*server.details));
    EXPECT_FALSE(server.helper.isSQL2000(*server.details));
}

TEST(VersionHelper, DetectsAzureByEngineEdition)
{
    struct Kind
    {
        int engineEdition;
        const char *banner;
        const char *productVersion;
        const char *expected;
    };
    const auto &client = connectedClient(settings(SampleServerFixture::shared().port()));
    for (const Kind &kind : {Kind{5, "Microsoft SQL Azure (RTM) - 12.0.2000.8", "12.0.2000.8",
                                  "Microsoft SQL Azure (RTM) - 12.0.2000.8"},
                             Kind{5, "Some other banner", "12.0", "Microsoft SQL Azure - Some other banner"},
                             Kind{11, "Microsoft Azure SQL Synapse", "12.0", "Microsoft Azure SQL Synapse"},
                             Kind{8, "Microsoft SQL Azure (RTM) - 12.0.2000.8. (X64)", "12.0.2000.8",
                                  "Microsoft SQL Managed Instance (RTM) - 12.0.2000.8 . (X64)"},
                             Kind{9, "Microsoft Azure SQL Edge (RTM) - 15.0.2000.1574", "15.0.2000.1574",
                                  "Microsoft  SQL Edge (RTM) - 15.0.2000.1574"},
                             Kind{3, "Microsoft SQL Server 2019 - 15.0.2000.5\nUbuntu 18.04", "15.0.2000.5",
                                  "Microsoft SQL Server 2019 - 15.0.2000.5"},
                             Kind{2, "Microsoft SQL Server  2000 - 8.00.194", "8.00.194",
                                  "Microsoft SQL Server  2000 - 8.00.194"},
                             Kind{2, "Microsoft SQL Server 2017 - 14.0.1000\nWindows 8.1", "14.0.1000",
                                  "Microsoft SQL Server 2017 - 14.0.1000\nWindows 8.1"}}) {
        QString query = MSSQLSystemDatabaseQueries(*settings(1))
                            .queryByTitle(QStringLiteral("DatabaseTree_ServerVersion"));
        query.replace(QStringLiteral("@@VERSION"), QStringLiteral("N'%1'").arg(QLatin1String(kind.banner)));
        query.replace(QStringLiteral("SERVERPROPERTY('EngineEdition')"), QString::number(kind.engineEdition));
        query.replace(QStringLiteral("SERVERPROPERTY('ProductVersion')"),
                      QStringLiteral("N'%1'").arg(QLatin1String(kind.productVersion)));
        EXPECT_EQ(scalar(*client, query).text(), QString::fromLatin1(kind.expected)) << kind.engineEdition;
    }
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
    EXPECT_EQ(server.connectionCount(), 2U); // the look whether it answers, and the login
    EXPECT_TRUE(server.failures().empty());
}

TEST(SystemDatabaseQueries, ReturnsTextByTitle)
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
        ADD_FAILURE() << "no failure";
    } catch (const KNAssertionFailure &failure) {
        EXPECT_EQ(failure.message(), QStringLiteral("Unable to receive query for: NoSuchTitle"));
        EXPECT_EQ(failure.sourcePath(), QStringLiteral("Implementations/MSSQLSystemDatabaseQueries"));
    }
}

TEST(SystemDatabaseQueries, ATitleForSQLServer2000OnlyIsUnknownToOtherVersions)
{
    const QHash<QString, QString> queries = {{QStringLiteral("Old_2000"), QStringLiteral(" SELECT 1 ")}};
    EXPECT_EQ(MSSQLSystemDatabaseQueries::queryIn(queries, QStringLiteral("Old"), [] { return true; }),
              QStringLiteral(" SELECT 1 "));
    try {
        MSSQLSystemDatabaseQueries::queryIn(queries, QStringLiteral("Old"), [] { return false; });
        ADD_FAILURE() << "no failure";
    } catch (const KNAssertionFailure &failure) {
        EXPECT_EQ(failure.message(), QStringLiteral("Unable to receive query for: Old"));
    }
}

TEST(SystemDatabaseQueries, AreReachedThroughTheSettings)
{
    const auto loader = settings(1)->queryLoader();
    EXPECT_FALSE(loader->queryByTitle(QStringLiteral("DatabaseTree_ServerVersion")).isEmpty());
}
