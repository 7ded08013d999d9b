#include "DatabaseTree/KNDatabaseTreeErrorEntry.h"
#include "Foundation/KNAssert.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabase.h"
#include "VantorMSSQL/DatabaseTree/TreeTest.h"

using namespace TreeTesting;

namespace {

class ServerNode : public TreeTest
{
};

class AzureServerNode : public TreeTest
{
protected:
    AzureServerNode()
        : TreeTest("Microsoft SQL Azure (RTM) - 12.0.2000.8")
    {
    }
};

class OldServerNode : public TreeTest
{
protected:
    OldServerNode()
        : TreeTest("Microsoft SQL Server  2000 - 8.00.2039 (Intel X86)")
    {
        server->answer("General_ListDatabases_2000", {{"master", 1}, {"shop", 7}});
    }
};

void enableAgent()
{
    KNUserDefaults::standardUserDefaults()->setObject(QStringLiteral("MSSQLAgentEnabled"), true);
}

const MSSQLDatabaseTreeEntryDatabase &database(const Ptr &root, std::size_t index)
{
    return dynamic_cast<const MSSQLDatabaseTreeEntryDatabase &>(*root->childEntries()->at(index));
}

} // namespace

TEST_F(ServerNode, ListsTheUserDatabasesInTheOrderOfTheQuery)
{
    const auto node = root();
    EXPECT_EQ(node->details(), QStringLiteral("Loading version"));
    EXPECT_TRUE(load(node));
    EXPECT_EQ(names(node), list({"Sales", "shop"}));
    EXPECT_EQ(node->details(), QStringLiteral("Microsoft SQL Server 2022"));
    EXPECT_EQ(database(node, 1).databaseConnectionDetails()->database(), QStringLiteral("shop"));
    EXPECT_EQ(database(node, 1).databaseName(), QStringLiteral("shop"));
    EXPECT_TRUE(database(node, 1).canHaveChildren());
    EXPECT_EQ(database(node, 1).parent(), node);
    EXPECT_EQ(database(node, 1).delegate(), delegate);
    EXPECT_TRUE(delegate->eventsOf(*node)[1].onMainThread);
}

TEST_F(ServerNode, AServerWithSystemDatabasesOnlyShowsAnEmptyTree)
{
    server->answer("General_ListDatabases", {{"master", 1}, {"tempdb", 2}, {"model", 3}, {"msdb", 4}});
    const auto node = root();
    load(node);
    EXPECT_EQ(names(node), QStringList());
    EXPECT_EQ(node->allDatabaseNames(), QStringList());
}

TEST_F(ServerNode, SystemDatabasesAreKnownByTheirExactNames)
{
    server->answer("General_ListDatabases", {{"Master", 5}, {nullptr, 6}, {"", 7}, {"MSDB", 8}});
    const auto node = root();
    load(node);
    EXPECT_EQ(names(node), list({"Master", "MSDB"}));
}

TEST_F(ServerNode, AConnectionWithADatabaseShowsOnlyThisOneInAnyCase)
{
    const auto settings = server->settings();
    settings->setDatabase(QStringLiteral("SALES"));
    const auto node = root(settings);
    load(node);
    EXPECT_EQ(names(node), list({"Sales"}));
    EXPECT_EQ(node->allDatabaseNames(), list({"Sales", "shop"}));
    EXPECT_EQ(database(node, 0).databaseConnectionDetails()->database(), QStringLiteral("Sales"));
}

TEST_F(ServerNode, AllDatabaseNamesAreSortedWithoutRegardToCase)
{
    server->answer("General_ListDatabases", {{"zoo", 5}, {"Beta", 6}, {"alpha", 7}});
    const auto node = root();
    EXPECT_EQ(node->allDatabaseNames(), QStringList());
    load(node);
    EXPECT_EQ(node->allDatabaseNames(), list({"alpha", "Beta", "zoo"}));
}

TEST_F(ServerNode, AFederatedConnectionShowsUserDatabasesUnderItsOwnDatabase)
{
    server->answer("General_ListDatabases", {{"low", 4}, {"member", 5}, {"other", 6}, {"none", nullptr}});
    const auto settings = server->settings();
    settings->setFederationStatement(QStringLiteral("USE FEDERATION F1 (id = 1) WITH RESET"));
    settings->setDatabase(QStringLiteral("Orders"));
    const auto node = root(settings);
    load(node);
    EXPECT_EQ(names(node), list({"member", "other"}));
    for (std::size_t index = 0; index < 2; ++index) {
        EXPECT_EQ(database(node, index).databaseName(), QStringLiteral("Orders"));
        EXPECT_EQ(database(node, index).databaseConnectionDetails()->database(), QStringLiteral("Orders"));
    }
    EXPECT_EQ(node->allDatabaseNames(), list({"low", "member", "none", "other"}));
}

TEST_F(ServerNode, TwoQuickRequestsRunOneQuery)
{
    const auto node = root();
    KNSemaphore mayAnswer(QStringLiteral("test"), 0);
    server->setDuringQuery([&](const QString &title) {
        if (title == QStringLiteral("General_ListDatabases"))
            mayAnswer.wait();
    });
    EXPECT_TRUE(node->loadEntriesAsync(false));
    EXPECT_TRUE(node->loadEntriesAsync(false));
    mayAnswer.signal();
    EXPECT_TRUE(settle());
    EXPECT_EQ(server->count("General_ListDatabases"), 1);
}

TEST_F(ServerNode, LoadsAgainOnlyWhenForced)
{
    const auto node = root();
    load(node);
    EXPECT_FALSE(load(node));
    EXPECT_TRUE(load(node, true));
    EXPECT_EQ(server->count("General_ListDatabases"), 2);
}

TEST_F(ServerNode, AFailureOfAnEmptyRootIsShownAndReported)
{
    server->fail("General_ListDatabases", Failure);
    const auto node = root();
    load(node);
    EXPECT_EQ(names(node), list({"No."}));
    EXPECT_EQ(node->allDatabaseNames(), QStringList());
    EXPECT_TRUE(wasLogged("Error mssqsql.databaseTree.loadServer 911: No."));
    ASSERT_EQ(delegate->failures().size(), 1U);
    EXPECT_EQ(delegate->failures()[0].localizedDescription(), QStringLiteral("No."));
    EXPECT_EQ(delegate->failures()[0].domain(), QStringLiteral("mssqsql.databaseTree.loadServer"));
    server->answer("General_ListDatabases", {{"shop", 5}});
    load(node, true);
    EXPECT_EQ(names(node), list({"shop"}));
}

TEST_F(ServerNode, FailedRefreshReplacesChildren)
{
    const auto node = root();
    load(node);
    server->fail("General_ListDatabases", Failure);
    load(node, true);
    EXPECT_EQ(names(node), QStringList());
    EXPECT_EQ(delegate->failures().size(), 1U) << "the tree itself does not show why it is empty";
    load(node, true);
    EXPECT_EQ(names(node), list({"No."}));
}

TEST_F(ServerNode, ExpectedLoginFailuresAreNotReported)
{
    server->fail("General_ListDatabases", KNError(QStringLiteral("SQLClient"), 0,
                                                  QStringLiteral("The login is from an untrusted domain.")));
    const auto node = root();
    load(node);
    EXPECT_EQ(names(node), list({"The login is from an untrusted domain."}));
    EXPECT_TRUE(delegate->failures().empty());
    EXPECT_FALSE(wasLogged("untrusted domain"));
}

TEST_F(ServerNode, FailuresOfListsBelowAreOnlyLogged)
{
    server->fail("List_ViewsInDatabase_NonSystem", Failure);
    const auto views = entry({"shop", "Views"});
    load(views, true);
    EXPECT_TRUE(wasLogged("911: No."));
    EXPECT_TRUE(delegate->failures().empty());
}

TEST_F(ServerNode, AConnectionThatIsLostOnceIsTriedAgain)
{
    server->loseConnection("General_ListDatabases");
    const auto node = root();
    load(node);
    EXPECT_EQ(names(node), list({"Sales", "shop"}));
    EXPECT_EQ(server->count("General_ListDatabases"), 2);
}

TEST_F(ServerNode, WithoutALoginTheErrorIsShown)
{
    server->refusesLogins = true;
    const auto node = root();
    load(node);
    EXPECT_EQ(names(node), list({"refused"}));
}

TEST_F(ServerNode, SettingsMayNotBeNil)
{
    try {
        MSSQLDatabaseTreeEntryServer().setDatabaseConnectionDetails(nullptr);
        FAIL();
    } catch (const KNAssertionFailure &failure) {
        EXPECT_EQ(failure.message(), QStringLiteral("Cannot set database connection details to be nil."));
        EXPECT_EQ(failure.sourcePath(), QStringLiteral("UI/DatabaseTree/MSSQLDatabaseTreeEntryServer"));
    }
}

TEST_F(ServerNode, IsNamedAfterItsFederationItsAliasOrItsHost)
{
    const auto name = [&](const char *alias, const QString &federation) {
        const auto settings = server->settings();
        settings->setHost(QStringLiteral("srv"));
        settings->setAlias(QString::fromLatin1(alias));
        settings->setFederationName(federation);
        return root(settings)->displayName();
    };
    EXPECT_EQ(name("Prod", QStringLiteral("F1")), QStringLiteral("srv: F1"));
    EXPECT_EQ(name("Prod", QString()), QStringLiteral("Prod (sa)"));
    EXPECT_EQ(name("", QString()), QStringLiteral("srv (sa)"));
    EXPECT_EQ(name("Prod", QStringLiteral("")), QStringLiteral("srv: "));
}

TEST_F(ServerNode, AFederatedConnectionHasAHigherRow)
{
    const auto settings = server->settings();
    EXPECT_EQ(root(settings)->tableCellHeight(), 34);
    EXPECT_EQ(root(settings)->tableCellIdentifier(), QStringLiteral("HeaderCell"));
    settings->setFederationName(QStringLiteral(""));
    EXPECT_EQ(root(settings)->tableCellHeight(), 34);
    settings->setFederationName(QStringLiteral("F1"));
    EXPECT_EQ(root(settings)->tableCellHeight(), 49);
    EXPECT_EQ(root(settings)->tableCellIdentifier(), QStringLiteral("HeaderCellFederated"));
    EXPECT_EQ(root(settings)->image(), QStringLiteral("DatabaseTree-Server-MSSQL"));
}

TEST_F(ServerNode, WithoutTheAgentSwitchedOnItIsNotAskedFor)
{
    server->answer("IsSQLServerAgentAvailable", {{1}});
    const auto node = root();
    load(node);
    EXPECT_EQ(names(node), list({"Sales", "shop"}));
    EXPECT_EQ(server->count("IsSQLServerAgentAvailable"), 0);
    EXPECT_FALSE(item(node->menu(), list({"Enable Agent (beta)"})).isChecked);
}

TEST_F(ServerNode, TheAgentComesAfterAllDatabases)
{
    enableAgent();
    server->answer("IsSQLServerAgentAvailable", {{1}});
    const auto node = root();
    load(node);
    EXPECT_EQ(names(node), list({"Sales", "shop", "SQL Server Agent"}));
    EXPECT_TRUE(item(node->menu(), list({"Enable Agent (beta)"})).isChecked);
}

TEST_F(ServerNode, AnAgentThatIsNotAvailableIsNotShown)
{
    enableAgent();
    server->answer("IsSQLServerAgentAvailable", {{0}});
    const auto node = root();
    load(node);
    EXPECT_EQ(names(node), list({"Sales", "shop"}));
}

TEST_F(ServerNode, AnAgentThatAnswersWithBytesIsNotShown)
{
    enableAgent();
    server->answer("IsSQLServerAgentAvailable", {{QByteArray("\1")}});
    const auto node = root();
    load(node);
    EXPECT_EQ(names(node), list({"Sales", "shop"}));
}

TEST_F(ServerNode, WhenTheAgentCheckFailsTheDatabasesStand)
{
    enableAgent();
    server->fail("IsSQLServerAgentAvailable", Failure);
    const auto node = root();
    load(node);
    EXPECT_EQ(names(node), list({"Sales", "shop"}));
    EXPECT_TRUE(wasLogged("911: No."));
}

TEST_F(AzureServerNode, HasNoAgent)
{
    enableAgent();
    server->answer("IsSQLServerAgentAvailable", {{1}});
    const auto node = root();
    load(node);
    EXPECT_EQ(names(node), list({"Sales", "shop"}));
    EXPECT_EQ(server->count("IsSQLServerAgentAvailable"), 0);
}

TEST_F(OldServerNode, HasNoAgentAndIsAskedInItsOwnWords)
{
    enableAgent();
    server->answer("IsSQLServerAgentAvailable_2000", {{1}});
    const auto node = root();
    load(node);
    EXPECT_EQ(names(node), list({"shop"}));
    EXPECT_EQ(server->count("General_ListDatabases_2000"), 1);
    EXPECT_EQ(server->count("IsSQLServerAgentAvailable_2000"), 0);
}

TEST_F(ServerNode, HasTheMenuOfARoot)
{
    const auto node = root();
    const KNMenu menu = node->menu();
    EXPECT_EQ(menu.title, QStringLiteral("Root"));
    EXPECT_EQ(titles(menu),
              list({"New query", "-", "Connect", "Disconnect", "-", "Enable Agent (beta)", "-", "Refresh"}));
    EXPECT_EQ(item(node->contextMenu(), list({"Activity"})).action, QStringLiteral("showActivity:"));
    EXPECT_EQ(item(menu, list({"Connect"})).action, QStringLiteral("openConnectionDialog:"));
    EXPECT_EQ(item(menu, list({"Enable Agent (beta)"})).action, QStringLiteral("toggleAgentBeta:"));
}
