#include "Desktop/Main/MainWindow.h"

#include "Database/VantorDatabaseConnectionPool.h"
#include "Desktop/Import/ImportActions.h"
#include "Desktop/Main/ConnectionStrip.h"
#include "Desktop/Main/DocumentTabs.h"
#include "Desktop/Main/EncryptionMark.h"
#include "Desktop/Main/MainWindowActions.h"
#include "Desktop/Main/RecentFiles.h"
#include "Desktop/Main/StatusLine.h"
#include "Desktop/Preferences/PreferencesDialog.h"
#include "Desktop/Preferences/ShortcutsDialog.h"
#include "Desktop/Query/EditorMenu.h"
#include "Desktop/Query/QueryDocument.h"
#include "Desktop/Query/QueryTab.h"
#include "Desktop/Session/QueryHistoryDialog.h"
#include "Desktop/Session/TabSession.h"
#include "Desktop/Tree/TreeActions.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "Foundation/KNUserDefaults.h"
#include "Recent/SQLRecentConnectionList.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Alerts/KNFilePanels.h"
#include "UI/Alerts/KNUserNotifications.h"
#include "UI/DatabaseTree/KNDatabaseTreeViewController.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/KNConnectorUserInterface.h"
#include "UI/KNPreferences.h"
#include "UI/Snippets/KNSnippetStore.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileInfo>
#include <QKeyEvent>
#include <QScreen>
#include <QSplitter>

#include <algorithm>

namespace {

const QString GeometryKey = QStringLiteral("MainWindowGeometry");
const QString SplitterKey = QStringLiteral("MainWindowSplitter");
constexpr int NoticeTime = 10'000; // milliseconds

QString nameOf(const VantorDBC &details)
{
    return details.alias().isEmpty() ? details.host() : details.alias();
}

} // namespace

MainWindow::MainWindow(const VantorDBC &details, const KNConnectorUserInterface *connector)
    : m_details(details.copy())
    , m_connector(connector)
    , m_explorer(new KNDatabaseTreeViewController)
    , m_tabs(new DocumentTabs)
    , m_splitter(new QSplitter(Qt::Horizontal))
    , m_statusLine(new StatusLine)
    , m_session(new TabSession(m_details->connectionId(), this))
    , m_history(m_details->connectionId())
    , m_treeActions(new TreeActions(*this, this))
{
    arrange();
    m_imports = new ImportActions(*this, *this, treeContextHelper(), m_connector,
                                  [this] { return currentDocument(); });
    m_actions = new MainWindowActions(*this);
    connectParts();
    if (m_connector)
        m_connector->addTreeActions(treeContextHelper(), *this);
    showTree();
    restoreLayout();
    restoreDocuments();
    connect(m_tabs, &DocumentTabs::documentsChanged, this, [this] { m_session->setTabs(documents()); });
    connect(m_tabs, &QTabWidget::currentChanged, this,
            [this] { m_session->setCurrentTab(currentDocument()); });
    m_session->setTabs(documents());
    m_session->setCurrentTab(currentDocument());
}

MainWindow::~MainWindow() = default;

void MainWindow::arrange()
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(nameOf(*m_details));
    m_splitter->addWidget(m_explorer);
    m_splitter->addWidget(m_tabs);
    m_splitter->setStretchFactor(1, 1);
    m_splitter->setChildrenCollapsible(false);
    setCentralWidget(ConnectionStrip::above(m_splitter, *m_details));
    setStatusBar(m_statusLine);
}

void MainWindow::connectParts()
{
    connect(m_tabs, &DocumentTabs::currentStatusChanged, this, &MainWindow::updateForCurrentDocument);
    connect(m_tabs, &QTabWidget::currentChanged, this, &MainWindow::focusDocument);
    connect(m_tabs, &DocumentTabs::reopenRequested, this, &MainWindow::reopenClosedDocument);
    connect(m_tabs, &DocumentTabs::duplicateRequested, this, &MainWindow::duplicateDocument);
    connect(m_tabs, &DocumentTabs::documentDropped, this, &MainWindow::adoptDocument);
    connect(m_tabs, &DocumentTabs::newWindowRequested, this, &MainWindow::newWindowRequested);
    connect(m_session, &TabSession::writingFailed, this, [this](bool failed) {
        if (failed)
            KNAlerts::shared().showMessage(this, tr("The tabs could not be remembered."),
                                           tr("Unsaved texts are only in this window for now. Check that "
                                              "your home folder has room; the program "
                                              "tries again every few seconds."));
    });
    connect(m_explorer, &KNDatabaseTreeViewController::passwordEntered, this, &MainWindow::rememberPassword);
    connect(m_treeActions, &TreeActions::connectionsRequested, this, &MainWindow::connectionsRequested);
    connect(m_treeActions, &TreeActions::disconnectRequested, this, &MainWindow::disconnectFromServer);
}

void MainWindow::showTree()
{
    const auto root = m_details->createRootDatabaseTreeNode();
    root->setDatabaseConnectionDetails(m_details.get());
    root->setContextHelper(m_treeActions->helper());
    m_explorer->setRoot(root);
    connect(m_explorer->view()->model(), &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex &index) {
                if (!index.parent().isValid())
                    updateServer();
            });
    m_statusLine->setLogin(m_details->username());
    updateServer();
}

void MainWindow::rememberPassword(const QString &password)
{
    if (!m_connector)
        return;
    SQLRecentConnectionList &list = m_connector->recentConnections();
    for (const SQLRecentConnectionPtr &connection : list.connections()) {
        if (connection->connectionId != m_details->connectionId())
            continue;
        const SQLRecentConnectionPtr changed = connection->copy();
        changed->password = password;
        return list.update(changed);
    }
}

void MainWindow::updateServer()
{
    const auto root = m_explorer->root();
    m_statusLine->setServer(nameOf(*m_details), root->childEntries() ? root->details() : tr("Connecting…"));
    updateEncryption();
}

/// Sessions of documents may be protected in another way than that of the tree: the weakest counts.
void MainWindow::updateEncryption()
{
    m_statusLine->encryption()->setEncryption(
        VantorDatabaseConnectionPool::sharedInstance()->encryptionOf(*m_details),
        m_details->sshTunnelModel().host);
}

KNDatabaseTreeContextHelper &MainWindow::treeContextHelper() const
{
    return *m_treeActions->helper();
}

KNDocumentTab *MainWindow::currentDocument() const
{
    return m_tabs->currentDocument();
}

QList<KNDocumentTab *> MainWindow::documents() const
{
    return m_tabs->documents();
}

void MainWindow::openDocument(std::unique_ptr<KNDocumentTab> document)
{
    showDocument(append(std::move(document)));
}

void MainWindow::showDocument(KNDocumentTab *document)
{
    m_tabs->setCurrentWidget(document);
    document->setFocus();
}

/// The only code that distinguishes queries from other documents.
std::unique_ptr<QueryTab> MainWindow::makeQueryTab(const VantorDBC &details)
{
    auto tab = std::make_unique<QueryTab>(details);
    connectQuery(tab.get());
    connect(tab->document(), &QueryDocument::pathChanged, &RecentFiles::add);
    return tab;
}

void MainWindow::connectQuery(QueryTab *tab)
{
    connect(tab, &QueryTab::runFinished, this,
            [this](const QueryHistoryEntry &entry) { m_history.add(entry); });
    if (m_connector)
        connectEditorMenu(*tab, *this, *m_connector, m_treeActions->helper());
}

void MainWindow::adoptDocument(KNDocumentTab *document, int index)
{
    auto *const query = qobject_cast<QueryTab *>(document);
    auto *const source = query ? qobject_cast<MainWindow *>(query->window()) : nullptr;
    if (!source || source == this || source->m_details->connectionId() != m_details->connectionId() ||
        !source->m_details->usesSameLogin(*m_details))
        return;
    KNDocumentTab *const unused =
        currentDocument() && currentDocument()->isUnused() ? currentDocument() : nullptr;
    source->m_tabs->takeDocument(query);
    query->disconnect(source);
    query->editor()->disconnect(source);
    connectQuery(query);
    m_tabs->insertDocument(index, query);
    showDocument(query);
    if (unused)
        m_tabs->removeDocument(unused);
    activateWindow(); // a drop does not do that everywhere
}

QueryTab *MainWindow::addQueryTab(const VantorDBC &details, const QString &text, const QString &name)
{
    auto made = makeQueryTab(details);
    QueryTab *const tab = made.get();
    tab->setUntitledName(name.isNull() ? KNFormat(tr("Query %d"), ++m_untitledCount) : name);
    if (!text.isNull())
        tab->setText(text);
    openDocument(std::move(made));
    return tab;
}

/// A query of the object explorer that is open and unchanged is run again.
void MainWindow::openQueryText(const QString &text, const Settings &details, QueryUse use,
                               const QString &name)
{
    QueryTab *tab = use == QueryUse::Execute ? unchangedQuery(text, *details, name) : nullptr;
    if (tab)
        showDocument(tab);
    else
        tab = addQueryTab(*details, text, name);
    if (use == QueryUse::Execute)
        tab->run();
}

QueryTab *MainWindow::unchangedQuery(const QString &text, const VantorDBC &details, const QString &name) const
{
    for (KNDocumentTab *const document : documents()) {
        auto *const tab = qobject_cast<QueryTab *>(document);
        if (tab && !name.isNull() && tab->title() == name && tab->filePath().isNull() && !tab->isModified() &&
            !tab->isRunning() && tab->status().database == details.database() && tab->text() == text)
            return tab;
    }
    return nullptr;
}

void MainWindow::openConnection(const VantorDBC &details)
{
    Q_EMIT connectionRequested(details.copy());
}

MainWindow::TreeEntry MainWindow::selectedTreeEntry() const
{
    return m_explorer->currentlySelectedDatabaseTreeEntry();
}

void MainWindow::refreshTreeEntry(const TreeEntry &entry)
{
    m_explorer->refreshDatabaseTreeItem(entry);
}

void MainWindow::deselectTree()
{
    m_explorer->deselectAll();
}

void MainWindow::showNotice(const QString &text)
{
    m_statusLine->showMessage(text, NoticeTime);
}

void MainWindow::notifyUser(const QString &title, const QString &text)
{
    showNotice(text);
    KNUserNotifications::shared().notify(title, text);
}

/// Restores the documents of the last session, or opens an empty query.
void MainWindow::restoreDocuments()
{
    if (KNPreferences::current().reopensTabs) {
        for (const KNDocumentState &state : m_session->storedTabs()) {
            KNDocumentTab *const restored = restoreDocument(state);
            if (restored && state.id == m_session->storedCurrentTab())
                m_tabs->setCurrentWidget(restored);
        }
    }
    if (documents().isEmpty())
        newQuery();
    else
        currentDocument()->setFocus();
    updateForCurrentDocument();
}

/// The restored document; null if its kind is not known.
KNDocumentTab *MainWindow::restoreDocument(const KNDocumentState &state)
{
    if (state.kind == QueryTab::Kind) {
        auto tab = makeQueryTab(*m_details);
        tab->restore(TabState::fromDocumentState(state));
        const int number = tab->state().untitledName.section(QLatin1Char(' '), -1).toInt();
        m_untitledCount = std::max(m_untitledCount, number);
        return append(std::move(tab));
    }
    if (auto document = m_connector ? m_connector->restoreDocument(state, *this) : nullptr)
        return append(std::move(document));
    KNLogHelper::sharedInstance()->logMessage("A document of the kind %@ was not restored.", state.kind);
    return nullptr;
}

KNDocumentTab *MainWindow::append(std::unique_ptr<KNDocumentTab> document)
{
    KNDocumentTab *const appended = document.release();
    m_tabs->insertDocument(-1, appended);
    return appended;
}

void MainWindow::reopenClosedDocument()
{
    const auto state = m_tabs->takeClosedDocument();
    if (KNDocumentTab *const document = state ? restoreDocument(*state) : nullptr)
        showDocument(document);
}

void MainWindow::duplicateDocument(KNDocumentTab *document)
{
    addQueryTab(*document->databaseConnectionDetails(), document->textForCopy());
}

void MainWindow::updateForCurrentDocument()
{
    if (const KNDocumentTab *const document = currentDocument())
        m_statusLine->showStatus(document->status());
    else
        m_statusLine->clearStatus();
    updateEncryption();
    m_actions->update();
}

/// Moves the focus into the current document, into the tree if none is open.
void MainWindow::focusDocument()
{
    if (KNDocumentTab *const document = currentDocument())
        document->setFocus();
    else
        m_explorer->focusTree();
}

/// Escape that no bar, box or running query has used leads back to the document.
void MainWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        focusDocument();
    else
        QMainWindow::keyPressEvent(event);
}

void MainWindow::newQuery()
{
    const KNDocumentTab *const document = currentDocument();
    addQueryTab(document ? *document->databaseConnectionDetails() : *m_details);
}

void MainWindow::chooseFiles()
{
    const KNFilePanels::Request request{
        tr("Open scripts"), {}, {tr("SQL scripts (*.sql)"), tr("All files (*)")}};
    KNFilePanels::shared().chooseFilesToOpen(this, request,
                                             [self = QPointer(this)](const QStringList &paths) {
                                                 if (self)
                                                     self->openFiles(paths);
                                             });
}

void MainWindow::openFiles(const QStringList &paths)
{
    for (const QString &path : paths) {
        if (const KNError error = openFile(QFileInfo(path).absoluteFilePath()))
            KNAlerts::shared().showError(this, error);
    }
}

/// The file replaces an unused current document.
KNError MainWindow::openFile(const QString &path)
{
    const QList<KNDocumentTab *> open = documents();
    const auto found = std::find_if(open.begin(), open.end(), [&](const KNDocumentTab *document) {
        return document->filePath() == path;
    });
    if (found != open.end()) {
        showDocument(*found);
        return {};
    }
    KNDocumentTab *const unused =
        currentDocument() && currentDocument()->isUnused() ? currentDocument() : nullptr;
    auto tab = makeQueryTab(unused ? *unused->databaseConnectionDetails() : *m_details);
    KNError error;
    if (!tab->openFile(path, &error))
        return error;
    KNDocumentTab *const opened = tab.release();
    m_tabs->insertDocument(unused ? m_tabs->currentIndex() : -1, opened);
    showDocument(opened);
    if (unused)
        m_tabs->removeDocument(unused);
    return {};
}

void MainWindow::insertText(const QString &text)
{
    if (KNDocumentTab *const document = currentDocument(); document && document->insertText(text))
        return;
    newQuery();
    currentDocument()->insertText(text);
}

void MainWindow::showHistory()
{
    auto *const dialog = new QueryHistoryDialog(m_history, *m_details, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QueryHistoryDialog::insertRequested, this, &MainWindow::insertText);
    connect(dialog, &QueryHistoryDialog::newTabRequested, this, [this](const QString &text) {
        newQuery();
        currentDocument()->insertText(text);
    });
    dialog->show();
}

void MainWindow::showPreferences()
{
    auto *const dialog =
        new PreferencesDialog(m_connector ? m_connector->preferences() : KNConnectorPreferences(), this,
                              KNSnippetStore::forSettings(*m_details));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void MainWindow::showShortcuts()
{
    auto *const dialog = new ShortcutsDialog(m_actions->shortcuts(), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void MainWindow::showAbout()
{
    KNAlerts::shared().showMessage(this, KNFormat("Vantor %@", QApplication::applicationVersion()),
                                   tr("A client for Microsoft SQL Server.\n\nFree software under the GNU "
                                      "General Public License, version 3 or "
                                      "later."));
}

void MainWindow::toggleExplorer()
{
    m_explorer->setVisible(m_explorer->isHidden());
    if (!m_explorer->isHidden())
        m_explorer->focusTree();
    else
        focusDocument();
}

void MainWindow::searchObjects()
{
    m_explorer->show();
    m_explorer->focusSearchField();
}

void MainWindow::restoreLayout()
{
    const auto stored = [](const QString &key) {
        return QByteArray::fromBase64(KNUserDefaults::standardUserDefaults()->stringForKey(key).toLatin1());
    };
    constexpr QSize Frame(8, 40); // about; known only when the window is shown
    resize(QSize(1280, 800).boundedTo(screen()->availableSize() - Frame));
    m_splitter->setSizes({300, 980});
    restoreGeometry(stored(GeometryKey));
    m_splitter->restoreState(stored(SplitterKey));
}

void MainWindow::saveLayout() const
{
    KNUserDefaults *const defaults = KNUserDefaults::standardUserDefaults();
    defaults->setObject(GeometryKey, QString::fromLatin1(saveGeometry().toBase64()));
    defaults->setObject(SplitterKey, QString::fromLatin1(m_splitter->saveState().toBase64()));
}

void MainWindow::disconnectFromServer()
{
    m_isDisconnecting = true;
    close();
    m_isDisconnecting = false;
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (m_mayClose) {
        if (m_session->flush() || m_mayLoseTabs) {
            saveLayout();
            if (m_returnsToConnections)
                Q_EMIT connectionsRequested(); // before the last window is closed
            event->accept();
            return;
        }
        event->ignore();
        askWhetherTabsMayBeLost();
        return;
    }
    event->ignore();
    m_tabs->prepareToEndSession([this, isDisconnecting = m_isDisconnecting] {
        m_mayClose = true;
        m_returnsToConnections = isDisconnecting;
        // Deferred: the event that requested it may still be processed.
        QMetaObject::invokeMethod(this, &QWidget::close, Qt::QueuedConnection);
    });
}

void MainWindow::askWhetherTabsMayBeLost()
{
    const KNAlerts::Question question = {
        tr("The tabs could not be remembered."),
        tr("Unsaved texts would be lost. Check that your home folder has room."),
        {tr("Keep Window"), tr("Close Anyway")}};
    KNAlerts::shared().ask(this, question, [this](int button) {
        m_mayClose = m_mayLoseTabs = button == 1;
        if (m_mayClose)
            QMetaObject::invokeMethod(this, &QWidget::close, Qt::QueuedConnection);
    });
}
