#include "Desktop/Main/DocumentTabMenu.h"
#include "Desktop/Main/DocumentTabs.h"
#include "Desktop/Main/MainWindow.h"
#include "Desktop/Main/MainWindowActions.h"
#include "Desktop/Main/RecentFiles.h"
#include "Desktop/Main/TabDrag.h"
#include "Desktop/Query/MessagesView.h"
#include "Support/DummyDocument.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/WindowTesting.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QClipboard>
#include <QDropEvent>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QTabBar>
#include <QTemporaryDir>

namespace {

using WindowTesting::waitFor;

/// A window whose tabs are opened, closed and found again.
class Tabs : public testing::Test
{
protected:
    Tabs()
    {
        RecentFiles::clear();
        open();
    }
    ~Tabs() override
    {
        delete window;
        EXPECT_TRUE(WindowTesting::settle());
    }
    void open()
    {
        delete window;
        const VantorDBCPtr details =
            DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"));
        details->setConnectionId(
            QString::fromLatin1(testing::UnitTest::GetInstance()->current_test_info()->name()));
        window = new MainWindow(*details);
        window->show();
        window->activateWindow();
        EXPECT_TRUE(waitFor([&] { return window->isActiveWindow(); }));
    }
    QueryTab *tab() const { return DesktopTesting::currentQuery(*window); }
    QueryTab *add(const char *name, const char *text = "SELECT 1 AS a")
    {
        window->openQueryText(QString::fromUtf8(text), window->databaseConnectionDetails(),
                              KNWorkspace::QueryUse::Show, QString::fromUtf8(name));
        return tab();
    }
    QStringList titles() const
    {
        QStringList texts;
        for (int i = 0; i < window->tabs()->count(); ++i)
            texts.append(window->tabs()->tabText(i));
        return texts;
    }
    QAction *action(const char *name) const { return window->actions()->action(QString::fromLatin1(name)); }
    /// Chooses an item of the context menu of a document's tab; false if it is disabled.
    bool choose(KNDocumentTab *document, const char *title)
    {
        QMenu menu;
        fillDocumentTabMenu(menu, *window->tabs(), *document);
        for (QAction *const item : menu.actions()) {
            if (item->text().remove(QLatin1Char('&')) != QLatin1String(title))
                continue;
            item->trigger();
            return item->isEnabled();
        }
        ADD_FAILURE() << title;
        return false;
    }
    void run()
    {
        tab()->run();
        ASSERT_TRUE(waitFor([&] { return !tab()->isRunning(); }));
    }

    RecordingAlerts &alerts = RecordingAlerts::install();
    QPointer<MainWindow> window;
};

} // namespace

TEST_F(Tabs, AreCalledAfterTheirObjectAndToldApart)
{
    add("Orders");
    add("Orders", "SELECT 2 AS a");
    add("Customers");
    EXPECT_EQ(titles(), (QStringList{QStringLiteral("Query 1"), QStringLiteral("Orders"),
                                     QStringLiteral("Orders (2)"), QStringLiteral("Customers")}));
    window->tabs()->removeDocument(window->documents().at(1));
    EXPECT_EQ(titles().at(1), QStringLiteral("Orders"));
}

TEST_F(Tabs, OfFilesOfTheSameNameShowTheirFolders)
{
    const QTemporaryDir folder;
    QStringList paths;
    for (const char *const name : {"one", "two"}) {
        QDir(folder.path()).mkpath(QString::fromLatin1(name));
        paths.append(folder.filePath(QString::fromLatin1(name) + QStringLiteral("/a.sql")));
        QFile file(paths.last());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    window->openFiles(paths);
    EXPECT_EQ(titles(), (QStringList{QStringLiteral("a.sql — one"), QStringLiteral("a.sql — two")}));
    EXPECT_EQ(RecentFiles::paths(), (QStringList{paths[1], paths[0]}));
}

TEST_F(Tabs, OfATableAreUsedAgainWhileUnchanged)
{
    const auto execute = [&] {
        window->openQueryText(QStringLiteral("SELECT 1 AS a"), window->databaseConnectionDetails(),
                              KNWorkspace::QueryUse::Execute, QStringLiteral("Orders"));
        EXPECT_TRUE(tab()->isRunning());
        EXPECT_TRUE(waitFor([&] { return !tab()->isRunning(); }));
    };
    execute();
    QueryTab *const first = tab();
    window->showDocument(window->documents().first());
    execute();
    EXPECT_EQ(tab(), first);
    EXPECT_EQ(window->documents().size(), 2);
    first->insertText(QStringLiteral("-- "));
    execute();
    EXPECT_NE(tab(), first);
    EXPECT_EQ(window->documents().size(), 3);
}

TEST_F(Tabs, CloseAtAMiddleClick)
{
    add("Orders");
    QTabBar *const bar = window->tabs()->tabBar();
    QTest::mouseClick(bar, Qt::MiddleButton, {}, bar->tabRect(0).center());
    EXPECT_EQ(titles(), QStringList{QStringLiteral("Orders")});
}

TEST_F(Tabs, ShowWhatTheirQueryDoesAndHowItEnded)
{
    tab()->setText(QStringLiteral("WAITFOR DELAY '00:01:00'"));
    EXPECT_TRUE(window->tabs()->tabIcon(0).isNull());
    tab()->run();
    EXPECT_FALSE(window->tabs()->tabIcon(0).isNull());
    EXPECT_TRUE(window->tabs()->tabToolTip(0).contains(QStringLiteral("running")));
    tab()->cancel();
    ASSERT_TRUE(waitFor([&] { return !tab()->isRunning(); }));
    EXPECT_TRUE(window->tabs()->tabIcon(0).isNull());
    tab()->setText(QStringLiteral("SELECT 1 AS a"));
    run();
    EXPECT_TRUE(window->tabs()->tabToolTip(0).contains(QStringLiteral("succeeded")));
    tab()->setText(QStringLiteral("SELECT 1 AS a RAISERROR('late', 16, 1)"));
    run();
    EXPECT_TRUE(window->tabs()->tabToolTip(0).contains(QStringLiteral("errors")));
}

TEST_F(Tabs, AreClosedByTheirMenu)
{
    QueryTab *const orders = add("Orders");
    add("Customers");
    add("Products");
    EXPECT_TRUE(choose(orders, "Close to the Right"));
    EXPECT_EQ(titles(), (QStringList{QStringLiteral("Query 1"), QStringLiteral("Orders")}));
    EXPECT_TRUE(choose(orders, "Close Others"));
    EXPECT_EQ(titles(), QStringList{QStringLiteral("Orders")});
    EXPECT_FALSE(choose(orders, "Close Others"));
    EXPECT_FALSE(choose(orders, "Copy Path"));
    EXPECT_TRUE(choose(orders, "Close"));
    EXPECT_TRUE(window->documents().isEmpty());
}

TEST_F(Tabs, StayOpenBehindOneThatDoesNotAgreeToClose)
{
    QueryTab *const orders = add("Orders");
    add("Customers")->insertText(QStringLiteral("x"));
    add("Products");
    alerts.answer = 2; // Cancel
    EXPECT_TRUE(choose(orders, "Close Others"));
    EXPECT_EQ(titles(), (QStringList{QStringLiteral("Orders"), QStringLiteral("Customers •"),
                                     QStringLiteral("Products")}));
}

TEST_F(Tabs, AreReopenedWithTheirText)
{
    EXPECT_FALSE(action("reopenClosed")->isEnabled());
    add("Orders")->insertText(QStringLiteral("-- mine\n"));
    const QString text = tab()->text();
    alerts.answer = 1; // Don't Save
    action("closeTab")->trigger();
    ASSERT_EQ(window->documents().size(), 1);
    EXPECT_TRUE(action("reopenClosed")->isEnabled());
    action("reopenClosed")->trigger();
    ASSERT_EQ(window->documents().size(), 2);
    EXPECT_EQ(tab()->text(), text);
    EXPECT_EQ(tab()->title(), QStringLiteral("Orders"));
    EXPECT_TRUE(tab()->isModified());
    EXPECT_FALSE(action("reopenClosed")->isEnabled());
}

TEST_F(Tabs, AreDuplicatedAndCopyTheirPath)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.sql"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("SELECT 42 AS a");
    file.close();
    window->openFiles({path});
    QueryTab *const original = tab();
    EXPECT_TRUE(choose(original, "Copy Path"));
    EXPECT_EQ(QApplication::clipboard()->text(), path);
    EXPECT_TRUE(choose(original, "Duplicate"));
    EXPECT_NE(tab(), original);
    EXPECT_EQ(tab()->text(), QStringLiteral("SELECT 42 AS a"));
    EXPECT_TRUE(tab()->filePath().isNull());
}

TEST_F(Tabs, AreCycledInTheOrderOfTheirUse)
{
    QueryTab *const first = tab();
    QueryTab *const second = add("two");
    QueryTab *const third = add("three");
    window->showDocument(first);
    const auto cycle = [&](int steps) {
        for (int i = 0; i < steps; ++i)
            QTest::keyPress(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
        // Releases Ctrl as well.
        QTest::keyRelease(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
        return tab();
    };
    EXPECT_EQ(cycle(1), third) << "used before the first";
    EXPECT_EQ(cycle(1), first) << "back to where it came from";
    EXPECT_EQ(cycle(2), second);
    EXPECT_EQ(cycle(1), first);
}

TEST_F(Tabs, ComeBackWithTheOneInFront)
{
    add("two")->insertText(QStringLiteral("-- 2\n"));
    add("three")->insertText(QStringLiteral("-- 3\n"));
    window->showDocument(window->documents().at(1));
    window->close();
    ASSERT_TRUE(waitFor([&] { return !window; }));
    open();
    ASSERT_EQ(window->documents().size(), 3);
    EXPECT_EQ(window->currentDocument()->title(), QStringLiteral("two"));
}

TEST_F(Tabs, ReconnectWithANewSession)
{
    tab()->setText(QStringLiteral("CREATE TABLE #t (i int)\nBEGIN TRAN"));
    run();
    ASSERT_TRUE(tab()->status().hasOpenTransaction);
    alerts.answer = 0;
    EXPECT_TRUE(choose(tab(), "Reconnect"));
    EXPECT_TRUE(tab()->status().hasOpenTransaction) << "the user has said no";
    alerts.answer = 1;
    EXPECT_TRUE(choose(tab(), "Reconnect"));
    EXPECT_FALSE(tab()->status().hasOpenTransaction);
    ASSERT_TRUE(waitFor([&] { return tab()->canPerform(KNDocumentAction::Reconnect); }));
    tab()->setText(QStringLiteral("SELECT * FROM #t"));
    run();
    EXPECT_EQ(tab()->messages()->errorCount(), 1) << "the table was in the old session";
}

TEST(RecentFileList, KeepsTheNewestTen)
{
    RecentFiles::clear();
    for (int i = 0; i < 12; ++i)
        RecentFiles::add(QStringLiteral("/tmp/%1.sql").arg(i));
    RecentFiles::add(QStringLiteral("/tmp/5.sql"));
    EXPECT_EQ(RecentFiles::paths().size(), 10);
    EXPECT_EQ(RecentFiles::paths().first(), QStringLiteral("/tmp/5.sql"));
    EXPECT_EQ(RecentFiles::paths().at(1), QStringLiteral("/tmp/11.sql"));
    EXPECT_EQ(RecentFiles::paths().count(QStringLiteral("/tmp/5.sql")), 1);
    QMenu menu;
    RecentFiles files;
    files.show(&menu);
    QStringList opened;
    QObject::connect(&files, &RecentFiles::openRequested, [&](const QString &path) { opened.append(path); });
    menu.actions().at(1)->trigger();
    EXPECT_EQ(opened, QStringList{QStringLiteral("/tmp/11.sql")});
    menu.actions().last()->trigger();
    EXPECT_TRUE(RecentFiles::paths().isEmpty());
}

TEST_F(Tabs, MoveToAnotherWindowWithTheirSessionAndResults)
{
    MainWindow other(*window->databaseConnectionDetails());
    other.setAttribute(Qt::WA_DeleteOnClose, false);
    other.show();
    QueryTab *const moved = add("Orders", "BEGIN TRANSACTION CREATE TABLE #kept (a int) SELECT 7 AS a");
    run();
    ASSERT_TRUE(moved->status().hasOpenTransaction);
    const auto data = TabDrag::dataOf(moved);
    QDragEnterEvent enter(QPoint(50, 50), Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(other.tabs(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(50, 50), Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(other.tabs(), &drop);

    EXPECT_EQ(titles(), QStringList{QStringLiteral("Query 1")});
    ASSERT_EQ(other.documents(), QList<KNDocumentTab *>{moved}); // in place of the unused query
    EXPECT_EQ(other.currentDocument(), moved);
    EXPECT_EQ(moved->window(), &other);
    EXPECT_EQ(moved->status().rowCount, 1);
    EXPECT_TRUE(alerts.questions.empty());
    delete window;
    moved->setText(QStringLiteral("SELECT COUNT(*) AS a FROM #kept"));
    moved->run();
    ASSERT_TRUE(waitFor([&] { return !moved->isRunning(); }));
    EXPECT_EQ(moved->messages()->errorCount(), 0) << moved->messages()->toPlainText().toStdString();
    EXPECT_TRUE(moved->status().hasOpenTransaction);
    EXPECT_TRUE(WindowTesting::settle());
}

TEST_F(Tabs, AreDroppedOnlyInWindowsOfTheirConnection)
{
    const VantorDBCPtr details = window->databaseConnectionDetails()->copy();
    details->setConnectionId(QStringLiteral("another connection"));
    MainWindow other(*details);
    other.setAttribute(Qt::WA_DeleteOnClose, false);
    QueryTab *const kept = add("Orders");
    other.adoptDocument(kept);
    EXPECT_EQ(kept->window(), window);
    QMimeData text;
    text.setData(QStringLiteral("application/x-vantor-tab"), "of another program");
    EXPECT_EQ(TabDrag::documentIn(text), nullptr);
    QDragEnterEvent own(QPoint(50, 50), Qt::MoveAction, TabDrag::dataOf(kept).release(), Qt::LeftButton,
                        Qt::NoModifier);
    QApplication::sendEvent(window->tabs(), &own);
    EXPECT_FALSE(own.isAccepted()); // within its bar a tab is moved, not dragged
    delete own.mimeData();
    EXPECT_TRUE(WindowTesting::settle());
}

TEST_F(Tabs, ShowAHintWhileThereIsNone)
{
    const auto shownHints = [&] {
        QStringList texts;
        for (const QLabel *const label : window->tabs()->findChildren<QLabel *>(Qt::FindDirectChildrenOnly)) {
            if (label->isVisible())
                texts.append(label->text());
        }
        return texts;
    };
    window->show();
    EXPECT_EQ(shownHints(), QStringList());
    window->tabs()->closeDocuments(window->tabs()->documents());
    EXPECT_TRUE(waitFor([&] { return window->tabs()->count() == 0; }));
    EXPECT_EQ(shownHints(),
              QStringList(QStringLiteral("Open a new query, or double-click a table to see its rows.")));
    add("Orders");
    EXPECT_EQ(shownHints(), QStringList());
}

TEST_F(Tabs, AskForAWindowOfTheirOwn)
{
    QueryTab *const query = add("Orders");
    QList<KNDocumentTab *> asked;
    QObject::connect(window, &MainWindow::newWindowRequested, window,
                     [&](KNDocumentTab *document) { asked.append(document); });
    EXPECT_TRUE(choose(query, "Move to New Window"));
    action("moveTab")->trigger();
    EXPECT_EQ(asked, (QList<KNDocumentTab *>{query, query}));
    auto *const dummy = new DummyDocument(window->databaseConnectionDetails());
    window->openDocument(std::unique_ptr<KNDocumentTab>(dummy));
    EXPECT_FALSE(choose(dummy, "Move to New Window"));
    EXPECT_FALSE(action("moveTab")->isEnabled());
}
