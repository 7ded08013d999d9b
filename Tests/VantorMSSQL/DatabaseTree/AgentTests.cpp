#include "UI/DatabaseTree/Agent/MSSQLDatabaseTreeEntryAgentJob.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryFederation.h"
#include "VantorMSSQL/DatabaseTree/TreeTest.h"

using namespace TreeTesting;

namespace {

class Agent : public TreeTest
{
protected:
    Agent()
    {
        KNUserDefaults::standardUserDefaults()->setObject(QStringLiteral("MSSQLAgentEnabled"), true);
        server->answer("IsSQLServerAgentAvailable", {{1}});
    }
};

class Federations : public TreeTest
{
protected:
    Federations()
        : TreeTest("Microsoft SQL Azure (RTM) - 12.0.2000.8")
    {
    }
};

} // namespace

TEST_F(Agent, HoldsTheJobs)
{
    const Ptr agent = entry({"SQL Server Agent"});
    const auto queries = server->titles();
    EXPECT_FALSE(load(agent));
    EXPECT_EQ(names(agent), list({"Jobs"}));
    EXPECT_EQ(server->titles(), queries);
    EXPECT_TRUE(agent->menu().items.empty());
    EXPECT_EQ(agent->image(), QStringLiteral("DatabaseTree-Folder"));
}

TEST_F(Agent, JobsAreLoadedThoughTheRequestReturnsNo)
{
    server->answer("List_AgentJobs", {{"6F9619FF-8B86-D011-B42D-00CF4FC964FF", "Backup"}, {"id", nullptr}});
    const Ptr jobs = entry({"SQL Server Agent", "Jobs"});
    EXPECT_FALSE(load(jobs));
    EXPECT_EQ(names(jobs), list({"Backup", ""}));
    EXPECT_FALSE(jobs->childEntries()->at(1)->displayName().isNull());
    EXPECT_FALSE(delegate->eventsOf(*jobs)[1].onMainThread);
    const auto job = std::dynamic_pointer_cast<MSSQLDatabaseTreeEntryAgentJob>(jobs->childEntries()->front());
    EXPECT_EQ(job->jobId().text(), QStringLiteral("6F9619FF-8B86-D011-B42D-00CF4FC964FF"));
    EXPECT_EQ(job->jobName(), QStringLiteral("Backup"));
    EXPECT_EQ(job->image(), QStringLiteral("DatabaseTree-AgentJob"));
    EXPECT_FALSE(job->canHaveChildren());
}

TEST_F(Agent, ARequestWhileJobsAreLoadedReturnsYes)
{
    const Ptr jobs = entry({"SQL Server Agent", "Jobs"});
    KNSemaphore mayAnswer(QStringLiteral("test"), 0);
    server->setDuringQuery([&](const QString &) { mayAnswer.wait(); });
    EXPECT_FALSE(jobs->loadEntriesAsync(false));
    EXPECT_TRUE(jobs->loadEntriesAsync(false));
    mayAnswer.signal();
    EXPECT_TRUE(settle());
}

TEST_F(Agent, JobsHaveTheirMenus)
{
    server->answer("List_AgentJobs", {{"id", "Backup"}});
    const Ptr jobs = entry({"SQL Server Agent", "Jobs"});
    EXPECT_EQ(jobs->menu().title, QStringLiteral("Root"));
    EXPECT_EQ(titles(jobs->menu()), list({"New job", "-", "Refresh"}));
    EXPECT_EQ(item(jobs->menu(), list({"New job"})).action, QStringLiteral("SQLAgentCreateJob:"));
    const Ptr job = find(jobs, list({"Backup"}));
    EXPECT_EQ(titles(job->menu()), list({"Start job", "Stop job"}));
    EXPECT_EQ(item(job->menu(), list({"Start job"})).action, QStringLiteral("startSQLAgentJob:"));
    EXPECT_EQ(item(job->menu(), list({"Stop job"})).action, QStringLiteral("stopSQLAgentJob:"));
    EXPECT_EQ(TreeTesting::entry(item(job->menu(), list({"Start job"}))), job);
    EXPECT_EQ(TreeTesting::entry(item(job->menu(), list({"Stop job"}))), job);
}

TEST_F(Agent, AFailureIsLoggedAndShown)
{
    server->fail("List_AgentJobs", Failure);
    const Ptr jobs = entry({"SQL Server Agent", "Jobs"});
    load(jobs);
    EXPECT_EQ(names(jobs), list({"No."}));
    EXPECT_TRUE(wasLogged("Error mssqsql.databaseTree.loadJobs 911: No."));
}

TEST_F(Federations, AreListedWithTheirDistributions)
{
    server->answer("List_Federations", {{1, "Customers", "cid", "bigint", "RANGE"}});
    const Ptr section = entry({"shop", "Federations"});
    EXPECT_TRUE(load(section));
    EXPECT_EQ(names(section), list({"Customers"}));
    EXPECT_FALSE(delegate->eventsOf(*section)[1].onMainThread);
    const auto federation =
        std::dynamic_pointer_cast<MSSQLDatabaseTreeEntryFederation>(section->childEntries()->front());
    EXPECT_EQ(federation->distributionName(), QStringLiteral("cid"));
    EXPECT_EQ(federation->distributionDataType(), QStringLiteral("bigint"));
    EXPECT_EQ(federation->distributionType(), QStringLiteral("RANGE"));
    EXPECT_EQ(federation->image(), QStringLiteral("DatabaseTree-Database"));
    EXPECT_EQ(titles(section->menu()), list({"Refresh"}));
    EXPECT_EQ(federation->menu().title, QStringLiteral("Test"));
    const KNMenuItem connect = item(federation->menu(), list({"Connect"}));
    EXPECT_EQ(connect.action, QStringLiteral("connectToFederatedMember:"));
    EXPECT_EQ(text(connect), QStringLiteral(""));
    EXPECT_FALSE(text(connect).isNull());
}

TEST_F(Federations, AFailureIsLoggedAndShown)
{
    server->fail("List_Federations", Failure);
    const Ptr section = entry({"shop", "Federations"});
    load(section);
    EXPECT_EQ(names(section), list({"No."}));
    EXPECT_TRUE(wasLogged("Error mssqsql.databaseTree.loadFederations 911: No."));
}

TEST_F(Agent, JobsWithHostileNamesAreShownAndReachNoStatement)
{
    const QStringList hostile =
        list({"a]; DROP TABLE dbo.victim; --", "it's", "@at", "#hash", "<img src=x>", "%@%s"});
    server->answer("List_AgentJobs", {{"1", "a]; DROP TABLE dbo.victim; --"},
                                      {"2", "it's"},
                                      {"3", "@at"},
                                      {"4", "#hash"},
                                      {"5", "<img src=x>"},
                                      {"6", "%@%s"}});
    const Ptr jobs = entry({"SQL Server Agent", "Jobs"});
    load(jobs);
    EXPECT_EQ(names(jobs), hostile);
    const auto titlesBefore = server->titles();
    for (const Ptr &job : *jobs->childEntries())
        EXPECT_EQ(titles(job->menu()), list({"Start job", "Stop job"}));
    EXPECT_TRUE(settle());
    EXPECT_EQ(server->titles(), titlesBefore);
}

TEST_F(Federations, WithHostileNamesAreShownAndReachNoStatement)
{
    server->answer("List_Federations", {{1, "a]; DROP TABLE dbo.victim; --", "c] = 1; --", "bigint", "RANGE"},
                                        {2, "@at", "#hash", "it's", "%@"}});
    const Ptr section = entry({"shop", "Federations"});
    load(section);
    EXPECT_EQ(names(section), list({"a]; DROP TABLE dbo.victim; --", "@at"}));
    const auto titlesBefore = server->titles();
    for (const Ptr &federation : *section->childEntries())
        EXPECT_EQ(text(item(federation->menu(), list({"Connect"}))), QStringLiteral(""));
    EXPECT_TRUE(settle());
    EXPECT_EQ(server->titles(), titlesBefore);
}
