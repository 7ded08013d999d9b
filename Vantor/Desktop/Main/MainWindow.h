#pragma once

#include "Desktop/Session/QueryHistory.h"
#include "UI/Workspace/KNDocumentState.h"
#include "UI/Workspace/KNWorkspace.h"

#include <QMainWindow>

class DocumentTabs;
class ImportActions;
class KNConnectorUserInterface;
class KNDatabaseTreeContextHelper;
class KNDatabaseTreeViewController;
class MainWindowActions;
class QSplitter;
class QueryTab;
class StatusLine;
class TabSession;
class TreeActions;

/// The window of one connection: the object explorer at the left, the tabs of the documents at the right.
class MainWindow : public QMainWindow, public KNWorkspace
{
    Q_OBJECT

public:
    /// Copies the settings and starts to load the tree. `connector` adds its actions to the tree and restores
    /// its documents; null for neither.
    explicit MainWindow(const VantorDBC &details, const KNConnectorUserInterface *connector = nullptr);
    ~MainWindow() override;

    KNDatabaseTreeViewController *explorer() const { return m_explorer; }
    MainWindowActions *actions() const { return m_actions; }
    DocumentTabs *tabs() const { return m_tabs; }
    ImportActions *imports() const { return m_imports; }
    /// Performs the actions of the tree's menus.
    KNDatabaseTreeContextHelper &treeContextHelper() const;
    /// Null if no document is open.
    KNDocumentTab *currentDocument() const;

    /// Opens a query tab in the foreground; a null text leaves it empty, a null name numbers it. `details`
    /// determines its initial database.
    QueryTab *addQueryTab(const VantorDBC &details, const QString &text = {}, const QString &name = {});
    /// Opens each file in a query tab; activates the tab of a file that is already open. Shows an error for
    /// each file that cannot be read.
    void openFiles(const QStringList &paths);

    /// Takes a query over from another window of this connection, with its session and results; does nothing
    /// for other documents. A position of -1 appends it.
    void adoptDocument(KNDocumentTab *document, int index = -1);

    const Settings &databaseConnectionDetails() const override { return m_details; }
    void openQueryText(const QString &text, const Settings &details, QueryUse use,
                       const QString &name) override;
    void openDocument(std::unique_ptr<KNDocumentTab> document) override;
    QList<KNDocumentTab *> documents() const override;
    void showDocument(KNDocumentTab *document) override;
    void openConnection(const VantorDBC &details) override;
    QWidget *sheetParent() override { return this; }
    TreeEntry selectedTreeEntry() const override;
    void refreshTreeEntry(const TreeEntry &entry) override;
    void deselectTree() override;
    void showNotice(const QString &text) override;
    void notifyUser(const QString &title, const QString &text) override;

public Q_SLOTS:
    void newQuery();
    void chooseFiles();
    /// Opens the document again that was closed last.
    void reopenClosedDocument();
    /// Opens a query with the document's text.
    void duplicateDocument(KNDocumentTab *document);
    void showHistory();
    void showPreferences();
    void showShortcuts();
    void showAbout();
    void toggleExplorer();
    void searchObjects();
    /// Closes the window and returns to the remembered connections, unless the user keeps a document.
    void disconnectFromServer();

Q_SIGNALS:
    /// The user requested the window of the remembered connections.
    void connectionsRequested();
    /// An action requested a window with these settings.
    void connectionRequested(const VantorDBCPtr &details);
    /// The user wants this document of the window in a new one.
    void newWindowRequested(KNDocumentTab *document);

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void arrange();
    void connectParts();
    void showTree();
    void connectQuery(QueryTab *tab);
    std::unique_ptr<QueryTab> makeQueryTab(const VantorDBC &details);
    QueryTab *unchangedQuery(const QString &text, const VantorDBC &details, const QString &name) const;
    KNError openFile(const QString &path);
    void insertText(const QString &text);
    KNDocumentTab *append(std::unique_ptr<KNDocumentTab> document);
    void restoreDocuments();
    KNDocumentTab *restoreDocument(const KNDocumentState &state);
    void updateForCurrentDocument();
    void focusDocument();
    void rememberPassword(const QString &password);
    void updateServer();
    void updateEncryption();
    void restoreLayout();
    void saveLayout() const;
    void askWhetherTabsMayBeLost();

    const Settings m_details;
    const KNConnectorUserInterface *const m_connector; ///< may be null
    KNDatabaseTreeViewController *const m_explorer;
    DocumentTabs *const m_tabs;
    QSplitter *const m_splitter;
    StatusLine *const m_statusLine;
    TabSession *const m_session;
    const QueryHistory m_history;
    TreeActions *const m_treeActions;
    MainWindowActions *m_actions = nullptr;
    ImportActions *m_imports = nullptr;
    int m_untitledCount = 0;
    bool m_isDisconnecting = false;      ///< while disconnectFromServer() closes the window
    bool m_returnsToConnections = false; ///< once the window has closed
    bool m_mayClose = false;             ///< all documents have agreed to close
    bool m_mayLoseTabs = false;          ///< the user has accepted that tabs could not be saved
};
