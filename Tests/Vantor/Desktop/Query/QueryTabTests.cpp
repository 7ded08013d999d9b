#include "Desktop/Query/QueryTab.h"

#include "Desktop/Query/DatabaseBox.h"
#include "Desktop/Query/MessagesView.h"
#include "Support/HostileServerRelay.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/WindowTesting.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/KNPreferences.h"
#include "UI/Results/KNResultFindBar.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNResultSection.h"
#include "UI/Results/KNResultsPane.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QLineEdit>
#include <QTabWidget>
#include <QTcpServer>

namespace {

using WindowTesting::waitFor;

VantorDBCPtr sampleSettings()
{
    return DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"));
}

/// A tab on the sample server, worked as a user does.
class QueryTabs : public testing::Test
{
protected:
    QueryTabs()
    {
        tab.resize(800, 600);
        tab.show();
        tab.activateWindow();
    }
    ~QueryTabs() override { KNPreferences().save(); }

    bool finish(QueryTab &which)
    {
        return waitFor([&] { return !which.isRunning() && which.messages()->isComplete(); });
    }
    void run(const QString &text) { run(tab, text); }
    void run(QueryTab &which, const QString &text)
    {
        which.setText(text);
        which.run();
        EXPECT_TRUE(which.isRunning());
        EXPECT_TRUE(finish(which));
    }
    void select(const QString &piece)
    {
        tab.editor()->selectRange({tab.text().indexOf(piece), piece.size()});
    }
    QString messages() const { return tab.messages()->toPlainText(); }
    QTabWidget &resultTabs() const { return *tab.findChild<QTabWidget *>(); }

    RecordingAlerts &alerts = RecordingAlerts::install();
    QueryTab tab{*sampleSettings()};
};

} // namespace

TEST_F(QueryTabs, ShowOneSummaryForStatementsWithoutResults)
{
    run(QStringLiteral("SET NOCOUNT ON\nSET NOCOUNT OFF\nGO\nDECLARE @a int SET @a = 1"));
    EXPECT_EQ(messages(), QStringLiteral("Command completed successfully."));
    run(QStringLiteral("SET NOCOUNT OFF\nSELECT 1 AS a\nSET NOCOUNT OFF"));
    EXPECT_EQ(messages(), QStringLiteral("Command completed successfully. (1 result)."));
}

TEST_F(QueryTabs, RunTextAndReportOutcome)
{
    std::vector<QueryHistoryEntry> history;
    QObject::connect(&tab, &QueryTab::runFinished, &tab,
                     [&](const QueryHistoryEntry &entry) { history.push_back(entry); });
    run(QStringLiteral("select 1 as a union all select 2\nGO\nprint 'hello'"));
    EXPECT_EQ(messages(), QStringLiteral("Command completed successfully. (2 results).\nhello"));
    EXPECT_EQ(resultTabs().currentWidget(), tab.resultsPane());
    const KNDocumentStatus status = tab.status();
    EXPECT_EQ(status.rowCount, 2);
    EXPECT_EQ(status.database, QStringLiteral("shop"));
    EXPECT_FALSE(status.hasOpenTransaction);
    ASSERT_EQ(history.size(), 1u);
    EXPECT_EQ(history[0].text, tab.text());
    EXPECT_EQ(history[0].rowCount, 2);
    EXPECT_EQ(history[0].database, QStringLiteral("shop"));
    EXPECT_TRUE(history[0].error.isNull());
    EXPECT_FALSE(history[0].wasCancelled);
}

TEST_F(QueryTabs, MarkTheWordThatTheServerComplainsAbout)
{
    const QString text = QString::fromUtf8("select '\xF0\x9F\x98\x80é'\nGO\n\nselect *\nfrom nowhere");
    run(text);
    EXPECT_EQ(tab.editor()->errorMarks(),
              QList<KNRange>{(KNRange{text.indexOf(QStringLiteral("nowhere")), 7})});
    EXPECT_EQ(tab.editor()->errorLines(), QList<int>{5});
    EXPECT_EQ(resultTabs().currentWidget(), tab.messages());
    EXPECT_EQ(resultTabs().tabText(1), QStringLiteral("Messages (1)"));
    EXPECT_TRUE(messages().contains(QStringLiteral("Msg 208, Level 16, State 1, Line ")))
        << messages().toStdString();
    tab.editor()->clearErrorMarks();
    run(QStringLiteral("select 1"));
    EXPECT_EQ(resultTabs().tabText(1), QStringLiteral("Messages"));
    EXPECT_EQ(tab.editor()->errorLines(), QList<int>());
}

TEST_F(QueryTabs, CountTheLinesOfASelectionFromTheTextsBeginning)
{
    tab.setText(QStringLiteral("select 1\n\nselect 2\nGO\n-- c\nraiserror('late', 16, 1)\nselect 3"));
    select(QStringLiteral("-- c\nraiserror('late', 16, 1)"));
    tab.run();
    ASSERT_TRUE(finish(tab));
    EXPECT_TRUE(messages().contains(QStringLiteral("Line 6"))) << messages().toStdString();
    EXPECT_EQ(tab.editor()->errorLines(), QList<int>{6});
    EXPECT_EQ(tab.status().rowCount, 0);

    tab.messages()->moveCursor(QTextCursor::Start);
    QTest::keyClick(tab.messages(), Qt::Key_Return);
    EXPECT_EQ(tab.editor()->selectedRange().location, tab.text().indexOf(QStringLiteral("raiserror")));
}

TEST_F(QueryTabs, RunTheBatchAtTheCursorAlone)
{
    tab.setText(QStringLiteral("select 1\nGO\nselect 1 union all select 2\nGO\nselect nothing"));
    tab.editor()->goToLine(3);
    tab.runBatchAtCursor();
    ASSERT_TRUE(finish(tab));
    EXPECT_EQ(tab.status().rowCount, 2);
    EXPECT_EQ(tab.messages()->errorCount(), 0);
}

TEST_F(QueryTabs, ShowRowsWhileTheyArriveAndStopAtACancel)
{
    tab.setText(QStringLiteral("select a.name from sys.all_columns a, sys.all_columns b, sys.all_columns c, "
                               "sys.all_columns d"));
    std::vector<qint64> elapsed;
    QObject::connect(&tab, &QueryTab::statusChanged, &tab, [&] {
        if (tab.status().isRunning)
            elapsed.push_back(tab.status().elapsedMilliseconds.value());
    });
    tab.run();
    ASSERT_TRUE(waitFor([&] { return tab.status().rowCount > 1000 && elapsed.size() > 3; }));
    EXPECT_TRUE(tab.isRunning());
    EXPECT_TRUE(std::is_sorted(elapsed.begin(), elapsed.end()));
    EXPECT_GT(elapsed.back(), elapsed.front());
    tab.cancel();
    ASSERT_TRUE(finish(tab));
    EXPECT_TRUE(messages().contains(QStringLiteral("Query was cancelled."))) << messages().toStdString();
    run(QStringLiteral("select 1"));
    EXPECT_EQ(tab.messages()->errorCount(), 0);
}

TEST_F(QueryTabs, CancelAWaitAndKeepTheSession)
{
    run(QStringLiteral("create table #mine (a int)"));
    tab.setText(QStringLiteral("waitfor delay '00:10:00'"));
    for (int i = 0; i < 3; ++i) {
        tab.run();
        tab.cancel(); // however early
        tab.cancel();
        ASSERT_TRUE(finish(tab));
        EXPECT_TRUE(tab.messages()->errorTargets().isEmpty());
    }
    tab.run();
    ASSERT_TRUE(waitFor([&] { return tab.status().elapsedMilliseconds > 50; }));
    tab.cancel();
    ASSERT_TRUE(finish(tab));
    run(QStringLiteral("select * from #mine"));
    EXPECT_EQ(tab.messages()->errorCount(), 0) << messages().toStdString();
}

TEST_F(QueryTabs, CancelPendingConnection)
{
    QTcpServer silent;
    ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
    const VantorDBCPtr details = sampleSettings();
    details->setHost(QStringLiteral("127.0.0.1,%1").arg(silent.serverPort()));
    QueryTab other(*details);
    other.setText(QStringLiteral("select 1"));
    other.run();
    ASSERT_TRUE(waitFor([&] { return silent.hasPendingConnections(); }));
    EXPECT_TRUE(other.isRunning());
    other.cancel();
    EXPECT_FALSE(other.isRunning());
    ASSERT_TRUE(finish(other));
    EXPECT_EQ(other.messages()->toPlainText(), QStringLiteral("Connecting was cancelled."));
    silent.close();
    while (QTcpSocket *const socket = silent.nextPendingConnection())
        delete socket;
}

TEST_F(QueryTabs, ShowWhyConnectionFailed)
{
    const VantorDBCPtr wrong = sampleSettings();
    wrong->setPassword(QStringLiteral("wrong"));
    QueryTab other(*wrong);
    run(other, QStringLiteral("select 1"));
    EXPECT_TRUE(other.messages()->toPlainText().contains(QStringLiteral("Login failed")))
        << other.messages()->toPlainText().toStdString();
    EXPECT_EQ(other.messages()->errorCount(), 1);
}

TEST_F(QueryTabs, RunNothingOnANewConnectionUntilTheLossOfATransactionIsConfirmed)
{
    auto server = std::make_unique<SampleServerFixture>();
    const std::uint16_t port = server->port();
    QueryTab other(*DesktopTesting::settingsFor(*server, QStringLiteral("shop")));
    run(other, QStringLiteral("begin transaction"));
    EXPECT_TRUE(other.status().hasOpenTransaction);
    server->kill();
    server = std::make_unique<SampleServerFixture>(
        SampleServerFixture::Options{{"--port", std::to_string(port)}, {}});

    run(other, QStringLiteral("create table shop.dbo.committed (a int)"));
    ASSERT_EQ(alerts.questions.size(), 1u);
    EXPECT_EQ(alerts.questions[0].title,
              QStringLiteral("The session was lost: its open transaction was rolled back by the server."));
    EXPECT_EQ(alerts.questions[0].text, QStringLiteral("Run on a new connection?"));
    alerts.pending.at(0)(0);
    EXPECT_FALSE(other.isRunning());
    QueryTab reader(*DesktopTesting::settingsFor(*server, QStringLiteral("shop")));
    const QString count = QStringLiteral("select 1 from sys.tables where name = 'committed'");
    run(reader, count);
    EXPECT_EQ(reader.status().rowCount, 0);

    other.run(); // asks again
    ASSERT_TRUE(finish(other));
    ASSERT_EQ(alerts.pending.size(), 2u);
    alerts.pending.at(1)(1);
    ASSERT_TRUE(finish(other));
    EXPECT_FALSE(other.status().hasOpenTransaction);
    reader.run();
    ASSERT_TRUE(finish(reader));
    EXPECT_EQ(reader.status().rowCount, 1);
}

TEST_F(QueryTabs, HaveSessionsOfTheirOwn)
{
    QueryTab other(*sampleSettings());
    run(QStringLiteral("create table #mine (a int)"));
    run(other, QStringLiteral("select * from #mine"));
    EXPECT_EQ(other.messages()->errorCount(), 1);
    run(QStringLiteral("select * from #mine"));
    EXPECT_EQ(tab.messages()->errorCount(), 0);
}

TEST_F(QueryTabs, FollowTheScriptToItsDatabase)
{
    run(QStringLiteral("use library"));
    EXPECT_EQ(tab.status().database, QStringLiteral("library"));
    EXPECT_EQ(tab.databaseBox()->currentText(), QStringLiteral("library"));
}

TEST_F(QueryTabs, ChangeToChosenDatabase)
{
    run(QStringLiteral("create table #mine (a int)"));
    tab.databaseBox()->showPopup();
    ASSERT_TRUE(waitFor([&] { return tab.databaseBox()->count() > 0; }));
    EXPECT_GE(tab.databaseBox()->findText(QStringLiteral("library")), 0);
    tab.databaseBox()->hidePopup();
    EXPECT_EQ(tab.databaseBox()->currentText(), QStringLiteral("shop"));
    QLineEdit &name = *tab.databaseBox()->lineEdit();
    name.setText(QStringLiteral("library"));
    QTest::keyClick(&name, Qt::Key_Return);
    tab.setText(QStringLiteral("select count(*), db_name() from #mine")); // runs when the session is there
    tab.run();
    ASSERT_TRUE(waitFor([&] { return tab.status().rowCount == 1; }));
    ASSERT_TRUE(finish(tab));
    EXPECT_EQ(tab.messages()->errorCount(), 0);
    EXPECT_EQ(tab.status().database, QStringLiteral("library"));

    name.setText(QStringLiteral("no ] such"));
    QTest::keyClick(&name, Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return !alerts.errors.empty(); }));
    EXPECT_TRUE(alerts.errors[0].localizedDescription().contains(QStringLiteral("no ] such")))
        << alerts.errors[0].localizedDescription().toStdString();
    EXPECT_EQ(name.text(), QStringLiteral("library"));
    EXPECT_EQ(tab.status().database, QStringLiteral("library"));
}

TEST_F(QueryTabs, StayUsableWhenTheListOfDatabasesIsRefused)
{
    HostileServerRelay relay(SampleServerFixture::shared().port(), HostileServerRelay::Fault::None, 0);
    relay.replaceInBatches(u"FROM sys.databases AS d", u"FROM syz.databases AS d");
    const VantorDBCPtr details = sampleSettings();
    details->setHost(QStringLiteral("127.0.0.1,%1").arg(relay.port()));
    QueryTab other(*details);
    other.show();
    other.databaseBox()->showPopup();
    ASSERT_TRUE(waitFor([&] { return !alerts.errors.empty(); }));
    EXPECT_TRUE(alerts.errors[0].localizedDescription().contains(QStringLiteral("syz.databases")))
        << alerts.errors[0].localizedDescription().toStdString();
    other.setText(QStringLiteral("select db_name()"));
    other.run();
    ASSERT_TRUE(finish(other));
    EXPECT_EQ(other.messages()->errorCount(), 0);
    EXPECT_EQ(other.status().database, QStringLiteral("shop"));
}

TEST_F(QueryTabs, ShowOpenTransaction)
{
    run(QStringLiteral("begin tran"));
    EXPECT_TRUE(tab.status().hasOpenTransaction);
    run(QStringLiteral("select 1"));
    EXPECT_TRUE(tab.status().hasOpenTransaction);
    run(QStringLiteral("rollback"));
    EXPECT_FALSE(tab.status().hasOpenTransaction);
}

TEST_F(QueryTabs, SendNoQueriesBetweenRuns)
{
    run(QStringLiteral("select 1 union all select 2 union all select 3"));
    tab.setText(QStringLiteral("if @@rowcount <> 3 raiserror('changed', 16, 1)"));
    tab.run();
    ASSERT_TRUE(finish(tab));
    EXPECT_EQ(tab.messages()->errorCount(), 0) << messages().toStdString();
}

TEST_F(QueryTabs, KeepNoMoreRowsThanThePreference)
{
    KNPreferences preferences = KNPreferences::current();
    preferences.rowLimit = 2;
    preferences.save();
    run(QStringLiteral("select 1 union all select 2 union all select 3; print 'all'"));
    EXPECT_EQ(tab.status().rowCount, 2);
    EXPECT_TRUE(messages().contains(QStringLiteral("The row limit keeps 2 rows of this result; 1 more")))
        << messages().toStdString();
    EXPECT_TRUE(messages().contains(QStringLiteral("all"))) << messages().toStdString();
}

TEST_F(QueryTabs, MarkNothingInATextThatWasChangedMeanwhile)
{
    tab.setText(QStringLiteral("waitfor delay '00:00:00.2' select * from nowhere"));
    tab.run();
    tab.insertText(QStringLiteral("-- "));
    ASSERT_TRUE(finish(tab));
    EXPECT_EQ(tab.messages()->errorCount(), 1);
    EXPECT_EQ(tab.editor()->errorLines(), QList<int>());
}

TEST_F(QueryTabs, ReportEmptyText)
{
    run(QStringLiteral("\nGO\n"));
    EXPECT_EQ(messages(), QStringLiteral("There is nothing to run."));
}

TEST_F(QueryTabs, HideTheirResultsUntilTheNextRun)
{
    tab.toggleResults();
    EXPECT_FALSE(resultTabs().isVisible());
    tab.toggleResults();
    EXPECT_TRUE(resultTabs().isVisible());
    tab.toggleResults();
    run(QStringLiteral("select 1"));
    EXPECT_TRUE(resultTabs().isVisible());
}

TEST_F(QueryTabs, AskBeforeCloseLosesWork)
{
    const auto close = [&](int button) {
        bool proceeds = false;
        alerts.answer = button;
        tab.prepareToClose([&] { proceeds = true; });
        return proceeds;
    };
    EXPECT_TRUE(close(0));
    EXPECT_TRUE(alerts.questions.empty());

    run(QStringLiteral("begin tran"));
    EXPECT_FALSE(close(0));
    EXPECT_TRUE(close(1));
    run(QStringLiteral("commit"));

    tab.setText(QStringLiteral("waitfor delay '00:10:00'"));
    tab.run();
    EXPECT_FALSE(close(0));
    EXPECT_TRUE(alerts.questions.back().title.contains(QStringLiteral("running")));
    tab.cancel();
    ASSERT_TRUE(finish(tab));

    tab.insertText(QStringLiteral("x"));
    EXPECT_FALSE(close(2));
    EXPECT_FALSE(close(-1));
    EXPECT_TRUE(close(1));

    const std::size_t asked = alerts.questions.size();
    bool ends = false;
    tab.prepareToEndSession([&] { ends = true; }); // the text comes back at the next start
    EXPECT_TRUE(ends);
    EXPECT_EQ(alerts.questions.size(), asked);
    KNPreferences preferences = KNPreferences::current();
    preferences.reopensTabs = false;
    preferences.save();
    alerts.answer = 2;
    ends = false;
    tab.prepareToEndSession([&] { ends = true; });
    EXPECT_FALSE(ends);
}

TEST_F(QueryTabs, CanBeClosedWhileRunning)
{
    auto other = std::make_unique<QueryTab>(*sampleSettings());
    other->setText(QStringLiteral("waitfor delay '00:10:00'"));
    other->run();
    ASSERT_TRUE(waitFor([&] { return other->status().elapsedMilliseconds > 50; }));
    other.reset();
    EXPECT_TRUE(WindowTesting::settle());
}

TEST_F(QueryTabs, CanBeClosedWhileConnecting)
{
    QTcpServer silent;
    ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
    const VantorDBCPtr details = sampleSettings();
    details->setHost(QStringLiteral("127.0.0.1,%1").arg(silent.serverPort()));
    auto other = std::make_unique<QueryTab>(*details);
    other->setText(QStringLiteral("select 1"));
    other->run();
    ASSERT_TRUE(waitFor([&] { return silent.hasPendingConnections(); }));
    other.reset();
    silent.close();
    while (QTcpSocket *const socket = silent.nextPendingConnection())
        delete socket;
    EXPECT_TRUE(WindowTesting::settle());
}

TEST_F(QueryTabs, ComeBackAsTheyWere)
{
    tab.setUntitledName(QStringLiteral("Query 4"));
    tab.insertText(QStringLiteral("select\n1"));
    tab.editor()->selectRange({3, 0});
    run(QStringLiteral("use library"));
    tab.insertText(QStringLiteral("-- "));
    const TabState state = tab.state();
    QueryTab other(*sampleSettings());
    other.restore(state);
    EXPECT_EQ(other.state(), state);
    EXPECT_EQ(other.title(), QStringLiteral("Query 4"));
    run(other, QStringLiteral("select count(*) from dbo.Books"));
    EXPECT_EQ(other.messages()->errorCount(), 0) << other.messages()->toPlainText().toStdString();
}

TEST_F(QueryTabs, FindInTheResultThatHasTheFocus)
{
    run(QStringLiteral("SELECT 1 AS a UNION ALL SELECT 22"));
    KNResultSection &section = *tab.resultsPane()->section(0);
    tab.editor()->setFocus();
    tab.perform(KNDocumentAction::Find);
    EXPECT_FALSE(section.findBar()->isVisible());
    section.grid()->setFocus();
    tab.perform(KNDocumentAction::Find);
    ASSERT_TRUE(section.findBar()->isVisible());
    section.findBar()->field()->setText(QStringLiteral("22"));
    tab.perform(KNDocumentAction::FindNext);
    EXPECT_TRUE(waitFor([&] { return section.grid()->currentIndex().row() == 1; }));
}

TEST_F(QueryTabs, DescribeTheSelectedCellsInTheStatus)
{
    run(QStringLiteral("SELECT 1 AS a UNION ALL SELECT 22"));
    EXPECT_EQ(tab.status().selection, QString());
    tab.resultsPane()->section(0)->grid()->selectAll();
    EXPECT_TRUE(waitFor([&] {
        return tab.status().selection.startsWith(QStringLiteral("Count: 2 · Sum: 23 "));
    })) << tab.status().selection.toStdString();
    tab.resultsPane()->clear();
    EXPECT_EQ(tab.status().selection, QString());
}
