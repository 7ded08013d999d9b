#include "Desktop/Main/MainWindow.h"

#include "Desktop/Main/MainWindowActions.h"
#include "Desktop/Main/StatusLine.h"
#include "Desktop/Preferences/PreferencesDialog.h"
#include "Desktop/Query/DatabaseBox.h"
#include "Desktop/Query/MessagesView.h"
#include "Desktop/Session/QueryHistoryDialog.h"
#include "Support/LoginCounter.h"
#include "Support/RecordingAlerts.h"
#include "Support/WatchedApplication.h"
#include "Support/WindowTesting.h"
#include "UI/DatabaseTree/KNDatabaseTreeViewController.h"
#include "UI/Editor/KNFindBar.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNResultSection.h"
#include "UI/Results/KNResultsPane.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QClipboard>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QTemporaryDir>

using WindowTesting::waitFor;

namespace {

/// The window of a connection to a sample server.
class MainWindowTest : public testing::Test
{
protected:
    MainWindowTest()
        : m_alerts(RecordingAlerts::install())
        , m_panels(RecordingFilePanels::install())
    {
        openWindow(QString::fromLatin1(testing::UnitTest::GetInstance()->current_test_info()->name()));
    }
    ~MainWindowTest() override
    {
        delete m_window;
        EXPECT_TRUE(WindowTesting::settle());
    }

    void openWindow(const QString &connectionId)
    {
        delete m_window;
        const VantorDBCPtr details =
            DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"));
        details->setConnectionId(connectionId);
        details->setAlias(QStringLiteral("the shop"));
        m_window = new MainWindow(*details);
        m_window->resize(1000, 700);
        m_window->show();
        m_window->activateWindow();
        EXPECT_TRUE(waitFor([&] { return m_window->isActiveWindow(); }));
    }
    /// What is typed goes to whatever has the focus.
    void type(const char *text) { QTest::keyClicks(QApplication::focusWidget(), QString::fromUtf8(text)); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    QueryTab *tab() const { return DesktopTesting::currentQuery(*m_window); }
    QueryTab *tabAt(int index) const { return qobject_cast<QueryTab *>(m_window->documents().value(index)); }
    void waitForRun()
    {
        EXPECT_TRUE(waitFor([&] { return !tab()->isRunning(); }));
    }
    QString statusText(const char *name) const
    {
        for (const QLabel *const label : m_window->statusBar()->findChildren<QLabel *>()) {
            if (label->accessibleName() == QLatin1String(name))
                return label->text();
        }
        return {};
    }
    QAction *action(const char *name) const { return m_window->actions()->action(QString::fromLatin1(name)); }

    RecordingAlerts &m_alerts;
    RecordingFilePanels &m_panels;
    QPointer<MainWindow> m_window;
};

} // namespace

TEST_F(MainWindowTest, OpensWithAnEmptyTabInTheDatabaseOfItsConnection)
{
    ASSERT_EQ(m_window->documents().size(), 1);
    EXPECT_EQ(tab()->title(), QStringLiteral("Query 1"));
    EXPECT_EQ(statusText("Database"), QStringLiteral("shop"));
    EXPECT_EQ(statusText("Login"), QStringLiteral("sa"));
    EXPECT_TRUE(waitFor([&] { return statusText("Server").contains(QStringLiteral("SQL Server")); }));
    EXPECT_TRUE(action("run")->isEnabled());
    EXPECT_FALSE(action("cancel")->isEnabled());
}

TEST_F(MainWindowTest, IsUsedWithoutAMouse)
{
    press(Qt::Key_N, Qt::ControlModifier);
    ASSERT_EQ(m_window->documents().size(), 2);
    type("SELECT CustomerId FROM Customers");
    press(Qt::Key_F5);
    waitForRun();
    EXPECT_GT(tab()->resultsPane()->rowCount(), 0);
    EXPECT_TRUE(statusText("Rows").endsWith(QStringLiteral("rows")));

    press(Qt::Key_F6);
    EXPECT_TRUE(tab()->resultsPane()->isAncestorOf(QApplication::focusWidget()));
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(waitFor([] { return QApplication::clipboard()->text().startsWith(QLatin1Char('1')); }));
    press(Qt::Key_F6);
    EXPECT_TRUE(tab()->editor()->hasFocus());

    press(Qt::Key_F8);
    EXPECT_TRUE(m_window->explorer()->isHidden());
    press(Qt::Key_F8);
    EXPECT_TRUE(m_window->explorer()->view()->hasFocus());
    press(Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(tab(), m_window->documents().first());
    press(Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
    type("Orders");
    EXPECT_EQ(m_window->explorer()->searchField()->text(), QStringLiteral("Orders"));
}

TEST_F(MainWindowTest, NamesEverythingThatCanHaveTheFocus)
{
    tab()->setText(QStringLiteral("SELECT 1 AS a"));
    tab()->run();
    waitForRun();
    tab()->findBar()->showReplace();
    tab()->resultsPane()->currentSection()->openFilter();
    EXPECT_EQ(WindowTesting::namelessWidgets(*m_window), QStringList());
    PreferencesDialog preferences;
    preferences.open();
    EXPECT_EQ(WindowTesting::namelessWidgets(preferences), QStringList());
    QueryHistoryDialog history(QueryHistory(QStringLiteral("any")), *m_window->databaseConnectionDetails());
    history.show();
    EXPECT_EQ(WindowTesting::namelessWidgets(history), QStringList());
}

TEST_F(MainWindowTest, HandlesShortcutsWithAnyFocus)
{
    tab()->setText(QStringLiteral("SELECT 1 AS a"));
    tab()->run();
    waitForRun();
    ASSERT_TRUE(waitFor([&] {
        return m_window->explorer()->view()->model()->rowCount(m_window->explorer()->view()->rootIndex()) > 0;
    }));
    m_window->explorer()->focusTree();
    QStringList triggered;
    QList<QAction *> actions;
    for (QAction *const action :
         m_window->menuBar()->findChildren<QAction *>() + m_window->actions()->findChildren<QAction *>()) {
        if (action->shortcuts().isEmpty() || actions.contains(action))
            continue;
        actions.append(action);
        action->disconnect(); // what they do is tested elsewhere
        action->setEnabled(true);
        QObject::connect(action, &QAction::triggered, m_window,
                         [&triggered, action] { triggered.append(action->objectName()); });
    }
    ASSERT_GT(actions.size(), 20);
    const QList<QWidget *> places = {tab()->editor(), m_window->explorer()->view(),
                                     tab()->resultsPane()->currentSection()->grid(), tab()->messages()};
    for (QWidget *const place : places) {
        for (const QAction *const action : std::as_const(actions)) {
            if (place == tab()->editor() && action->objectName().startsWith(QLatin1String("zoom")))
                continue; // it zooms by itself
            for (const QKeySequence &keys : action->shortcuts()) {
                place->setFocus();
                triggered.clear();
                for (int key = 0; key < keys.count(); ++key)
                    QTest::keyClick(place, keys[uint(key)].key(), keys[uint(key)].keyboardModifiers());
                // Commands of the text leave their keys to other widgets.
                const bool isAvailable =
                    action->shortcutContext() != Qt::WidgetShortcut || place == tab()->editor();
                EXPECT_EQ(triggered, isAvailable ? QStringList{action->objectName()} : QStringList())
                    << qPrintable(keys.toString()) << " in " << place->metaObject()->className();
            }
        }
    }
}

TEST_F(MainWindowTest, EscapeCancelsRunningQuery)
{
    type("WAITFOR DELAY '00:01:00'");
    press(Qt::Key_E, Qt::ControlModifier);
    EXPECT_TRUE(tab()->isRunning());
    EXPECT_FALSE(action("run")->isEnabled());
    EXPECT_TRUE(action("cancel")->isEnabled());
    press(Qt::Key_Escape);
    waitForRun();
    EXPECT_TRUE(action("run")->isEnabled());
    EXPECT_FALSE(action("cancel")->isEnabled());
}

TEST_F(MainWindowTest, OpensATabThatRunsWhereTheTreeAsksForOne)
{
    KNDatabaseTreeView *const view = m_window->explorer()->view();
    const auto find = [&](const char *name) {
        const auto found =
            view->model()->match(view->model()->index(0, 0), Qt::DisplayRole, QString::fromUtf8(name), 1,
                                 Qt::MatchExactly | Qt::MatchRecursive);
        return found.isEmpty() ? QModelIndex() : found.first();
    };
    for (const char *const name : {"shop", "Tables"}) {
        ASSERT_TRUE(waitFor([&] { return find(name).isValid(); })) << name;
        view->expand(find(name));
    }
    ASSERT_TRUE(waitFor([&] { return find("Customers").isValid(); }));
    view->setCurrentIndex(find("Customers"));
    QTest::keyClick(view, Qt::Key_Return);
    ASSERT_EQ(m_window->documents().size(), 2);
    EXPECT_EQ(tab()->text(), QStringLiteral("SELECT TOP 100 * FROM dbo.Customers;"));
    waitForRun();
    EXPECT_GT(tab()->resultsPane()->rowCount(), 0);
}

TEST_F(MainWindowTest, OpensFilesOnceAndReportsUnreadableOnes)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.sql"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("SELECT 1");
    file.close();
    m_panels.answer = QStringList{path, folder.filePath(QStringLiteral("missing.sql")), path};
    press(Qt::Key_O, Qt::ControlModifier);
    ASSERT_EQ(m_window->documents().size(), 1) << "the empty tab was to be used";
    EXPECT_EQ(tab()->filePath(), path);
    EXPECT_EQ(tab()->text(), QStringLiteral("SELECT 1"));
    ASSERT_EQ(m_alerts.errors.size(), 1u);
    EXPECT_TRUE(m_alerts.errors.front().localizedDescription().contains(QStringLiteral("missing.sql")));
}

TEST_F(MainWindowTest, AsksBeforeATabWithUnsavedTextIsClosed)
{
    type("SELECT 1");
    press(Qt::Key_W, Qt::ControlModifier);
    ASSERT_EQ(m_alerts.questions.size(), 1u);
    const QStringList buttons = m_alerts.questions.front().buttons;
    m_alerts.pending.front()(static_cast<int>(buttons.indexOf(QStringLiteral("Cancel"))));
    EXPECT_EQ(m_window->documents().size(), 1);

    press(Qt::Key_W, Qt::ControlModifier);
    ASSERT_EQ(m_alerts.pending.size(), 2u);
    m_alerts.pending.back()(static_cast<int>(buttons.indexOf(QStringLiteral("Don't Save"))));
    EXPECT_TRUE(waitFor([&] { return m_window->documents().isEmpty(); }));
    EXPECT_FALSE(action("run")->isEnabled());
}

TEST_F(MainWindowTest, AsksBeforeItIsClosedOverARunningQuery)
{
    type("WAITFOR DELAY '00:01:00'");
    press(Qt::Key_F5);
    m_window->close();
    ASSERT_EQ(m_alerts.questions.size(), 1u);
    EXPECT_TRUE(m_window->isVisible());
    const QStringList buttons = m_alerts.questions.front().buttons;
    m_alerts.pending.front()(static_cast<int>(buttons.indexOf(QStringLiteral("Stop and Close"))));
    EXPECT_TRUE(waitFor([&] { return !m_window; }));
}

TEST_F(MainWindowTest, IsLeftTogetherWithAllOthers)
{
    const QPointer other = new MainWindow(*m_window->databaseConnectionDetails());
    other->show();
    action("quit")->trigger();
    EXPECT_TRUE(waitFor([&] { return !m_window && !other; }));
}

TEST_F(MainWindowTest, BringsTheTabsOfTheLastSessionBackWithTheirUnsavedText)
{
    openWindow(QStringLiteral("remembered"));
    tab()->insertText(QStringLiteral("SELECT 'not saved 🐘'"));
    press(Qt::Key_N, Qt::ControlModifier);
    type("SELECT 2");
    m_window->close();
    EXPECT_TRUE(m_alerts.questions.empty());
    EXPECT_TRUE(waitFor([&] { return !m_window; }));

    openWindow(QStringLiteral("remembered"));
    ASSERT_TRUE(waitFor([&] { return m_window->documents().size() == 2; }));
    EXPECT_EQ(tabAt(0)->text(), QStringLiteral("SELECT 'not saved 🐘'"));
    EXPECT_EQ(tabAt(1)->text(), QStringLiteral("SELECT 2"));
    EXPECT_TRUE(m_window->documents().at(0)->isModified());
    EXPECT_EQ(m_window->documents().at(1)->title(), QStringLiteral("Query 2"));
}

TEST_F(MainWindowTest, ReopensQueryFromHistoryInNewTab)
{
    openWindow(QStringLiteral("with history"));
    type("SELECT 42 AS answer");
    press(Qt::Key_F5);
    waitForRun();
    press(Qt::Key_H, Qt::ControlModifier | Qt::ShiftModifier);
    auto *const dialog = m_window->findChild<QueryHistoryDialog *>();
    ASSERT_NE(dialog, nullptr);
    ASSERT_TRUE(waitFor([&] { return dialog->isLoaded(); }));
    Q_EMIT dialog->newTabRequested(QStringLiteral("SELECT 42 AS answer"));
    ASSERT_EQ(m_window->documents().size(), 2);
    EXPECT_EQ(tab()->text(), QStringLiteral("SELECT 42 AS answer"));
    EXPECT_EQ(dialog->findChild<QAbstractItemView *>()->model()->rowCount(), 1);
}

TEST_F(MainWindowTest, StaysResponsiveWhileAMillionRowsStreamIn)
{
    tab()->setText(QStringLiteral("SELECT * FROM generate_rows(1000000)"));
    WatchedApplication::instance().beginWatch();
    tab()->run();
    waitForRun();
    EXPECT_EQ(tab()->resultsPane()->rowCount(), 1'000'000);
    const auto &longest = WatchedApplication::instance().longestCall();
    EXPECT_LT(longest.milliseconds, WatchedApplication::LongestAllowed) << longest.what;
    RecordProperty("longestCallMilliseconds", static_cast<int>(longest.milliseconds));
}

TEST_F(MainWindowTest, OneActionOfTheUserCostsOneRefusedLogin)
{
    const LoginCounter server;
    const VantorDBCPtr details =
        DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"));
    details->setHost(QStringLiteral("127.0.0.1,%1").arg(server.port()));
    details->setConnectionId(QStringLiteral("refused"));
    MainWindow window(*details);
    window.setAttribute(Qt::WA_DeleteOnClose, false);
    window.show();
    ASSERT_TRUE(waitFor([&] { return server.logins() == 1; }));
    ASSERT_TRUE(WindowTesting::settle());
    EXPECT_EQ(server.logins(), 1) << "the tree";
    DesktopTesting::currentQuery(window)->setText(QStringLiteral("select 1"));
    DesktopTesting::currentQuery(window)->run();
    ASSERT_TRUE(waitFor([&] { return !DesktopTesting::currentQuery(window)->isRunning(); }));
    EXPECT_EQ(server.logins(), 2) << "the query";
    DesktopTesting::currentQuery(window)->databaseBox()->showPopup();
    ASSERT_TRUE(WindowTesting::settle());
    EXPECT_EQ(server.logins(), 3) << "the list of databases";
    window.explorer()->refreshSelected();
    ASSERT_TRUE(WindowTesting::settle());
    EXPECT_EQ(server.logins(), 4) << "the refresh";
}
