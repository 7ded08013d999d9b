#include "Support/FakeTree.h"
#include "Support/RecordingAlerts.h"
#include "Support/WindowTesting.h"
#include "UI/DatabaseTree/KNDatabaseTreeViewController.h"

#include "DatabaseTree/KNDatabaseTreeContextHelper.h"

#include <QAbstractItemModelTester>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>

#include <mutex>

using FakeTree::Leaf;
using WindowTesting::waitFor;

namespace {

/// A tree in its controller, whose root loads the names that the test has set.
class DatabaseTree : public testing::Test
{
protected:
    DatabaseTree()
    {
        m_tester.setUseFetchMore(false);
        m_controller.resize(300, 500);
        m_controller.show();
    }

    void show(const QStringList &names)
    {
        setNames(names);
        m_controller.setRoot(m_root);
        EXPECT_TRUE(waitFor([&] { return shown() == names; }));
    }
    void setNames(const QStringList &names)
    {
        const std::lock_guard lock(m_mutex);
        m_names = names;
    }
    QModelIndex rootIndex() const { return model()->index(0, 0); }
    KNDatabaseTreeModel *model() const
    {
        return static_cast<KNDatabaseTreeModel *>(m_controller.view()->model());
    }
    QStringList shown() const
    {
        QStringList names;
        for (int row = 0; row < model()->rowCount(rootIndex()); ++row)
            names.append(model()->index(row, 0, rootIndex()).data().toString());
        return names;
    }
    QModelIndex rowOf(const char *name) const
    {
        const auto found = model()->match(rootIndex().siblingAtRow(0), Qt::DisplayRole,
                                          QString::fromUtf8(name), 1, Qt::MatchExactly | Qt::MatchRecursive);
        return found.isEmpty() ? QModelIndex() : found.first();
    }
    Leaf *leaf(const char *name) const { return dynamic_cast<Leaf *>(model()->entry(rowOf(name)).get()); }
    void type(const char *text)
    {
        m_controller.searchField()->clear();
        QTest::keyClicks(m_controller.searchField(), QString::fromUtf8(text));
    }

    std::mutex m_mutex;
    QStringList m_names;                           ///< guarded by m_mutex
    KNError m_loadError;                           ///< set before a load begins
    KNSemaphore m_gate{QStringLiteral("gate"), 0}; ///< each load passes it
    std::atomic<bool> m_isGated = false;
    const std::shared_ptr<FakeTree::Root> m_root = std::make_shared<FakeTree::Root>([this](KNError *error) {
        if (m_isGated)
            m_gate.wait();
        *error = m_loadError;
        const std::lock_guard lock(m_mutex);
        return m_names;
    });
    KNDatabaseTreeViewController m_controller;
    QAbstractItemModelTester m_tester{model(), QAbstractItemModelTester::FailureReportingMode::Fatal};
};

QStringList list(std::initializer_list<const char *> names)
{
    QStringList texts;
    for (const char *name : names)
        texts.append(QString::fromUtf8(name));
    return texts;
}

} // namespace

TEST_F(DatabaseTree, LoadsItsFirstLevelInTheBackgroundAndShowsThatItIsBusy)
{
    m_isGated = true;
    setNames(list({"a", "b"}));
    m_controller.setRoot(m_root);
    EXPECT_TRUE(waitFor([&] { return rootIndex().data(KNDatabaseTreeModel::IsBusyRole).toBool(); }));
    EXPECT_TRUE(model()->isBusy());
    EXPECT_TRUE(shown().isEmpty());

    m_gate.signal();
    EXPECT_TRUE(waitFor([&] { return shown() == list({"a", "b"}); }));
    EXPECT_FALSE(model()->isBusy());
    EXPECT_TRUE(m_controller.view()->isExpanded(rootIndex()));
}

TEST_F(DatabaseTree, ShowsAnErrorAsARowAndLoadsAgainWhenItIsRefreshed)
{
    m_loadError = KNError(QStringLiteral("test"), 1, QStringLiteral("The server\nis gone"));
    m_controller.setRoot(m_root);
    EXPECT_TRUE(waitFor([&] { return model()->rowCount(rootIndex()) == 1; }));
    const QModelIndex row = model()->index(0, 0, rootIndex());
    EXPECT_TRUE(row.data(KNDatabaseTreeModel::IsErrorRole).toBool());
    EXPECT_TRUE(row.data().toString().contains(QStringLiteral("is gone")));

    m_loadError.clear();
    setNames(list({"a"}));
    m_controller.refreshDatabaseTreeItem(model()->entry(row));
    EXPECT_TRUE(waitFor([&] { return shown() == list({"a"}); }));
}

TEST_F(DatabaseTree, AlertsTheUserToAFailureThatTheTreeDoesNotShow)
{
    RecordingAlerts &alerts = RecordingAlerts::install();
    show(list({"a"}));
    m_root->reportedFailure = KNError(QStringLiteral("test"), 1, QStringLiteral("The list is gone"));
    setNames({});
    m_controller.refreshSelected();
    EXPECT_TRUE(waitFor([&] { return alerts.errors.size() == 1; }));
    EXPECT_EQ(alerts.errors.front().localizedDescription(), QStringLiteral("The list is gone"));
    EXPECT_TRUE(waitFor([&] { return shown().isEmpty(); }));
}

TEST_F(DatabaseTree, KeepsTheRowsThatHaveNotChangedWhenOneIsAddedOrRemoved)
{
    show(list({"a", "b", "d"}));
    const QPersistentModelIndex a = rowOf("a");
    const QPersistentModelIndex d = rowOf("d");
    m_controller.view()->setCurrentIndex(d);

    auto entries = *m_root->childEntries();
    entries.insert(entries.begin() + 2, std::make_shared<Leaf>(QStringLiteral("c")));
    m_root->setChildEntries(std::move(entries));
    m_root->delegate()->databaseTreeEntryDidFinishLoading(m_root);
    EXPECT_TRUE(waitFor([&] { return shown() == list({"a", "b", "c", "d"}); }));
    EXPECT_EQ(a.row(), 0);
    EXPECT_EQ(d.row(), 3);
    EXPECT_EQ(m_controller.view()->currentIndex(), d);

    auto fewer = *m_root->childEntries();
    fewer.erase(fewer.begin());
    m_root->setChildEntries(std::move(fewer));
    m_root->delegate()->databaseTreeEntryDidFinishLoading(m_root);
    EXPECT_TRUE(waitFor([&] { return shown() == list({"b", "c", "d"}); }));
    EXPECT_FALSE(a.isValid());
    EXPECT_EQ(d.row(), 2);
}

TEST_F(DatabaseTree, SelectsTheSameRowAgainAfterARefresh)
{
    show(list({"a", "b", "c"}));
    m_controller.view()->setCurrentIndex(rowOf("b"));
    setNames(list({"x", "b"}));
    m_controller.refreshDatabaseTreeItem(m_root);
    EXPECT_TRUE(waitFor([&] { return shown() == list({"x", "b"}); }));
    EXPECT_EQ(m_controller.currentlySelectedDatabaseTreeEntry()->displayName(), QStringLiteral("b"));
}

TEST_F(DatabaseTree, PassesKeysOnToItsEntries)
{
    show(list({"a", "b"}));
    m_controller.focusTree();
    KNDatabaseTreeView *const view = m_controller.view();
    view->setCurrentIndex(rowOf("a"));
    QTest::keyClick(view, Qt::Key_Return);
    QTest::keyClick(view, Qt::Key_Down, Qt::ControlModifier);
    QTest::keyClick(view, Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(leaf("a")->doubleClicks, 1);
    EXPECT_EQ(leaf("a")->downs, 1);
    EXPECT_EQ(leaf("a")->rights, 1);
    QTest::keyClick(view, Qt::Key_Down);
    EXPECT_EQ(m_controller.currentlySelectedDatabaseTreeEntry().get(), leaf("b"));
}

TEST_F(DatabaseTree, ReportsDoubleClickToEntry)
{
    show(list({"a"}));
    KNDatabaseTreeView *const view = m_controller.view();
    const QPoint place = view->visualRect(rowOf("a")).center();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, place);
    EXPECT_EQ(leaf("a")->doubleClicks, 1);
}

TEST_F(DatabaseTree, DragsNamesAsText)
{
    show(list({"Orders", "[odd ]] name]"}));
    const std::unique_ptr<QMimeData> data(model()->mimeData({rowOf("Orders"), rowOf("[odd ]] name]")}));
    EXPECT_EQ(data->text(), QStringLiteral("Orders, [odd ]] name]"));
    EXPECT_TRUE(rowOf("Orders").flags().testFlag(Qt::ItemIsDragEnabled));
    EXPECT_FALSE(rootIndex().flags().testFlag(Qt::ItemIsDragEnabled));
}

TEST_F(DatabaseTree, SearchesAsTheUserTypesAndAsksForTheObjectsOnlyOnce)
{
    show(list({"Customers", "Orders", "OrderLines"}));
    type("Order");
    EXPECT_TRUE(waitFor([&] { return shown() == list({"Orders", "OrderLines"}); }));
    EXPECT_TRUE(m_controller.view()->isExpanded(rootIndex()));
    EXPECT_TRUE(m_controller.notice().isNull());
    type("OrderL");
    EXPECT_TRUE(waitFor([&] { return shown() == list({"OrderLines"}); }));
    EXPECT_EQ(m_root->searchUpdates, 1);

    type("nowhere");
    EXPECT_TRUE(waitFor([&] { return !m_controller.notice().isNull(); }));
    EXPECT_EQ(m_controller.notice(), QStringLiteral("No object's name contains \"nowhere\"."));

    QTest::keyClick(m_controller.searchField(), Qt::Key_Escape);
    EXPECT_TRUE(waitFor([&] { return shown() == list({"Customers", "Orders", "OrderLines"}); }));
    EXPECT_TRUE(m_controller.notice().isNull());
}

TEST_F(DatabaseTree, ShowsWhyObjectsCannotBeSearched)
{
    m_root->searchError = KNError(QStringLiteral("test"), 0, QStringLiteral("Search is not supported."));
    show(list({"a"}));
    type("a");
    EXPECT_TRUE(waitFor([&] { return m_controller.notice() == QStringLiteral("Search is not supported."); }));
    EXPECT_EQ(shown(), list({"a"}));
}

TEST_F(DatabaseTree, ShowsFailedOrIncompleteSearch)
{
    m_root->isSearched = true;
    m_root->searchError = KNError(QStringLiteral("test"), 229, QStringLiteral("SELECT was denied."));
    show(list({"a", "b"}));
    type("a");
    EXPECT_TRUE(waitFor([&] {
        return m_controller.notice() == QStringLiteral("The search is incomplete: SELECT was denied.");
    }));
    EXPECT_EQ(shown(), list({"a"}));
    type("x");
    EXPECT_TRUE(waitFor(
        [&] { return m_controller.notice() == QStringLiteral("The search failed: SELECT was denied."); }));
    EXPECT_EQ(shown(), list({"a", "b"})) << "that nothing was found does not mean that there is nothing";
    m_controller.searchField()->clear();
    EXPECT_TRUE(waitFor([&] { return m_controller.notice().isNull(); }));
    m_root->searchError = {};
    type("b");
    EXPECT_TRUE(waitFor([&] { return shown() == list({"b"}); })) << "a new search asks again";
    EXPECT_TRUE(m_controller.notice().isNull());
}

TEST_F(DatabaseTree, RunsASearchThatWasTypedBeforeTheTreeWasLoaded)
{
    m_isGated = true;
    setNames(list({"Customers", "Orders"}));
    m_controller.setRoot(m_root);
    type("Ord");
    EXPECT_TRUE(waitFor([&] { return m_controller.notice() == QStringLiteral("Loading the databases…"); }));
    EXPECT_EQ(m_root->searchUpdates, 0);
    m_gate.signal();
    EXPECT_TRUE(waitFor([&] { return shown() == list({"Orders"}); }));
    EXPECT_TRUE(m_controller.notice().isNull());
}

TEST_F(DatabaseTree, ShowsMissingActionsDisabledAtTheEndOfTheirGroup)
{
    const auto helper = std::make_shared<KNDatabaseTreeContextHelper>();
    int performed = 0;
    helper->addAction(QStringLiteral("known:"), [&](const KNMenuRepresentedObject &) { ++performed; });
    const auto item = [&](const char *title, const char *action) {
        KNMenuItem made;
        made.title = QString::fromUtf8(title);
        made.action = QString::fromUtf8(action);
        made.target = helper;
        return made;
    };
    m_root->shownMenu = {QStringLiteral("Root"),
                         {item("Unknown", "unknown:"), item("Known & loved", "known:"),
                          KNMenuItem::separator(), item("Last", "known:")}};
    show(list({"a"}));
    m_controller.view()->setCurrentIndex(rootIndex());
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QApplication::sendEvent(m_controller.view(), &event);

    auto *const menu = m_controller.findChild<QMenu *>();
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->actions().size(), 4);
    EXPECT_EQ(menu->actions().at(0)->text(), QStringLiteral("Known && loved"));
    EXPECT_TRUE(menu->actions().at(0)->isEnabled());
    EXPECT_FALSE(menu->actions().at(1)->isEnabled());
    EXPECT_EQ(menu->actions().at(1)->toolTip(), QStringLiteral("This is not available yet."));
    EXPECT_TRUE(menu->actions().at(2)->isSeparator());
    EXPECT_TRUE(menu->actions().at(3)->isEnabled());
    menu->actions().at(0)->trigger();
    EXPECT_EQ(performed, 1);
    menu->close();
}

TEST_F(DatabaseTree, MayEndWhileItLoads)
{
    m_isGated = true;
    setNames(list({"a"}));
    m_controller.setRoot(m_root);
    EXPECT_TRUE(waitFor([&] { return model()->isBusy(); }));
    m_controller.setRoot(nullptr);
    m_gate.signal();
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_EQ(model()->rowCount(), 0);
}

TEST_F(DatabaseTree, FiltersAListAsTheUserTypes)
{
    show(list({"Orders", "OrderLines", "Customers", "Products", "Stores"}));
    m_controller.view()->setCurrentIndex(rootIndex());
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QApplication::sendEvent(m_controller.view(), &event);
    auto *const menu = m_controller.findChild<QMenu *>();
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->actions().last()->text(), QStringLiteral("Filter…"));
    menu->actions().last()->trigger();
    menu->close();
    auto *const dialog = m_controller.findChild<QInputDialog *>();
    ASSERT_NE(dialog, nullptr);
    dialog->setTextValue(QStringLiteral("orDER"));
    EXPECT_EQ(shown(), list({"Orders", "OrderLines"}));
    EXPECT_EQ(rootIndex().data(KNDatabaseTreeModel::DetailsRole).toString(),
              QStringLiteral("names with \"orDER\""));

    setNames(list({"Customers", "New orders"})); // the filter outlives a refresh
    m_controller.refreshDatabaseTreeItem(m_root);
    EXPECT_TRUE(waitFor([&] { return shown() == list({"New orders"}); }));
    dialog->setTextValue(QStringLiteral("nothing"));
    EXPECT_EQ(shown(), QStringList());
    EXPECT_TRUE(model()->hasChildren(rootIndex()));
    dialog->reject();
    EXPECT_EQ(shown(), list({"Customers", "New orders"}));
}
