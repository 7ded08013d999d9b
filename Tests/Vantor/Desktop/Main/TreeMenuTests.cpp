#include "Connector/KNConnectorLoader.h"
#include "Connector/KNConnectorPlugin.h"
#include "DatabaseTree/DatabaseTreeEntryServerRoot.h"
#include "DatabaseTree/KNDatabaseTreeContextHelper.h"
#include "DatabaseTree/KNMenu.h"
#include "Desktop/Query/QueryTab.h"
#include "Foundation/KNUserDefaults.h"
#include "Support/PrintQt.h"
#include "Support/WindowTesting.h"
#include "UI/DatabaseTree/KNDatabaseTreeViewController.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/KNConnectorUserInterface.h"
#include "UI/Menus/KNMenuView.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDialog>
#include <QMenu>
#include <QSet>

namespace {

const char *const TreePreferences[] = {"MSSQLAgentEnabled", "MSSQLShowSecurity"};

/// A window with the connector's actions on a server of one edition, with every optional branch shown.
class MenusOfTree : public testing::TestWithParam<const char *>
{
protected:
    MenusOfTree()
        : m_server({{"--edition", GetParam()}, {}})
    {
        for (const char *const key : TreePreferences)
            KNUserDefaults::standardUserDefaults()->setObject(QString::fromLatin1(key), true);
        KNError error;
        auto *const plugin = KNConnectorLoader::load(QStringLiteral(VANTOR_CONNECTOR), &error);
        const VantorDBCPtr details = DesktopTesting::settingsFor(m_server);
        // Keeps its tabs and the version of the server apart from other tests'.
        details->setConnectionId(QStringLiteral("menus-of-tree-") + QLatin1String(GetParam()));
        m_window = new MainWindow(*details, dynamic_cast<KNConnectorUserInterface *>(plugin));
    }
    ~MenusOfTree() override
    {
        delete m_window;
        EXPECT_TRUE(WindowTesting::settle());
        for (const char *const key : TreePreferences)
            KNUserDefaults::standardUserDefaults()->removeObject(QString::fromLatin1(key));
    }

    /// Loads the entry and everything below it.
    void visit(const KNDatabaseTreeEntry::Ptr &entry)
    {
        ++m_visited;
        inspect(entry->contextMenu(), entry->displayName());
        if (!entry->canHaveChildren())
            return;
        entry->loadEntriesAsync(false);
        EXPECT_TRUE(WindowTesting::waitFor([&] { return entry->childEntries() && !entry->isLoadingAsync(); }))
            << entry->displayName().toStdString();
        for (const KNDatabaseTreeEntry::Ptr &child : *entry->childEntries())
            visit(child);
    }

    /// An item has an effect, or its tool tip says why it has none. No item waits for code.
    void inspect(const KNMenu &menu, const QString &path)
    {
        for (const KNMenuItem &item : menu.items) {
            if (item.isSeparator)
                continue;
            const std::string name = (path + QLatin1Char('/') + item.title).toStdString();
            EXPECT_TRUE(item.isEnabled()) << name;
            if (item.submenu) {
                inspect(*item.submenu, path + QLatin1Char('/') + item.title);
                continue;
            }
            EXPECT_TRUE(item.target && item.target->knowsAction(item.action))
                << name << ' ' << item.action.toStdString();
            m_actions.insert(item.action);
        }
    }

    const SampleServerFixture m_server;
    MainWindow *m_window = nullptr;
    int m_visited = 0;
    QSet<QString> m_actions;
};

} // namespace

TEST_P(MenusOfTree, HoldNoItemWithoutAnAction)
{
    visit(m_window->explorer()->root());
    EXPECT_GT(m_visited, 100);
    for (const char *const action : {"exportDatabaseAsMySQL:", "exportTableAsCSV:", "executeStoredProcedure:",
                                     "generateScripts:", "toggleAgentBeta:", "importIntoDatabase:"})
        EXPECT_TRUE(m_actions.contains(QString::fromLatin1(action))) << action;
}

INSTANTIATE_TEST_SUITE_P(Server, MenusOfTree, testing::Values("2000", "2008", "2022", "azure"),
                         [](const auto &edition) { return "Of" + std::string(edition.param); });

TEST(EditorContextMenu, OffersTheProcedureThatTheQueryNames)
{
    KNError error;
    auto *const plugin = KNConnectorLoader::load(QStringLiteral(VANTOR_CONNECTOR), &error);
    const auto details = DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"));
    details->setConnectionId(QStringLiteral("editor-context-menu"));
    auto *const window = new MainWindow(*details, dynamic_cast<KNConnectorUserInterface *>(plugin));
    QueryTab *const query = window->addQueryTab(*details, QStringLiteral("EXEC sales.PlaceOrder"));
    query->editor()->selectRange({8, 0});
    QContextMenuEvent byKey(QContextMenuEvent::Keyboard, QPoint(5, 5), QPoint(5, 5));
    QApplication::sendEvent(query->editor()->viewport(), &byKey);
    auto *const menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    QAction *execute = nullptr;
    for (QAction *const action : menu->actions()) {
        if (action->objectName() == QStringLiteral("executeStoredProcedure:"))
            execute = action;
    }
    ASSERT_NE(execute, nullptr);
    EXPECT_TRUE(execute->isEnabled());
    execute->trigger();
    menu->close();
    EXPECT_TRUE(WindowTesting::waitFor([&] {
        QWidget *const sheet = window->findChild<QDialog *>();
        return sheet && sheet->windowTitle() == QStringLiteral("Execute Stored Procedure");
    }));
    delete window;
    EXPECT_TRUE(WindowTesting::settle());
}
