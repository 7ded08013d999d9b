#include "Database/VantorDatabaseConnectionPool.h"
#include "Desktop/Query/MessagesView.h"
#include "Desktop/Tree/TreeActions.h"
#include "Support/LoginCounter.h"
#include "Support/RecordingAlerts.h"
#include "Support/RecordingWorkspace.h"
#include "Support/WatchedApplication.h"
#include "Support/WindowTesting.h"
#include "UI/Connecting/KNLoginWindowController.h"
#include "UI/DatabaseTree/KNDatabaseTreeViewController.h"
#include "UI/DatabaseTree/KNPropertiesDialog.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QClipboard>
#include <QFile>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QTemporaryDir>
#include <QTreeWidget>

using WindowTesting::waitFor;

namespace {

/// A workspace whose tree is shown.
class TreeWorkspace : public RecordingWorkspace
{
public:
    explicit TreeWorkspace(KNDatabaseTreeViewController &tree)
        : RecordingWorkspace(*DesktopTesting::settingsFor(SampleServerFixture::shared()))
        , m_tree(tree)
    {
    }
    TreeEntry selectedTreeEntry() const override { return m_tree.currentlySelectedDatabaseTreeEntry(); }

private:
    KNDatabaseTreeViewController &m_tree;
};

/// The object explorer on a real server, with the actions of the program.
class ObjectExplorer : public testing::Test
{
protected:
    ObjectExplorer()
    {
        m_controller.resize(320, 700);
        m_controller.show();
    }

    void connectTo(const SampleServerFixture &server)
    {
        const VantorDBCPtr details = DesktopTesting::settingsFor(server);
        const auto root = details->createRootDatabaseTreeNode();
        root->setDatabaseConnectionDetails(details.get());
        root->setContextHelper(m_actions.helper());
        m_controller.setRoot(root);
    }
    KNDatabaseTreeModel *model() const
    {
        return static_cast<KNDatabaseTreeModel *>(m_controller.view()->model());
    }
    QModelIndex child(const QModelIndex &parent, const QString &name) const
    {
        for (int row = 0; row < model()->rowCount(parent); ++row) {
            if (model()->index(row, 0, parent).data().toString() == name)
                return model()->index(row, 0, parent);
        }
        return {};
    }
    /// Expands level by level; the last entry.
    QModelIndex open(const QStringList &path)
    {
        QModelIndex index = model()->index(0, 0);
        for (const QString &name : path) {
            EXPECT_TRUE(waitFor([&] { return child(index, name).isValid(); })) << qPrintable(name);
            index = child(index, name);
            m_controller.view()->expand(index);
        }
        return index;
    }
    /// Chooses an item of the entry's menu, which is opened as by its key.
    void choose(const QModelIndex &index, const QStringList &titles)
    {
        m_controller.view()->setCurrentIndex(index);
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), QPoint());
        QApplication::sendEvent(m_controller.view(), &event);
        const QMenu *menu = m_controller.findChildren<QMenu *>(Qt::FindDirectChildrenOnly).last();
        for (const QString &title : titles) {
            for (QAction *const action : menu->actions()) {
                if (action->text() != title)
                    continue;
                if (action->menu())
                    menu = action->menu();
                else
                    action->trigger();
                break;
            }
        }
        for (QMenu *const opened : m_controller.findChildren<QMenu *>(Qt::FindDirectChildrenOnly))
            opened->close();
    }

    KNDatabaseTreeViewController m_controller;
    TreeWorkspace m_workspace{m_controller};
    TreeActions m_actions{m_workspace};
    std::vector<RecordingWorkspace::Query> &m_opened = m_workspace.queries;
};

const QStringList Orders = {QStringLiteral("shop"), QStringLiteral("Tables"), QStringLiteral("Orders")};
const QStringList ScriptOrders = {QStringLiteral("Script as"), QStringLiteral("CREATE to")};

} // namespace

TEST_F(ObjectExplorer, LoadsExpandedLevels)
{
    connectTo(SampleServerFixture::shared());
    const QModelIndex columns = open(Orders + QStringList{QStringLiteral("Columns")});
    EXPECT_TRUE(waitFor([&] { return child(columns, QStringLiteral("OrderId")).isValid(); }));
    EXPECT_TRUE(waitFor([&] { return !model()->isBusy(); }));
    EXPECT_TRUE(model()
                    ->index(0, 0)
                    .data(KNDatabaseTreeModel::DetailsRole)
                    .toString()
                    .contains(QStringLiteral("SQL Server")));
}

TEST_F(ObjectExplorer, SizesConnectionHeaderToItsContent)
{
    connectTo(SampleServerFixture::shared());
    const QModelIndex table = open(Orders);
    const QModelIndex head = model()->index(0, 0);
    EXPECT_TRUE(head.data(KNDatabaseTreeModel::IsHeadRole).toBool());
    EXPECT_FALSE(table.data(KNDatabaseTreeModel::IsHeadRole).toBool());
    EXPECT_GE(m_controller.view()->visualRect(head).height(), 34);
    EXPECT_GE(m_controller.view()->visualRect(table).height(), 23);
    EXPECT_LT(m_controller.view()->visualRect(table).height(),
              m_controller.view()->visualRect(head).height());
}

TEST_F(ObjectExplorer, RunsAQueryOnATableAtADoubleClick)
{
    connectTo(SampleServerFixture::shared());
    m_controller.view()->setCurrentIndex(open(Orders));
    QTest::keyClick(m_controller.view(), Qt::Key_Return);
    ASSERT_EQ(m_opened.size(), 1u);
    EXPECT_EQ(m_opened.front().text, QStringLiteral("SELECT TOP 100 * FROM dbo.Orders;"));
    EXPECT_EQ(m_opened.front().use, KNWorkspace::QueryUse::Execute);
    EXPECT_EQ(m_opened.front().details->database(), QStringLiteral("shop"));
}

TEST_F(ObjectExplorer, OpensAScriptOfTheMenuInANewTab)
{
    connectTo(SampleServerFixture::shared());
    choose(open(Orders), ScriptOrders + QStringList{QStringLiteral("New query tab")});
    ASSERT_TRUE(waitFor([&] { return !m_opened.empty(); }));
    EXPECT_TRUE(m_opened.front().text.contains(QStringLiteral("CREATE TABLE")));
    EXPECT_EQ(m_opened.front().use, KNWorkspace::QueryUse::Show);
}

TEST_F(ObjectExplorer, CommentsTheDropOutOfAScriptThatCannotCreate)
{
    connectTo(SampleServerFixture::shared());
    const QModelIndex procedure =
        open({QStringLiteral("shop"), QStringLiteral("Programmability"), QStringLiteral("Stored Procedures"),
              QStringLiteral("dbo.SecretProcedure")});
    choose(procedure, {QStringLiteral("Script as"), QStringLiteral("DROP and CREATE to"),
                       QStringLiteral("New query tab")});
    ASSERT_TRUE(waitFor([&] { return !m_opened.empty(); }));
    const QString text = m_opened.front().text;
    EXPECT_TRUE(text.contains(QStringLiteral("-- This script is incomplete: "))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("\n-- DROP PROCEDURE SecretProcedure\r\n")))
        << text.toStdString();
    EXPECT_FALSE(text.contains(QStringLiteral("\nDROP"))) << text.toStdString();
}

TEST_F(ObjectExplorer, AddsNoticeAboutAnotherObjectToScript)
{
    connectTo(SampleServerFixture::shared());
    choose(open(Orders),
           {QStringLiteral("Script as"), QStringLiteral("DROP to"), QStringLiteral("New query tab")});
    ASSERT_TRUE(waitFor([&] { return !m_opened.empty(); }));
    EXPECT_EQ(m_opened.front().text,
              QStringLiteral("-- The statement below is DROP VIEW, but the script was asked for the table "
                             "dbo.Orders.\r\nDROP VIEW dbo.Orders"));
}

TEST_F(ObjectExplorer, CopiesAScriptOfTheMenu)
{
    QApplication::clipboard()->clear();
    connectTo(SampleServerFixture::shared());
    choose(open(Orders), ScriptOrders + QStringList{QStringLiteral("Clipboard")});
    EXPECT_TRUE(
        waitFor([] { return QApplication::clipboard()->text().contains(QStringLiteral("CREATE TABLE")); }));
}

TEST_F(ObjectExplorer, SavesScriptAndReportsWriteFailure)
{
    RecordingFilePanels &panels = RecordingFilePanels::install();
    RecordingAlerts &alerts = RecordingAlerts::install();
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("orders.sql"));
    panels.answer = QStringList{path};
    connectTo(SampleServerFixture::shared());
    const QStringList toFile = ScriptOrders + QStringList{QStringLiteral("File")};
    choose(open(Orders), toFile);
    ASSERT_TRUE(waitFor([&] { return QFile::exists(path); }));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().contains("CREATE TABLE"));

    panels.answer = QStringList{QStringLiteral("/nonexistent/orders.sql")};
    choose(open(Orders), toFile);
    ASSERT_TRUE(waitFor([&] { return !alerts.errors.empty(); }));
    EXPECT_TRUE(
        alerts.errors.front().localizedDescription().contains(QStringLiteral("/nonexistent/orders.sql")));
}

TEST_F(ObjectExplorer, FindsObjectsInAllDatabases)
{
    connectTo(SampleServerFixture::shared());
    open({QStringLiteral("shop")});
    QTest::keyClicks(m_controller.searchField(), QStringLiteral("Customers"));
    EXPECT_TRUE(waitFor([&] {
        const QModelIndex shop = child(model()->index(0, 0), QStringLiteral("shop"));
        return child(shop, QStringLiteral("Customers")).isValid() &&
               !child(model()->index(0, 0), QStringLiteral("library")).isValid();
    }));
    QTest::keyClick(m_controller.searchField(), Qt::Key_Escape);
    EXPECT_TRUE(waitFor([&] { return child(model()->index(0, 0), QStringLiteral("library")).isValid(); }));
}

TEST_F(ObjectExplorer, ShowsWhyServerIsUnreachable)
{
    SampleServerFixture server;
    server.stop();
    connectTo(server);
    const QModelIndex root = model()->index(0, 0);
    ASSERT_TRUE(waitFor([&] { return model()->rowCount(root) == 1; }));
    EXPECT_TRUE(model()->index(0, 0, root).data(KNDatabaseTreeModel::IsErrorRole).toBool());
}

TEST_F(ObjectExplorer, TryAgainAsksForAPasswordThatWasChangedAtTheServer)
{
    auto server = std::make_unique<SampleServerFixture>();
    connectTo(*server);
    open({QStringLiteral("shop"), QStringLiteral("Tables")});
    QueryTab tab(*DesktopTesting::settingsFor(*server, QStringLiteral("shop")));
    SampleServerFixture::Options options{.arguments = {"--port", std::to_string(server->port())},
                                         .environment = {{"VANTOR_SAMPLE_PASSWORD", "Changed-2"}}};
    server.reset();
    VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
    server = std::make_unique<SampleServerFixture>(options);

    const QPersistentModelIndex tables = open({QStringLiteral("library"), QStringLiteral("Tables")});
    const auto shown = [&] { return model()->index(0, 0, tables); };
    ASSERT_TRUE(waitFor([&] { return shown().data(KNDatabaseTreeModel::IsErrorRole).toBool(); }));
    choose(shown(), {QStringLiteral("Try again")});
    const QPointer login = m_controller.findChild<KNLoginWindowController *>();
    ASSERT_TRUE(login);
    auto *const field = login->findChild<QLineEdit *>();
    field->setText(QStringLiteral("wrong"));
    QTest::keyClick(field, Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return !login->problem().isEmpty(); }));
    QStringList entered;
    QObject::connect(&m_controller, &KNDatabaseTreeViewController::passwordEntered, &m_controller,
                     [&](const QString &password) { entered.append(password); });
    field->setText(QStringLiteral("Changed-2"));
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_TRUE(waitFor([&] {
        return shown().isValid() && !model()->isBusy() &&
               !shown().data(KNDatabaseTreeModel::IsErrorRole).toBool();
    }));
    EXPECT_FALSE(login);
    EXPECT_EQ(entered, QStringList{QStringLiteral("Changed-2")});

    tab.setText(QStringLiteral("SELECT 1 AS a"));
    tab.run();
    EXPECT_TRUE(waitFor([&] { return !tab.isRunning() && tab.messages()->isComplete(); }));
    EXPECT_EQ(tab.messages()->errorCount(), 0) << tab.messages()->toPlainText().toStdString();
}

TEST_F(ObjectExplorer, ACancelledPasswordCostsNoLogin)
{
    const LoginCounter server(18456, "Refused.");
    const VantorDBCPtr details = DesktopTesting::settingsFor(server.port());
    const auto entry = details->createRootDatabaseTreeNode();
    entry->setDatabaseConnectionDetails(details.get());
    m_controller.setRoot(entry);
    const QModelIndex root = model()->index(0, 0);
    ASSERT_TRUE(waitFor([&] { return model()->rowCount(root) == 1 && !model()->isBusy(); }));
    const int logins = server.logins();
    choose(model()->index(0, 0, root), {QStringLiteral("Try again")});
    auto *const login = m_controller.findChild<KNLoginWindowController *>();
    ASSERT_NE(login, nullptr);
    QTest::keyClick(login, Qt::Key_Escape);
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_EQ(server.logins(), logins);
    EXPECT_EQ(model()->rowCount(root), 1);
}

TEST_F(ObjectExplorer, StaysResponsiveWhileFiftyThousandTablesLoadAndAreSearched)
{
    SampleServerFixture server({.arguments = {"--tables", "50000"}});
    connectTo(server);
    open({QStringLiteral("many")});
    WatchedApplication::instance().beginWatch();
    const QModelIndex tables = open({QStringLiteral("many"), QStringLiteral("Tables")});
    EXPECT_TRUE(waitFor([&] { return model()->rowCount(tables) == 50000; }));
    m_controller.view()->scrollToBottom();
    choose(tables, {QStringLiteral("Filter…")});
    auto *const filter = m_controller.findChild<QInputDialog *>();
    ASSERT_NE(filter, nullptr);
    QTest::keyClicks(filter->findChild<QLineEdit *>(), QStringLiteral("4999"));
    EXPECT_TRUE(waitFor([&] { return model()->rowCount(tables) < 100 && model()->rowCount(tables) > 0; }));
    QTest::keyClick(filter, Qt::Key_Escape);
    EXPECT_TRUE(waitFor([&] { return model()->rowCount(tables) == 50000; }));
    QTest::keyClicks(m_controller.searchField(), QStringLiteral("tab"));
    const auto found = [&] {
        const QModelIndex many = child(model()->index(0, 0), QStringLiteral("many"));
        return model()->rowCount(many) == 50000;
    };
    EXPECT_TRUE(waitFor(found));
    QTest::keyClick(m_controller.searchField(), Qt::Key_Escape);
    EXPECT_TRUE(waitFor([&] { return child(model()->index(0, 0), QStringLiteral("library")).isValid(); }));
    const auto &longest = WatchedApplication::instance().longestCall();
    EXPECT_LT(longest.milliseconds, WatchedApplication::LongestAllowed) << longest.what;
    RecordProperty("longestCallMilliseconds", static_cast<int>(longest.milliseconds));
}

TEST_F(ObjectExplorer, CopiesNames)
{
    connectTo(SampleServerFixture::shared());
    choose(open({QStringLiteral("shop"), QStringLiteral("Tables"), QStringLiteral("bracket]ed")}),
           {QStringLiteral("Copy name")});
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("[bracket]]ed]"));
}

TEST_F(ObjectExplorer, ShowsPropertiesReadInTheBackground)
{
    connectTo(SampleServerFixture::shared());
    choose(open(Orders), {QStringLiteral("Properties")});
    auto *const dialog = m_workspace.sheetParent()->findChild<KNPropertiesDialog *>();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Properties of Orders"));
    EXPECT_TRUE(waitFor([&] { return !dialog->text().isEmpty(); }));
    EXPECT_TRUE(dialog->text().startsWith(QStringLiteral("Name\tOrders\nSchema\tdbo\nKind\tuser table\n")));
    EXPECT_TRUE(dialog->text().contains(QStringLiteral("\nRows\t10\n")));
    const auto *const list = dialog->findChild<QTreeWidget *>();
    for (int row = 0; row < list->topLevelItemCount(); ++row) {
        const QString name = list->topLevelItem(row)->text(0);
        EXPECT_GT(list->columnWidth(0), list->fontMetrics().horizontalAdvance(name)) << name.toStdString();
    }
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_FALSE(dialog->isVisible());
}
