#include "Desktop/Query/MessagesView.h"
#include "Desktop/Query/QueryTab.h"
#include "Support/HostileServerRelay.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/WindowTesting.h"
#include "UI/Dialogs/KNCautionBar.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNResultSection.h"
#include "UI/Results/KNResultsPane.h"
#include "Vantor/Desktop/DesktopTesting.h"

using WindowTesting::waitFor;

namespace {

/// A tab whose server is killed and started again on the same port, as after a restart or a change of the
/// network.
class LostConnection : public testing::Test
{
protected:
    ~LostConnection() override
    {
        tab.reset();
        EXPECT_TRUE(WindowTesting::settle());
    }
    void run(const char *text)
    {
        tab->setText(QString::fromUtf8(text));
        tab->run();
        ASSERT_TRUE(waitFor([&] { return !tab->isRunning() && tab->messages()->isComplete(); }));
    }
    void startServerAgain()
    {
        const std::uint16_t port = server->port();
        server = std::make_unique<SampleServerFixture>(
            SampleServerFixture::Options{{"--port", std::to_string(port)}, {}});
    }
    void restartServer()
    {
        server->kill();
        startServerAgain();
    }
    /// A tab whose connection leads through a relay.
    void connectThrough(const HostileServerRelay &relay)
    {
        const VantorDBCPtr details = DesktopTesting::settingsFor(*server, QStringLiteral("shop"));
        details->setHost(QStringLiteral("127.0.0.1,%1").arg(relay.port()));
        tab = std::make_unique<QueryTab>(*details);
    }
    /// The text of the line that reports a loss; empty while there is none.
    QString reported() const
    {
        const auto *const bar = tab->findChild<KNCautionBar *>(QString(), Qt::FindDirectChildrenOnly);
        return bar->isHidden() ? QString() : bar->text();
    }
    bool waitForReport() const
    {
        return waitFor([this] { return !reported().isEmpty(); });
    }
    QString shown(int column) const
    {
        return tab->resultsPane()->section(0)->model().index(0, column).data().toString();
    }
    std::string messages() const { return tab->messages()->toPlainText().toStdString(); }

    RecordingAlerts &alerts = RecordingAlerts::install();
    std::unique_ptr<SampleServerFixture> server = std::make_unique<SampleServerFixture>();
    std::unique_ptr<QueryTab> tab =
        std::make_unique<QueryTab>(*DesktopTesting::settingsFor(*server, QStringLiteral("shop")));
};

} // namespace

TEST_F(LostConnection, IsReplacedWithItsDatabaseAndOptions)
{
    run("USE library");
    run("SET XACT_ABORT ON SET TEXTSIZE 12345 SET DATEFIRST 3");
    restartServer();
    run("SELECT DB_NAME(), @@OPTIONS & 16384, @@TEXTSIZE, @@OPTIONS & 256");
    EXPECT_TRUE(alerts.questions.empty());
    EXPECT_EQ(tab->messages()->errorCount(), 0) << messages();
    EXPECT_EQ(shown(0), QStringLiteral("library"));
    EXPECT_EQ(shown(1), QStringLiteral("16384"));
    EXPECT_EQ(shown(2), QStringLiteral("12345"));
    EXPECT_NE(
        messages().find("The connection was lost. A new one was opened in the database \"library\", with the "
                        "SET options of the old one."),
        std::string::npos)
        << messages();
    run("SELECT 1");
    EXPECT_EQ(messages().find("The connection was lost."), std::string::npos) << "said again";
    restartServer();
    run("SELECT DB_NAME(), @@OPTIONS & 16384");
    EXPECT_EQ(shown(1), QStringLiteral("16384")) << "lost with the second connection";
}

TEST_F(LostConnection, KeepsTheRowCountBetweenRunsOnceOptionsAreSet)
{
    run("SET XACT_ABORT ON");
    run("SELECT TOP 3 * FROM Customers");
    run("SELECT @@ROWCOUNT");
    EXPECT_EQ(shown(0), QStringLiteral("3"));
}

TEST_F(LostConnection, AsksWhenOptionsAreGoneThatCannotBeRestored)
{
    run("SET ROWCOUNT 1");
    restartServer();
    run("SELECT 1");
    ASSERT_EQ(alerts.questions.size(), 1U);
    EXPECT_EQ(alerts.questions[0].title, QStringLiteral("The session was lost: its SET options are gone."));
}

TEST_F(LostConnection, SaysThatTemporaryTablesAreGoneAndRestoresTheRest)
{
    run("SET XACT_ABORT ON CREATE TABLE #mine (a int)");
    restartServer();
    run("SELECT @@OPTIONS & 16384");
    ASSERT_EQ(alerts.questions.size(), 1U);
    EXPECT_EQ(alerts.questions[0].title,
              QStringLiteral("The session was lost: its temporary tables are gone."));
    alerts.pending[0](1);
    ASSERT_TRUE(waitFor([&] { return !tab->isRunning() && tab->messages()->isComplete(); }));
    EXPECT_EQ(shown(0), QStringLiteral("16384"));
}

TEST_F(LostConnection, IsTriedAgainWhileTheServerIsAway)
{
    run("SET XACT_ABORT ON");
    const std::uint16_t port = server->port();
    server->kill();
    run("SELECT @@OPTIONS & 16384");
    EXPECT_EQ(tab->messages()->errorCount(), 1);
    server = std::make_unique<SampleServerFixture>(
        SampleServerFixture::Options{{"--port", std::to_string(port)}, {}});
    run("SELECT @@OPTIONS & 16384");
    EXPECT_EQ(tab->messages()->errorCount(), 0) << messages();
    EXPECT_EQ(shown(0), QStringLiteral("16384")) << "forgotten by the attempt that failed";
}

TEST_F(LostConnection, IsNoticedWhenOnlyTheNetworkHasClosedIt)
{
    HostileServerRelay relay(server->port(), HostileServerRelay::Fault::Close,
                             std::numeric_limits<std::uint64_t>::max());
    connectThrough(relay);
    run("SET XACT_ABORT ON");
    relay.strikeAfter(relay.bytesFromServer() + 1);
    run("SELECT REPLICATE('x', 8000), REPLICATE('y', 8000)"); // its answer is cut
    EXPECT_GT(tab->messages()->errorCount(), 0) << messages();
    relay.strikeAfter(std::numeric_limits<std::uint64_t>::max());
    run("SELECT @@OPTIONS & 16384");
    EXPECT_EQ(tab->messages()->errorCount(), 0) << messages();
    EXPECT_EQ(shown(0), QStringLiteral("16384"));
}

TEST_F(LostConnection, IsReportedBeforeTheNextRun)
{
    EXPECT_EQ(reported(), QString());
    run("USE library");
    EXPECT_EQ(reported(), QString());
    for (int time = 0; time < 2; ++time) {
        server->kill();
        ASSERT_TRUE(waitForReport());
        EXPECT_EQ(reported(),
                  QStringLiteral("The connection was lost. The next run opens a new one, with the same "
                                 "database and SET options."));
        startServerAgain();
        run("SELECT DB_NAME()");
        EXPECT_EQ(shown(0), QStringLiteral("library"));
        EXPECT_EQ(reported(), QString());
    }
    EXPECT_TRUE(alerts.questions.empty());
}

TEST_F(LostConnection, IsReportedWithWhatItHasCost)
{
    run("CREATE TABLE #mine (a int) BEGIN TRAN");
    EXPECT_TRUE(tab->canPerform(KNDocumentAction::Commit));
    server->kill();
    ASSERT_TRUE(waitForReport());
    EXPECT_EQ(reported(),
              QStringLiteral("The connection was lost: its open transaction was rolled back by the server; "
                             "its temporary tables are gone. The next run asks before it opens a new one."));
    EXPECT_FALSE(tab->status().hasOpenTransaction);
    EXPECT_FALSE(tab->canPerform(KNDocumentAction::Commit));
    startServerAgain();
    run("SELECT 1");
    ASSERT_EQ(alerts.questions.size(), 1U);
    EXPECT_TRUE(waitForReport()) << "the user has not answered yet";
    alerts.pending[0](1);
    ASSERT_TRUE(waitFor([&] { return !tab->isRunning() && tab->messages()->isComplete(); }));
    EXPECT_EQ(shown(0), QStringLiteral("1"));
    EXPECT_EQ(reported(), QString());
}

TEST_F(LostConnection, IsReportedWhenTheNetworkGoesAway)
{
    HostileServerRelay relay(server->port(), HostileServerRelay::Fault::None, 0);
    connectThrough(relay);
    run("SET XACT_ABORT ON");
    relay.cut();
    EXPECT_TRUE(waitForReport());
    run("SELECT @@OPTIONS & 16384");
    EXPECT_EQ(shown(0), QStringLiteral("16384"));
    EXPECT_EQ(reported(), QString());
}

TEST_F(LostConnection, IsReportedAfterOperationsAndWithdrawnByThem)
{
    run("SELECT 1");
    tab->changeDatabase(QStringLiteral("library"));
    ASSERT_TRUE(waitFor([&] { return tab->canPerform(KNDocumentAction::Reconnect); }));
    EXPECT_EQ(reported(), QString());
    server->kill();
    ASSERT_TRUE(waitForReport());
    startServerAgain();
    tab->perform(KNDocumentAction::Reconnect);
    ASSERT_TRUE(waitFor([&] { return tab->canPerform(KNDocumentAction::Reconnect); }));
    EXPECT_EQ(reported(), QString());
    server->kill();
    EXPECT_TRUE(waitForReport()) << "the new connection is watched, too";
}

TEST_F(LostConnection, IsNotReportedWhileTheServerAnswers)
{
    QStringList texts;
    tab->setText(QStringLiteral("SELECT * FROM generate_rows(100000)"));
    tab->run();
    ASSERT_TRUE(waitFor([&] {
        texts.append(reported());
        return !tab->isRunning() && tab->messages()->isComplete();
    }));
    tab->setText(QStringLiteral("SELECT * FROM generate_rows(10000000)"));
    tab->run();
    ASSERT_TRUE(waitFor([&] { return tab->status().rowCount > 1000; }));
    tab->cancel();
    ASSERT_TRUE(waitFor([&] { return !tab->isRunning() && tab->messages()->isComplete(); }));
    EXPECT_TRUE(WindowTesting::settle());
    texts.append(reported());
    EXPECT_EQ(texts.join(QString()), QString());
}
