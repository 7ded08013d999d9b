#include "DatabaseTree/KNDatabaseNotificationTable.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabase.h"
#include "VantorMSSQL/DatabaseTree/TreeTest.h"

using namespace TreeTesting;

namespace {

class Search : public TreeTest
{
protected:
    explicit Search(const char *banner = "Microsoft SQL Server 2022")
        : TreeTest(banner)
    {
        server->answer("List_SearchableDatabaseEntries", {{"shop", "dbo", "Orders", "TABLE"},
                                                          {"shop", "dbo", "vw_orders", "VIEW"},
                                                          {"Sales", "sales", "Orders", "TABLE"},
                                                          {"Sales", "dbo", "Regions", "TABLE"}});
    }
};

class AzureSearch : public Search
{
protected:
    AzureSearch()
        : Search("Microsoft SQL Azure (RTM) - 12.0.2000.8")
    {
        server->answer("List_SearchableDatabaseEntries_Azure",
                       {{"dbo", "Orders", "TABLE"}, {"dbo", "fn", "FUNCTION"}});
    }
};

class OldSearch : public Search
{
protected:
    OldSearch()
        : Search("Microsoft SQL Server  2000 - 8.00.2039 (Intel X86)")
    {
        server->answer("General_ListDatabases_2000", {{"shop", 7}});
    }
};

} // namespace

TEST_F(Search, TheFeedRunsAfterEveryLoad)
{
    const auto node = root();
    load(node);
    EXPECT_EQ(server->count("List_SearchableDatabaseEntries"), 1);
    load(node, true);
    EXPECT_EQ(server->count("List_SearchableDatabaseEntries"), 2);
    EXPECT_TRUE(wasLogged("Want to filter 2 search results."));
    EXPECT_TRUE(wasLogged("MSSQL updateSearchEntries took: "));
    EXPECT_FALSE(wasLogged("updateSearchEntries.slow"));
}

TEST_F(Search, FindsObjectsInEveryDatabase)
{
    const auto node = root();
    load(node);
    const Ptr found = node->copyWithSearchResults(QStringLiteral("ORD"));
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->displayName(), node->displayName());
    EXPECT_EQ(found->details(), node->details());
    EXPECT_EQ(found->delegate(), delegate);
    EXPECT_EQ(names(found), list({"Sales", "shop"}));
    const Ptr shop = found->childEntries()->at(1);
    EXPECT_EQ(shop->parent(), found);
    EXPECT_EQ(names(shop), list({"Orders", "vw_orders"}));
    EXPECT_EQ(shop->childEntries()->at(0)->parent(), shop);
    EXPECT_EQ(shop->childEntries()->at(0)->databaseConnectionDetails()->database(), QStringLiteral("shop"));
}

TEST_F(Search, DatabasesWithoutAMatchAreLeftOut)
{
    const auto node = root();
    load(node);
    EXPECT_EQ(names(node->copyWithSearchResults(QStringLiteral("region"))), list({"Sales"}));
    EXPECT_EQ(node->copyWithSearchResults(QStringLiteral("nowhere")), nullptr);
}

TEST_F(Search, ARootThatWasNeverLoadedFindsNothing)
{
    EXPECT_EQ(root()->copyWithSearchResults(QStringLiteral("o")), nullptr);
}

TEST_F(Search, ACopyKeepsItsChildrenAndNeverLoads)
{
    const auto node = root();
    load(node);
    const Ptr found = node->copyWithSearchResults(QStringLiteral("ord"));
    const auto queries = server->titles();
    EXPECT_FALSE(load(found, true));
    EXPECT_FALSE(load(found->childEntries()->front(), true));
    EXPECT_EQ(names(found), list({"Sales", "shop"}));
    EXPECT_EQ(server->titles(), queries);
    EXPECT_EQ(std::dynamic_pointer_cast<MSSQLDatabaseTreeEntryServer>(found)->allDatabaseNames(),
              QStringList());
}

TEST_F(Search, ATableThatIsMadeAnywhereRunsTheFeedAgain)
{
    const auto node = root();
    load(node);
    KNDatabaseNotificationTable::postAdditionNotificationForTable(QStringLiteral("T"), QStringLiteral("dbo"),
                                                                  *server->settings());
    EXPECT_TRUE(settle());
    EXPECT_EQ(server->count("List_SearchableDatabaseEntries"), 2);
    KNDatabaseNotificationTable::postRemovalNotificationForTable(QStringLiteral("T"), QStringLiteral("dbo"),
                                                                 *server->settings());
    EXPECT_TRUE(settle());
    EXPECT_EQ(server->count("List_SearchableDatabaseEntries"), 3);
}

TEST_F(Search, ARequestWhileTheFeedRunsIsDropped)
{
    const auto node = root();
    load(node);
    KNSemaphore isRunning(QStringLiteral("test"), 0);
    KNSemaphore mayEnd(QStringLiteral("test"), 0);
    server->setDuringQuery([&](const QString &title) {
        if (title != QStringLiteral("List_SearchableDatabaseEntries"))
            return;
        isRunning.signal();
        mayEnd.wait();
    });
    const auto post = [&] {
        KNDatabaseNotificationTable::postAdditionNotificationForTable(
            QStringLiteral("T"), QStringLiteral("dbo"), *server->settings());
    };
    post();
    isRunning.wait();
    post();
    post();
    // The dropped ones end; the one that runs does not.
    EXPECT_TRUE(waitFor([&] { return server->count("List_SearchableDatabaseEntries") == 2; }));
    KNDispatch::waitUntilIdle(20);
    mayEnd.signal();
    EXPECT_TRUE(settle());
    EXPECT_EQ(server->count("List_SearchableDatabaseEntries"), 2);
}

TEST_F(Search, AFailureIsLoggedAndTheTreeStands)
{
    server->fail("List_SearchableDatabaseEntries", Failure);
    const auto node = root();
    load(node);
    EXPECT_EQ(names(node), list({"Sales", "shop"}));
    EXPECT_TRUE(wasLogged("Error executing query. No.."));
    EXPECT_TRUE(wasLogged("Error mssqsql.databaseTree.updateSearchEntries 911: No."));
}

TEST_F(Search, ReportsAFailedQuery)
{
    server->fail("List_SearchableDatabaseEntries", Failure);
    const auto node = root();
    load(node);
    KNError error;
    bool isSearched = false;
    KNDispatch::globalQueue([&] { isSearched = node->updateSearchEntries(&error); });
    EXPECT_TRUE(settle());
    EXPECT_TRUE(isSearched);
    EXPECT_EQ(error.domain(), QStringLiteral("mssqsql.databaseTree.updateSearchEntries"));
    EXPECT_EQ(error.localizedDescription(), QStringLiteral("No."));
    EXPECT_EQ(node->copyWithSearchResults(QStringLiteral("ord")), nullptr);
}

TEST_F(Search, WaitsForTheFeedThatRunsInsteadOfRunningASecondOne)
{
    KNSemaphore isRunning(QStringLiteral("test"), 0);
    KNSemaphore mayEnd(QStringLiteral("test"), 0);
    server->setDuringQuery([&](const QString &title) {
        if (title != QStringLiteral("List_SearchableDatabaseEntries"))
            return;
        isRunning.signal();
        mayEnd.wait();
    });
    const auto node = root();
    node->loadEntriesAsync(false);
    EXPECT_TRUE(waitFor([&] { return node->childEntries() != nullptr; }));
    isRunning.wait();
    std::atomic<bool> isOver = false;
    KNDispatch::globalQueue([&] {
        KNError error;
        EXPECT_TRUE(node->updateSearchEntries(&error));
        EXPECT_FALSE(error);
        isOver = true;
    });
    KNDispatch::waitUntilIdle(20);
    EXPECT_FALSE(isOver);
    mayEnd.signal();
    EXPECT_TRUE(waitFor([&] { return isOver.load(); }));
    EXPECT_TRUE(settle());
    EXPECT_EQ(server->count("List_SearchableDatabaseEntries"), 1);
    EXPECT_NE(node->copyWithSearchResults(QStringLiteral("ord")), nullptr);
}

TEST_F(Search, ShowsTheSchemaOfEachResult)
{
    server->answer("List_SearchableDatabaseEntries", {{"shop", "sales", "Orders", "TABLE"},
                                                      {"shop", "hr", "v_orders", "VIEW"},
                                                      {"shop", "dbo", "PlaceOrder", "PROCEDURE"},
                                                      {"shop", "dbo", "OrderTotal", "FUNCTION"}});
    const auto node = root();
    load(node);
    const Ptr found = node->copyWithSearchResults(QStringLiteral("order"));
    ASSERT_NE(found, nullptr);
    const Ptr shop = found->childEntries()->front();
    EXPECT_EQ(names(shop), list({"Orders", "v_orders", "PlaceOrder", "dbo.OrderTotal"}));
    QStringList details;
    for (const Ptr &entry : *shop->childEntries())
        details.append(entry->details());
    EXPECT_EQ(details, list({"sales", "hr", "dbo", ""}));
}

TEST_F(Search, AnEmptyServerIsNotSearched)
{
    server->answer("General_ListDatabases", {{"master", 1}});
    const auto node = root();
    load(node);
    KNError error;
    EXPECT_TRUE(node->updateSearchEntries(&error));
    EXPECT_FALSE(error);
    EXPECT_EQ(server->count("List_SearchableDatabaseEntries"), 0);
}

TEST_F(AzureSearch, QueriesEachDatabaseSeparately)
{
    const auto node = root();
    load(node);
    EXPECT_EQ(server->databases("List_SearchableDatabaseEntries_Azure"), list({"Sales", "shop"}));
    EXPECT_EQ(server->count("List_SearchableDatabaseEntries"), 0);
    const Ptr found = node->copyWithSearchResults(QStringLiteral("fn"));
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(names(found), list({"Sales", "shop"}));
    EXPECT_EQ(names(found->childEntries()->front()), list({"dbo.fn"}));
}

TEST_F(AzureSearch, ContinuesAfterFailedDatabase)
{
    server->answer(QStringLiteral("List_SearchableDatabaseEntries_Azure"),
                   [calls = std::make_shared<int>(0)](const QString &, KNError *error) {
                       if (++*calls == 1)
                           *error = Failure;
                       return FakeCatalog::Rows{{"dbo", "Orders", "TABLE"}};
                   });
    const auto node = root();
    load(node);
    EXPECT_EQ(names(node->copyWithSearchResults(QStringLiteral("ord"))), list({"shop"}));
    EXPECT_TRUE(wasLogged("Error executing query. No.."));
}

TEST_F(AzureSearch, NamesTheDatabasesThatWereNotSearched)
{
    const auto node = root();
    load(node);
    server->fail("List_SearchableDatabaseEntries_Azure", Failure);
    KNError error;
    KNDispatch::globalQueue([&] { node->updateSearchEntries(&error); });
    EXPECT_TRUE(settle());
    EXPECT_EQ(error.localizedDescription(), QStringLiteral("Not searched: Sales, shop. No."));
}

TEST_F(OldSearch, IsRefused)
{
    const auto node = root();
    load(node);
    EXPECT_EQ(names(node), list({"shop"}));
    KNError error;
    EXPECT_FALSE(node->updateSearchEntries(&error));
    EXPECT_EQ(error.domain(), QStringLiteral("mssql.updateSearchEntries.2000"));
    EXPECT_EQ(error.code(), 0);
    EXPECT_EQ(error.localizedDescription(), QStringLiteral("Search is not supported for SQL Server 2000."));
    EXPECT_EQ(server->count("List_SearchableDatabaseEntries"), 0);
}
