#include "Connector/KNConnectorLoader.h"
#include "Connector/KNConnectorPlugin.h"
#include "DatabaseTree/DatabaseTreeEntryServerRoot.h"
#include "DatabaseTree/KNMenu.h"
#include "Desktop/Main/DocumentTabs.h"
#include "Desktop/Query/MessagesView.h"
#include "Desktop/Query/QueryTab.h"
#include "Foundation/KNUserDefaults.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/RecordingSheets.h"
#include "Support/WindowTesting.h"
#include "UI/DatabaseTree/KNDatabaseTreeViewController.h"
#include "UI/KNConnectorUserInterface.h"
#include "UI/Menus/KNMenuView.h"
#include "UI/Workspace/KNQueryPreviewDialog.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QFile>
#include <QMenu>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <typeinfo>

namespace TreeItemTests {

namespace {

using Ptr = KNDatabaseTreeEntry::Ptr;
using WindowTesting::waitFor;

const QString AgentPreference = QStringLiteral("MSSQLAgentEnabled");
const QString SecurityPreference = QStringLiteral("MSSQLShowSecurity");

/// One item of the menu of one kind of entry.
struct Item
{
    Ptr entry;
    QStringList path; ///< the titles from the menu to the item
    QString action;

    std::string name() const
    {
        return (entry->displayName() + QLatin1String(": ") + path.join(QStringLiteral(" / "))).toStdString();
    }
};

void addItems(const Ptr &entry, const KNMenu &menu, const QStringList &path, QList<Item> *items)
{
    for (const KNMenuItem &item : menu.items) {
        if (item.submenu)
            addItems(entry, *item.submenu, path + QStringList{item.title}, items);
        else if (!item.isSeparator)
            items->append({entry, path + QStringList{item.title}, item.action});
    }
}

QAction *actionAt(const QMenu &menu, const QStringList &path)
{
    for (QAction *const action : menu.actions()) {
        if (action->text().replace(QLatin1String("&&"), QLatin1String("&")) == path.first())
            return path.size() == 1 ? action : actionAt(*action->menu(), path.mid(1));
    }
    return nullptr;
}

using Lists = std::vector<KNDatabaseTreeEntry::Children>;

/// Adds the loaded lists of children of the entry and of all entries below it.
void addLists(const Ptr &entry, Lists *lists)
{
    const auto children = entry->childEntries();
    if (!children)
        return;
    lists->push_back(children);
    for (const Ptr &child : *children)
        addLists(child, lists);
}

Lists listsOf(const Ptr &entry)
{
    Lists lists;
    addLists(entry, &lists);
    return lists;
}

/// A window on a server of one edition, with every optional branch of its tree.
class TreeItems : public testing::TestWithParam<const char *>
{
protected:
    TreeItems()
        : m_server({{"--edition", GetParam()}, {}})
    {
        for (const QString &key : {AgentPreference, SecurityPreference})
            KNUserDefaults::standardUserDefaults()->setObject(key, true);
        KNError error;
        auto *const plugin = KNConnectorLoader::load(QStringLiteral(VANTOR_CONNECTOR), &error);
        const VantorDBCPtr details = DesktopTesting::settingsFor(m_server);
        // Keeps its tabs and the version of the server apart from other tests'.
        details->setConnectionId(QStringLiteral("tree-items-") + QLatin1String(GetParam()));
        m_window = new MainWindow(*details, dynamic_cast<KNConnectorUserInterface *>(plugin));
        m_window->show();
        m_panels.answer = {file()};
    }
    ~TreeItems() override
    {
        delete m_window;
        EXPECT_TRUE(WindowTesting::settle());
        KNFileManager::setShared(nullptr);
        for (const QString &key : {AgentPreference, SecurityPreference})
            KNUserDefaults::standardUserDefaults()->removeObject(key);
    }

    QString file() const { return m_folder.filePath(QStringLiteral("out")); }
    KNDatabaseTreeModel &model() const
    {
        return *static_cast<KNDatabaseTreeModel *>(m_window->explorer()->view()->model());
    }

    /// Adds the items of the first entry of each kind at and below this one.
    void collect(const Ptr &entry, const QString &kindAbove, QList<Item> *items)
    {
        // Sections of one class may have different menus; their names do not change from database to
        // database.
        const KNDatabaseTreeEntry &object = *entry;
        const QString className = QString::fromLatin1(typeid(object).name());
        const QString kind =
            kindAbove + QLatin1Char('/') + className +
            (className.contains(QLatin1String("Section")) ? entry->displayName() : QString());
        if (!m_kinds.contains(kind)) {
            m_kinds.insert(kind);
            addItems(entry, entry->contextMenu(), {}, items);
        }
        if (!entry->canHaveChildren())
            return;
        entry->loadEntriesAsync(false);
        EXPECT_TRUE(waitFor([&] { return entry->childEntries() && !entry->isLoadingAsync(); }))
            << entry->displayName().toStdString();
        const auto children = entry->childEntries();
        for (const Ptr &child : *children)
            collect(child, kind, items);
    }

    void select(const Ptr &entry)
    {
        for (Ptr above = entry->parent(); above; above = above->parent())
            m_above.prepend(above);
        for (const Ptr &above : std::exchange(m_above, {}))
            m_window->explorer()->view()->expand(model().indexOf(*above));
        m_window->explorer()->view()->setCurrentIndex(model().indexOf(*entry));
        ASSERT_EQ(m_window->explorer()->currentlySelectedDatabaseTreeEntry(), entry);
    }

    /// Chooses the item in a menu as the explorer shows it.
    void choose(const Item &item)
    {
        ASSERT_NO_FATAL_FAILURE(select(item.entry));
        QMenu menu;
        KNMenuView::fill(menu, item.entry->contextMenu());
        QAction *const action = actionAt(menu, item.path);
        ASSERT_NE(action, nullptr);
        ASSERT_TRUE(action->isEnabled()) << action->toolTip().toStdString();
        action->trigger();
    }

    /// Performs an item, expects its effect, and takes back what it has opened.
    void perform(const Item &item)
    {
        QApplication::clipboard()->clear();
        QFile::remove(file());
        m_alerts = &RecordingAlerts::install();
        m_alerts->answer =
            item.action == QLatin1String("exportDatabaseAsMySQL:") ? std::optional(0) : std::nullopt;
        m_sheets->all.clear();
        m_before = m_window->documents();
        m_listsBefore = listsOf(item.entry);
        QSignalSpy connections(m_window, &MainWindow::connectionsRequested);
        ASSERT_NO_FATAL_FAILURE(choose(item));
        expectEffect(item, connections);
        for (const KNError &error : m_alerts->errors)
            ADD_FAILURE() << error.localizedDescription().toStdString();
        for (const QStringList &message : m_alerts->messages)
            ADD_FAILURE() << message.join(QLatin1Char(' ')).toStdString();
        for (QDialog *const dialog : m_window->findChildren<QDialog *>())
            dialog->reject();
        for (KNDocumentTab *const document : m_window->documents()) {
            if (!m_before.contains(document))
                m_window->tabs()->removeDocument(document);
        }
        EXPECT_TRUE(WindowTesting::settle());
    }

    void expectEffect(const Item &item, const QSignalSpy &connections);
    void expectScript(const Item &item, bool runs);
    void expectDialog(const Item &item);
    void expectReload(const Item &item) const;
    KNDocumentTab *newDocument() const
    {
        for (KNDocumentTab *const document : m_window->documents()) {
            if (!m_before.contains(document))
                return document;
        }
        return nullptr;
    }
    bool isSheetOver() const
    {
        return !m_sheets->all.empty() && m_sheets->all.back()->wasShown && !m_sheets->all.back()->isShown;
    }
    bool isFileWritten() const { return QFile(file()).size() > 0; }

    const SampleServerFixture m_server;
    const QTemporaryDir m_folder;
    RecordingAlerts *m_alerts = &RecordingAlerts::install();
    RecordingFilePanels &m_panels = RecordingFilePanels::install();
    RecordingFileManager &m_fileManager = RecordingFileManager::install();
    const std::unique_ptr<RecordingProgressSheets> m_sheets = std::make_unique<RecordingProgressSheets>();
    QPointer<MainWindow> m_window;
    QSet<QString> m_kinds;
    QList<Ptr> m_above;
    QList<KNDocumentTab *> m_before; ///< the documents before an item was chosen
    Lists m_listsBefore;
};

void TreeItems::expectEffect(const Item &item, const QSignalSpy &connections)
{
    const QString &action = item.action;
    const auto is = [&](const char *name) { return action == QLatin1String(name); };
    if (is("newQuery:")) {
        ASSERT_NE(newDocument(), nullptr);
        EXPECT_EQ(newDocument()->databaseConnectionDetails()->database(),
                  item.entry->databaseConnectionDetails()->database());
    } else if (is("addQueryTab:") || is("addQueryTabWithQueryLoader:") || is("SQLAgentCreateJob:")) {
        expectScript(item, false);
    } else if (is("executeQueryTab:")) {
        expectScript(item, true);
    } else if (is("saveQueryWithQueryLoader:")) {
        EXPECT_TRUE(waitFor([&] { return isFileWritten(); }));
    } else if (is("copyQueryWithQueryLoader:") || is("copyName:")) {
        EXPECT_TRUE(waitFor([] { return !QApplication::clipboard()->text().trimmed().isEmpty(); }));
    } else if (is("exportDatabaseAsMySQL:") || is("exportTableAsCSV:")) {
        EXPECT_TRUE(waitFor([&] { return isSheetOver(); }));
        EXPECT_TRUE(isFileWritten());
        EXPECT_TRUE(m_fileManager.files.contains(file()));
    } else if (is("refreshDatabaseTreeItem:")) {
        expectReload(item);
    } else if (is("openConnectionDialog:")) {
        EXPECT_EQ(connections.size(), 1);
    } else if (is("showActivity:") || is("alterTable:")) {
        EXPECT_NE(newDocument(), nullptr);
        EXPECT_TRUE(WindowTesting::settle());
    } else if (is("toggleAgentBeta:")) {
        EXPECT_FALSE(KNUserDefaults::standardUserDefaults()->boolForKey(AgentPreference));
        expectReload(item);
        KNUserDefaults::standardUserDefaults()->setObject(AgentPreference, true);
    } else if (is("startSQLAgentJob:")) {
        EXPECT_TRUE(waitFor([&] { return isSheetOver(); }));
    } else if (is("stopSQLAgentJob:") || is("confirmDropSQLAgentJob:")) {
        EXPECT_EQ(m_alerts->questions.size(), 1u);
    } else {
        expectDialog(item);
    }
}

/// A query with a whole script has been opened, and run if it `runs`.
void TreeItems::expectScript(const Item &item, bool runs)
{
    ASSERT_TRUE(waitFor([&] { return newDocument() || !m_alerts->messages.empty(); }));
    auto *const query = qobject_cast<QueryTab *>(newDocument());
    ASSERT_NE(query, nullptr);
    EXPECT_FALSE(query->text().trimmed().isEmpty());
    // Only corrected statements create a table type; the query says so.
    const bool isTableType =
        item.entry->parent()->displayName() == QLatin1String("User-Defined Table Types") &&
        item.path.value(1).contains(QLatin1String("CREATE"));
    EXPECT_EQ(query->text().contains(QLatin1String("This script is incomplete")), isTableType)
        << query->text().toStdString();
    if (!runs)
        return;
    EXPECT_TRUE(waitFor([&] { return !query->isRunning() && query->messages()->isComplete(); }));
    EXPECT_EQ(query->messages()->errorCount(), 0) << query->messages()->toPlainText().toStdString();
}

void TreeItems::expectDialog(const Item &item)
{
    const QList<QDialog *> dialogs = m_window->findChildren<QDialog *>();
    ASSERT_EQ(dialogs.size(), 1) << item.action.toStdString();
    EXPECT_TRUE(dialogs.front()->isVisible());
    if (auto *const preview = qobject_cast<KNQueryPreviewDialog *>(dialogs.front())) {
        EXPECT_TRUE(waitFor([&] { return !preview->statements().trimmed().isEmpty(); }));
        return;
    }
    EXPECT_TRUE(WindowTesting::settle()); // it may still read from the server
    EXPECT_TRUE(dialogs.front()->isVisible());
    if (item.action != QLatin1String("showProperties:"))
        return;
    KNError error;
    EXPECT_FALSE(item.entry->propertiesLoader()(&error).isEmpty());
    EXPECT_FALSE(error) << error.localizedDescription().toStdString();
}

void TreeItems::expectReload(const Item &item) const
{
    EXPECT_TRUE(waitFor([&] { return listsOf(item.entry) != m_listsBefore; }));
    EXPECT_TRUE(waitFor([&] { return !item.entry->isLoadingAsync(); }));
}

} // namespace

TEST_P(TreeItems, HaveAnEffectOnEveryEdition)
{
    QList<Item> items;
    collect(m_window->explorer()->root(), {}, &items);
    EXPECT_GT(m_kinds.size(), 20);
    // From the last to the first: refreshing an entry replaces those below it.
    for (auto item = items.crbegin(); item != items.crend(); ++item) {
        SCOPED_TRACE(item->name());
        if (item->action != QLatin1String("disconnect:"))
            perform(*item);
    }
}

TEST_P(TreeItems, DisconnectClosesTheWindow)
{
    const Ptr root = m_window->explorer()->root();
    EXPECT_TRUE(waitFor([&] { return root->childEntries() && !root->isLoadingAsync(); }));
    QSignalSpy connections(m_window, &MainWindow::connectionsRequested);
    ASSERT_NO_FATAL_FAILURE(choose({root, {QStringLiteral("Disconnect")}, {}}));
    EXPECT_TRUE(waitFor([&] { return !m_window; }));
    EXPECT_EQ(connections.size(), 1);
}

INSTANTIATE_TEST_SUITE_P(Server, TreeItems, testing::Values("2000", "2008", "2022", "azure"),
                         [](const auto &edition) { return "Of" + std::string(edition.param); });

} // namespace TreeItemTests
