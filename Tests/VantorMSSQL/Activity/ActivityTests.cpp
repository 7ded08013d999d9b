#include "Activity/MSSQLServerActivity.h"
#include "Database/VantorDatabaseClient.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "DatabaseTree/KNDatabaseTreeContextHelper.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "Support/FakeCatalog.h"
#include "Support/PrintQt.h"
#include "Support/RecordingWorkspace.h"
#include "Support/SampleServerFixture.h"
#include "Support/WindowTesting.h"
#include "UI/Activity/KNActivityTab.h"
#include "UI/Activity/KNActivityView.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryServer.h"
#include "UI/MSSQLUserInterface.h"

#include <algorithm>

namespace {

std::shared_ptr<MSSQLDatabaseConnectionDetails> activitySettings(const SampleServerFixture &server)
{
    const auto details = std::make_shared<MSSQLDatabaseConnectionDetails>();
    details->setHost(QStringLiteral("127.0.0.1,%1").arg(server.port()));
    details->setUsername(QString::fromLatin1(SampleServerFixture::User));
    details->setPassword(QString::fromLatin1(SampleServerFixture::Password));
    details->setDatabase(QStringLiteral("shop"));
    details->setConnectionId(QStringLiteral("activity-tests-%1").arg(server.port()));
    return details;
}

/// Reads the sessions of a server while another client is connected.
void expectTwoSessions(const SampleServerFixture &server)
{
    const auto details = activitySettings(server);
    const auto other = details->createNewClient();
    KNError error;
    ASSERT_TRUE(other->connect(&error)) << error.localizedDescription().toStdString();
    const auto id = other->executeQuery(QStringLiteral("SELECT @@SPID"), &error);
    ASSERT_TRUE(id && id->next());
    const auto otherId = static_cast<int>(id->objectForColumnIndex(0).toInt64());
    const KNActivitySnapshot snapshot = MSSQLServerActivity(details).read(&error);
    EXPECT_FALSE(error) << error.localizedDescription().toStdString();
    EXPECT_TRUE(snapshot.remark.isNull()) << snapshot.remark.toStdString();
    const auto own = std::count_if(snapshot.sessions.begin(), snapshot.sessions.end(),
                                   [](const KNActivitySession &session) { return session.isOwn; });
    EXPECT_EQ(own, 1);
    const auto found = std::find_if(snapshot.sessions.begin(), snapshot.sessions.end(),
                                    [&](const KNActivitySession &session) { return session.id == otherId; });
    ASSERT_TRUE(found != snapshot.sessions.end());
    EXPECT_FALSE(found->isOwn);
    EXPECT_EQ(found->login, QString::fromLatin1(SampleServerFixture::User));
    EXPECT_EQ(found->database, QStringLiteral("shop"));
    EXPECT_EQ(found->status, QStringLiteral("sleeping"));
    EXPECT_TRUE(found->command.isEmpty());
    EXPECT_GE(found->milliseconds, 0);
}

} // namespace

TEST(Activity, ReadsTheSessionsOfAServer)
{
    expectTwoSessions(SampleServerFixture::shared());
}

TEST(Activity, ReadsTheSessionsOfAnOldServer)
{
    const SampleServerFixture server(SampleServerFixture::Options{{"--edition", "2000"}, {}});
    expectTwoSessions(server);
}

TEST(Activity, SaysWhichPermissionIsMissing)
{
    const auto server = FakeCatalog::Server::create("Microsoft SQL Server 2022");
    server->answer("List_Sessions",
                   {{51, 0, "running", "ann", "pc", "app", "shop", nullptr, nullptr, 0, 0, nullptr, 1,
                     "VIEW SERVER STATE permission was denied on object 'server'."}});
    KNError error;
    const KNActivitySnapshot snapshot = MSSQLServerActivity(server->settings()).read(&error);
    EXPECT_FALSE(error);
    ASSERT_EQ(snapshot.sessions.size(), 1);
    EXPECT_TRUE(snapshot.sessions[0].isOwn);
    EXPECT_TRUE(
        snapshot.remark.startsWith(QStringLiteral("Only your own session is shown. To see the others, ")));
    EXPECT_TRUE(snapshot.remark.endsWith(
        QStringLiteral("The server says: VIEW SERVER STATE permission was denied on object 'server'.")));
}

TEST(Activity, ShowsASessionWithSeveralRequestsOnce)
{
    const auto server = FakeCatalog::Server::create("Microsoft SQL Server 2022");
    server->answer("List_Sessions", {{51, 50, "suspended", "ann", "pc", "app", "shop", "UPDATE", "LCK_M_X",
                                      1500, 1, " UPDATE t ", 0, nullptr},
                                     {51, 0, "running", "ann", "pc", "app", "shop", "SELECT", nullptr, 3, 1,
                                      "SELECT 1", 0, nullptr}});
    KNError error;
    const KNActivitySnapshot snapshot = MSSQLServerActivity(server->settings()).read(&error);
    ASSERT_EQ(snapshot.sessions.size(), 1);
    EXPECT_EQ(snapshot.sessions[0].blockedBy, 50);
    EXPECT_EQ(snapshot.sessions[0].waitType, QStringLiteral("LCK_M_X"));
    EXPECT_EQ(snapshot.sessions[0].milliseconds, 1500);
    EXPECT_EQ(snapshot.sessions[0].openTransactions, 1);
    EXPECT_EQ(snapshot.sessions[0].statement, QStringLiteral("UPDATE t"));
}

TEST(Activity, IsOpenedOnceFromTheTree)
{
    RecordingWorkspace workspace(*activitySettings(SampleServerFixture::shared()));
    const auto helper = std::make_shared<KNDatabaseTreeContextHelper>();
    MSSQLUserInterface().addTreeActions(*helper, workspace);
    const auto root = MSSQLDatabaseTreeEntryServer::create();
    root->setContextHelper(helper);
    root->setDatabaseConnectionDetails(workspace.databaseConnectionDetails().get());
    const auto perform = [&] {
        helper->performAction(QStringLiteral("showActivity:"), KNDatabaseTreeEntry::Ptr(root));
    };
    perform();
    ASSERT_EQ(workspace.documents().size(), 1);
    auto *const tab = qobject_cast<KNActivityTab *>(workspace.documents().first());
    ASSERT_TRUE(tab);
    EXPECT_EQ(tab->title(), QStringLiteral("Activity"));
    tab->show();
    EXPECT_TRUE(WindowTesting::waitFor([&] { return tab->view()->topLevelItemCount() > 0; }))
        << tab->remark().toStdString();
    perform();
    EXPECT_EQ(workspace.documents().size(), 1);
    EXPECT_EQ(workspace.shown, tab);
    tab->hide();
    EXPECT_TRUE(WindowTesting::settle());
}
