#pragma once

#include "Desktop/Query/QueryTab.h"
#include "Desktop/Session/QueryHistory.h"
#include "Desktop/Tree/TreeActions.h"

#include <QMainWindow>
#include <QPointer>

class MainWindowActions;
class QSplitter;
class QTabWidget;
class StatusLine;
class TabSession;

/// The window of one connection: the object explorer at the left, query tabs at the right.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    using Settings = TreeActions::Settings;

    /// Takes a copy of the settings, and begins to load the tree.
    explicit MainWindow(const VantorDBC &details);
    ~MainWindow() override;

    const Settings &databaseConnectionDetails() const { return m_details; }
    KNDatabaseTreeViewController *explorer() const { return m_explorer; }
    MainWindowActions *actions() const { return m_actions; }
    /// Carries the actions of the tree's menus out; a connector adds its own.
    KNDatabaseTreeContextHelper &treeContextHelper() const { return *m_treeActions->helper(); }
    QList<QueryTab *> tabs() const;
    /// Null when there is none.
    QueryTab *currentTab() const;

    /// A new tab in front; a null text leaves it empty. `details` decides in which database it begins.
    QueryTab *addTab(const VantorDBC &details, const QString &text = {});
    /// Opens the files, each in a tab of its own; one that is open already comes to the front. Failures are
    /// told.
    void openFiles(const QStringList &paths);

public Q_SLOTS:
    void newTab();
    void chooseFiles();
    /// Asks before anything would be lost.
    void closeTab(QueryTab *tab);
    /// The tab so many places to the right of the one in front, round the end.
    void showNeighbouringTab(int offset);
    void showHistory();
    void showPreferences();
    void showAbout();
    void toggleExplorer();
    void searchObjects();

Q_SIGNALS:
    /// The user wants to see the remembered connections.
    void connectionsRequested();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    QueryTab *makeTab(const VantorDBC &details);
    void observeTab(QueryTab *tab);
    void removeTab(QueryTab *tab);
    void restoreTabs();
    void rememberTabs();
    void updateTabTitle(QueryTab *tab);
    void updateForCurrentTab();
    void updateServer();
    void restoreLayout();
    void saveLayout() const;
    /// Closes the window once no tab has anything against it.
    void askWhetherTabsMayBeLost();
    void closeWhenTabsAgree(const QList<QPointer<QueryTab>> &toAsk);

    const Settings m_details;
    KNDatabaseTreeViewController *const m_explorer;
    QTabWidget *const m_tabWidget;
    QSplitter *const m_splitter;
    StatusLine *const m_statusLine;
    TabSession *const m_session;
    const QueryHistory m_history;
    TreeActions *m_treeActions = nullptr;
    MainWindowActions *m_actions = nullptr;
    int m_untitledCount = 0;
    bool m_mayClose = false;    ///< every tab has agreed
    bool m_mayLoseTabs = false; ///< the user accepts that tabs could not be remembered
};
