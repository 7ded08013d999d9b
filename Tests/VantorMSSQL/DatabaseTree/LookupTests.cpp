#include "Catalog/MSSQLDefaultSchemaHelper.h"
#include "Catalog/MSSQLSystemDatabaseQueries.h"
#include "Catalog/MSSQLVersionHelper.h"
#include "VantorMSSQL/DatabaseTree/TreeTest.h"

#include <thread>

namespace {

class Lookups : public TreeTest
{
protected:
    static void onManyThreads(const std::function<void()> &work)
    {
        std::vector<std::thread> threads;
        for (int number = 0; number < 16; ++number)
            threads.emplace_back(work);
        for (std::thread &thread : threads)
            thread.join();
    }

    MSSQLVersionHelper versions;
    MSSQLDefaultSchemaHelper schemas;
};

} // namespace

TEST_F(Lookups, ManyThreadsAskForTheVersionOnce)
{
    std::atomic<int> right = 0;
    onManyThreads([&] {
        right += versions.versionForDBC(*server->settings()) == QStringLiteral("Microsoft SQL Server 2022");
    });
    EXPECT_EQ(right, 16);
    EXPECT_EQ(server->count("DatabaseTree_ServerVersion"), 1);
}

TEST_F(Lookups, ManyThreadsAskForTheDefaultSchemaOnce)
{
    server->answer("General_FindDefaultUserSchema", {{"sales"}});
    std::atomic<int> right = 0;
    onManyThreads([&] { right += schemas.schemaForDBC(*server->settings()) == QStringLiteral("sales"); });
    EXPECT_EQ(right, 16);
    EXPECT_EQ(server->count("General_FindDefaultUserSchema"), 1);
}

TEST_F(Lookups, TheVersionIsThatOfTheFirstRowThatHasOne)
{
    server->answer("DatabaseTree_ServerVersion", {{nullptr}, {""}, {"SQL Server 2019"}, {"another"}});
    EXPECT_EQ(versions.versionForDBC(*server->settings()), QStringLiteral("SQL Server 2019"));
}

TEST_F(Lookups, AVersionThatCannotBeFoundIsLoggedAndNotAskedForAgain)
{
    server->fail("DatabaseTree_ServerVersion", Failure);
    EXPECT_EQ(versions.versionForDBC(*server->settings()), QStringLiteral(""));
    EXPECT_EQ(versions.versionForDBC(*server->settings()), QStringLiteral(""));
    EXPECT_EQ(server->count("DatabaseTree_ServerVersion"), 1);
    EXPECT_TRUE(wasLogged("ERROR: Failed to find the version. Using blank."));
    EXPECT_TRUE(wasLogged("mssql.versionForDBC 911"));
    EXPECT_TRUE(wasLogged("mssql.versionForDBC.nilResult 911"));
}

TEST_F(Lookups, AzureIsNeverSqlServer2000ForAnyBanner)
{
    server->answer("DatabaseTree_ServerVersion", {{"Microsoft SQL AZURE - 8.00.2000 of 2000"}});
    EXPECT_TRUE(versions.isDBCAzure(*server->settings()));
    EXPECT_FALSE(versions.isSQL2000(*server->settings()));
}

TEST_F(Lookups, SqlServer2000NeedsBothMarks)
{
    const auto is2000 = [&](const char *banner) {
        const auto other = FakeCatalog::Server::create(banner);
        MSSQLVersionHelper helper;
        return helper.isSQL2000(*other->settings());
    };
    EXPECT_TRUE(is2000("SQL Server 2000 - 8.00.194"));
    EXPECT_FALSE(is2000("SQL Server 2000"));
    EXPECT_FALSE(is2000("SQL Server - 8.00.194"));
}

TEST_F(Lookups, AFailedLookupOfTheSchemaIsEmptyAndKept)
{
    server->fail("General_FindDefaultUserSchema", Failure);
    EXPECT_EQ(schemas.schemaForDBC(*server->settings()), QStringLiteral(""));
    EXPECT_EQ(schemas.schemaForDBC(*server->settings()), QStringLiteral(""));
    EXPECT_EQ(server->count("General_FindDefaultUserSchema"), 1);
    EXPECT_TRUE(wasLogged("ERROR: Failed to find the default schema for user. Using blank."));
    EXPECT_TRUE(wasLogged("mssql.schemaForDBC.nilResult 911"));
}

TEST_F(Lookups, AKnownSchemaIsGivenWithoutAskingTheServer)
{
    EXPECT_EQ(schemas.knownSchemaForDBC(*server->settings()), std::nullopt);
    EXPECT_EQ(server->count("General_FindDefaultUserSchema"), 0);
    schemas.schemaForDBC(*server->settings());
    EXPECT_EQ(schemas.knownSchemaForDBC(*server->settings()), QStringLiteral("dbo"));
    EXPECT_EQ(server->count("General_FindDefaultUserSchema"), 1);
}

TEST_F(Lookups, AVariantForSqlServer2000IsTakenAsItStandsAndOnlyThere)
{
    const auto old = FakeCatalog::Server::create("Microsoft SQL Server  2000 - 8.00.2039 (Intel X86)");
    const auto &texts = MSSQLSystemDatabaseQueries::allQueries();
    const QString title = QStringLiteral("List_KeysForTable");
    EXPECT_EQ(old->settings()->queryLoader()->queryByTitle(title),
              texts.value(QStringLiteral("List_KeysForTable_2000")));
    EXPECT_TRUE(texts.value(QStringLiteral("List_KeysForTable_2000")).endsWith(QLatin1Char('\n')));
    EXPECT_EQ(server->settings()->queryLoader()->queryByTitle(title), texts.value(title).trimmed());
}
