#include "Desktop/Main/MainWindow.h"

#include "Desktop/Main/MainWindowActions.h"
#include "Desktop/Main/StatusLine.h"
#include "Desktop/Preferences/PreferencesDialog.h"
#include "Desktop/Session/QueryHistoryDialog.h"
#include "Desktop/Session/TabSession.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNUserDefaults.h"
#include "Recent/KNDBCTabColorHelper.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Alerts/KNFilePanels.h"
#include "UI/DatabaseTree/KNDatabaseTreeViewController.h"
#include "UI/KNPlainToolTip.h"
#include "UI/KNPreferences.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileInfo>
#include <QSplitter>
#include <QTabBar>
#include <QTabWidget>

namespace {

const QString GeometryKey = QStringLiteral("MainWindowGeometry");
const QString SplitterKey = QStringLiteral("MainWindowSplitter");

QString nameOf(const VantorDBC &details)
{
    return details.alias().isEmpty() ? details.host() : details.alias();
}

/// The widget below a strip in the connection's colour, where it has one.
QWidget *withColour(QWidget *widget, const QString &colour)
{
    if (colour.isNull())
        return widget;
    constexpr int StripHeight = 3;
    auto *const strip = new QWidget;
    strip->setFixedHeight(StripHeight);
    strip->setAutoFillBackground(true);
    strip->setPalette(QPalette(QColor(colour)));
    auto *const both = new QWidget;
    auto *const layout = new QVBoxLayout(both);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(strip);
    layout->addWidget(widget, 1);
    return both;
}

} // namespace

MainWindow::MainWindow(const VantorDBC &details)
    : m_details(details.copy())
    , m_explorer(new KNDatabaseTreeViewController)
    , m_tabWidget(new QTabWidget)
    , m_splitter(new QSplitter(Qt::Horizontal))
    , m_statusLine(new StatusLine)
    , m_session(new TabSession(m_details->connectionId(), this))
    , m_history(m_details->connectionId())
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(nameOf(*m_details));
    m_tabWidget->setDocumentMode(true);
    m_tabWidget->setTabsClosable(true);
    m_tabWidget->setMovable(true);
    m_tabWidget->tabBar()->setExpanding(false);
    m_tabWidget->setAccessibleName(tr("Query tabs"));
    m_splitter->addWidget(m_explorer);
    m_splitter->addWidget(m_tabWidget);
    m_splitter->setStretchFactor(1, 1);
    m_splitter->setChildrenCollapsible(false);
    setCentralWidget(withColour(m_splitter, KNDBCTabColorHelper::colorForId(m_details->connectionId())));
    setStatusBar(m_statusLine);
    m_treeActions = new TreeActions(*m_explorer);
    m_actions = new MainWindowActions(*this);

    connect(m_tabWidget, &QTabWidget::currentChanged, this, &MainWindow::updateForCurrentTab);
    connect(m_tabWidget, &QTabWidget::tabCloseRequested, this,
            [this](int index) { closeTab(qobject_cast<QueryTab *>(m_tabWidget->widget(index))); });
    connect(m_tabWidget->tabBar(), &QTabBar::tabMoved, this, &MainWindow::rememberTabs);
    connect(m_session, &TabSession::writingFailed, this, [this](bool failed) {
        if (failed)
            KNAlerts::shared().showMessage(this, tr("The tabs could not be remembered."),
                                           tr("Unsaved texts are only in this window for now. Check that "
                                              "your home folder has room; the program "
                                              "tries again every few seconds."));
    });
    connect(m_treeActions, &TreeActions::queryTabRequested, this,
            [this](const QString &text, const Settings &tabDetails, bool execute) {
                QueryTab *const tab = addTab(*tabDetails, text);
                if (execute)
                    tab->run();
            });
    connect(m_treeActions, &TreeActions::connectionsRequested, this, &MainWindow::connectionsRequested);
    connect(m_treeActions, &TreeActions::disconnectRequested, this, &QWidget::close);

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
    restoreLayout();
    restoreTabs();
}

MainWindow::~MainWindow() = default;

void MainWindow::updateServer()
{
    m_statusLine->setServer(nameOf(*m_details), m_explorer->root()->details());
}

QList<QueryTab *> MainWindow::tabs() const
{
    QList<QueryTab *> tabs;
    for (int i = 0; i < m_tabWidget->count(); ++i)
        tabs.append(qobject_cast<QueryTab *>(m_tabWidget->widget(i)));
    return tabs;
}

QueryTab *MainWindow::currentTab() const
{
    return qobject_cast<QueryTab *>(m_tabWidget->currentWidget());
}

QueryTab *MainWindow::addTab(const VantorDBC &details, const QString &text)
{
    QueryTab *const tab = makeTab(details);
    if (!text.isNull())
        tab->setText(text);
    m_tabWidget->setCurrentWidget(tab);
    tab->setFocus();
    rememberTabs();
    return tab;
}

QueryTab *MainWindow::makeTab(const VantorDBC &details)
{
    auto *const tab = new QueryTab(details);
    tab->setUntitledName(KNFormat("Query %d", ++m_untitledCount));
    m_tabWidget->addTab(tab, QString());
    observeTab(tab);
    updateTabTitle(tab);
    return tab;
}

/// The tabs of the last session, or an empty one.
void MainWindow::restoreTabs()
{
    const QList<TabState> stored =
        KNPreferences::current().reopensTabs ? m_session->storedTabs() : QList<TabState>();
    for (const TabState &state : stored) {
        makeTab(*m_details)->restore(state);
        const int number = state.untitledName.section(QLatin1Char(' '), -1).toInt();
        m_untitledCount = std::max(m_untitledCount, number);
    }
    if (stored.isEmpty()) {
        newTab();
        return;
    }
    currentTab()->setFocus();
    rememberTabs();
    updateForCurrentTab();
}

void MainWindow::rememberTabs()
{
    m_session->setTabs(tabs());
}

void MainWindow::observeTab(QueryTab *tab)
{
    connect(tab, &QueryTab::titleChanged, this, [this, tab] { updateTabTitle(tab); });
    connect(tab, &QueryTab::statusChanged, this, [this, tab] {
        if (tab == currentTab())
            updateForCurrentTab();
    });
    connect(tab, &QueryTab::runFinished, this,
            [this](const QueryHistoryEntry &entry) { m_history.add(entry); });
}

void MainWindow::updateTabTitle(QueryTab *tab)
{
    const int index = m_tabWidget->indexOf(tab);
    if (index < 0)
        return;
    const QString title = tab->title();
    m_tabWidget->setTabText(index, tab->isModified() ? KNFormat("%@ •", title) : title);
    m_tabWidget->setTabToolTip(index, KNPlainToolTip(tab->filePath().isNull() ? title : tab->filePath()));
}

void MainWindow::updateForCurrentTab()
{
    const QueryTab *const tab = currentTab();
    if (tab)
        m_statusLine->showStatus(tab->status());
    else
        m_statusLine->clearStatus();
    m_actions->update();
}

void MainWindow::newTab()
{
    const QueryTab *const tab = currentTab();
    addTab(tab ? *tab->databaseConnectionDetails() : *m_details);
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
        const QString absolute = QFileInfo(path).absoluteFilePath();
        const QList<QueryTab *> open = tabs();
        const auto found = std::find_if(open.begin(), open.end(),
                                        [&](const QueryTab *tab) { return tab->filePath() == absolute; });
        if (found != open.end()) {
            m_tabWidget->setCurrentWidget(*found);
            continue;
        }
        KNError error;
        const bool isUnused = currentTab() && currentTab()->isUnused();
        QueryTab *const tab = isUnused ? currentTab() : addTab(*m_details);
        if (tab->openFile(absolute, &error))
            continue;
        if (!isUnused)
            removeTab(tab);
        KNAlerts::shared().showError(this, error);
    }
}

void MainWindow::closeTab(QueryTab *tab)
{
    tab->prepareToClose([self = QPointer(this), tab = QPointer(tab)] {
        if (self && tab)
            self->removeTab(tab);
    });
}

void MainWindow::removeTab(QueryTab *tab)
{
    m_tabWidget->removeTab(m_tabWidget->indexOf(tab));
    tab->deleteLater();
    rememberTabs();
}

void MainWindow::showNeighbouringTab(int offset)
{
    const int count = m_tabWidget->count();
    if (count > 0)
        m_tabWidget->setCurrentIndex((m_tabWidget->currentIndex() + offset + count) % count);
}

void MainWindow::showHistory()
{
    auto *const dialog = new QueryHistoryDialog(m_history, *m_details, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QueryHistoryDialog::insertRequested, this, [this](const QString &text) {
        if (QueryTab *const tab = currentTab())
            tab->insertText(text);
    });
    connect(dialog, &QueryHistoryDialog::newTabRequested, this, [this](const QString &text) {
        newTab();
        currentTab()->insertText(text);
    });
    dialog->show();
}

void MainWindow::showPreferences()
{
    auto *const dialog = new PreferencesDialog(this);
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
    else if (QueryTab *const tab = currentTab())
        tab->setFocus();
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
    resize(1280, 800);
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

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (m_mayClose) {
        if (m_session->flush() || m_mayLoseTabs) {
            saveLayout();
            event->accept();
            return;
        }
        event->ignore();
        askWhetherTabsMayBeLost();
        return;
    }
    event->ignore();
    QList<QPointer<QueryTab>> toAsk;
    for (QueryTab *const tab : tabs())
        toAsk.append(tab);
    closeWhenTabsAgree(toAsk);
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

void MainWindow::closeWhenTabsAgree(const QList<QPointer<QueryTab>> &toAsk)
{
    if (toAsk.isEmpty()) {
        m_mayClose = true;
        // This may still be inside the event that asked for it.
        QMetaObject::invokeMethod(this, &QWidget::close, Qt::QueuedConnection);
        return;
    }
    const auto goOn = [self = QPointer(this), rest = toAsk.mid(1)] {
        if (self)
            self->closeWhenTabsAgree(rest);
    };
    QueryTab *const tab = toAsk.first();
    if (tab)
        tab->prepareToEndSession(goOn);
    else
        goOn();
}
