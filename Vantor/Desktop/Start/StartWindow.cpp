#include "Desktop/Start/StartWindow.h"

#include "Desktop/Start/RecentConnectionDelegate.h"
#include "Desktop/Start/RecentConnectionsModel.h"
#include "Foundation/KNFormat.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Connecting/ConnectionWindowController.h"
#include "UI/Connecting/KNConnectionStoreLabel.h"
#include "UI/Connecting/KNLoginWindowController.h"
#include "UI/KNConnectorUserInterface.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QSortFilterProxyModel>

StartWindow::StartWindow(const KNConnectorUserInterface &connector, QWidget *parent)
    : QWidget(parent)
    , m_connector(connector)
    , m_model(new RecentConnectionsModel(connector.recentConnections(), this))
    , m_filtered(new QSortFilterProxyModel(this))
    , m_filter(new QLineEdit)
    , m_view(new QListView)
    , m_hint(new QLabel)
    , m_state(new KNConnectionStoreLabel)
    , m_tryAgain(new QPushButton(tr("Try &Again")))
    , m_connect(new QPushButton(tr("&Connect")))
    , m_listChanged(KNNotificationCenter::defaultCenter()->addObserver(
          SQLRecentConnectionList::ChangedNotificationName,
          [this](const QString &, const QVariantMap &) { showList(); }))
{
    setWindowTitle(tr("Connections"));
    m_filtered->setSourceModel(m_model);
    m_filtered->setFilterRole(RecentConnectionsModel::SearchRole);
    m_filtered->setFilterCaseSensitivity(Qt::CaseInsensitive);
    m_filter->setPlaceholderText(tr("Filter connections"));
    m_filter->setAccessibleName(tr("Filter connections"));
    m_filter->setClearButtonEnabled(true);
    m_filter->installEventFilter(this);
    m_view->setModel(m_filtered);
    m_view->setItemDelegate(new RecentConnectionDelegate(m_view));
    m_view->setAccessibleName(tr("Connections"));
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    layOut();
    makeContextMenu();

    connect(m_filter, &QLineEdit::textChanged, this, [this](const QString &text) {
        m_filtered->setFilterFixedString(text);
        if (!m_view->currentIndex().isValid())
            m_view->setCurrentIndex(m_filtered->index(0, 0));
        showState();
    });
    connect(m_filter, &QLineEdit::returnPressed, this, &StartWindow::connectToSelected);
    connect(m_view, &QListView::activated, this, &StartWindow::connectToSelected);
    connect(m_view->selectionModel(), &QItemSelectionModel::currentChanged, this, &StartWindow::showState);
    connect(m_connect, &QPushButton::clicked, this, &StartWindow::connectToSelected);
    m_connect->setDefault(true); // see keyPressEvent()
    connect(m_tryAgain, &QPushButton::clicked, this, [this] { m_connector.recentConnections().tryAgain(); });
    showList();
    m_view->setFocus();
}

StartWindow::~StartWindow() = default;

void StartWindow::layOut()
{
    auto *const newConnection = new QPushButton(tr("&New Connection…"));
    auto *const sample = new QPushButton(tr("Try the &Sample Server"));
    sample->setToolTip(tr("Starts a small server on this computer, with two sample databases"));
    connect(newConnection, &QPushButton::clicked, this, &StartWindow::newConnection);
    connect(sample, &QPushButton::clicked, this, &StartWindow::sampleServerRequested);
    m_hint->setAlignment(Qt::AlignCenter);
    m_hint->setWordWrap(true);
    m_hint->setTextFormat(Qt::PlainText);
    m_hint->setMargin(fontMetrics().height());

    m_hint->setForegroundRole(QPalette::PlaceholderText);
    auto *const overList = new QVBoxLayout(m_view->viewport());
    overList->addWidget(m_hint);
    auto *const state = new QHBoxLayout;
    state->addWidget(m_state, 1);
    state->addWidget(m_tryAgain);
    auto *const buttons = new QHBoxLayout;
    buttons->addWidget(newConnection);
    buttons->addWidget(sample);
    buttons->addStretch();
    buttons->addWidget(m_connect);
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(m_filter);
    layout->addWidget(m_view, 1);
    layout->addLayout(state);
    layout->addLayout(buttons);
    resize(fontMetrics().averageCharWidth() * 90, fontMetrics().height() * 28);
}

void StartWindow::makeContextMenu()
{
    const auto add = [this](const QString &title, const QKeySequence &shortcut, void (StartWindow::*slot)()) {
        auto *const action = new QAction(title, m_view);
        action->setShortcut(shortcut);
        action->setShortcutContext(Qt::WidgetShortcut);
        connect(action, &QAction::triggered, this, slot);
        m_view->addAction(action);
    };
    // The view handles the Return key.
    add(tr("Connect"), {}, &StartWindow::connectToSelected);
    add(tr("Edit…"), QKeySequence(Qt::Key_F2), &StartWindow::editSelected);
    add(tr("Duplicate"), QKeySequence(Qt::CTRL | Qt::Key_D), &StartWindow::duplicateSelected);
    add(tr("Remove…"), QKeySequence(QKeySequence::Delete), &StartWindow::removeSelected);
    m_view->setContextMenuPolicy(Qt::ActionsContextMenu);
}

/// In the filter's field the arrow keys move the selection in the list.
bool StartWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_filter && event->type() == QEvent::KeyPress) {
        const auto *const key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Down || key->key() == Qt::Key_Up) {
            const int step = key->key() == Qt::Key_Down ? 1 : -1;
            const QModelIndex next = m_filtered->index(m_view->currentIndex().row() + step, 0);
            if (next.isValid())
                m_view->setCurrentIndex(next);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

/// The Return key connects, unless another button has the focus.
void StartWindow::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    auto *const button = qobject_cast<QPushButton *>(focusWidget());
    if (isReturn && button)
        button->click();
    else if (isReturn)
        m_connect->click();
    else
        QWidget::keyPressEvent(event);
}

SQLRecentConnectionPtr StartWindow::selected() const
{
    return m_model->connection(m_filtered->mapToSource(m_view->currentIndex()));
}

void StartWindow::newConnection()
{
    // An entry of its own begins with empty fields, not with those of the latest connection.
    const SQLRecentConnectionPtr connection = m_connector.recentConnections().makeEntry();
    connection->connectionId = SQLRecentConnection::createConnectionId();
    edit(connection);
}

void StartWindow::editSelected()
{
    if (const SQLRecentConnectionPtr connection = selected())
        edit(connection);
}

void StartWindow::edit(const SQLRecentConnectionPtr &connection)
{
    ConnectionWindowController *const dialog = m_connector.createConnectionWindowController(this);
    dialog->setRecentConnection(connection);
    dialog->beginSheet([this, dialog, connectionId = connection->connectionId](int code) {
        if (code == KNModalResponseSaveAndConnect)
            Q_EMIT connectionRequested(dialog->databaseConnectionDetails());
        select(connectionId);
        m_view->setFocus();
    });
}

void StartWindow::connectToSelected()
{
    const SQLRecentConnectionPtr connection = selected();
    if (!connection)
        return;
    const bool knowsPassword = connection->rememberPassword || !connection->password.isEmpty();
    auto *const sheet =
        new KNLoginWindowController(*connection->createDatabaseConnectionDetails(), !knowsPassword, this);
    sheet->beginSheet([this, sheet, connection](int code) {
        if (code == 1)
            loggedIn(connection, sheet->details());
    });
}

/// Remembers the login with what has led to it: the password, an accepted certificate.
void StartWindow::loggedIn(const SQLRecentConnectionPtr &connection, const VantorDBCPtr &details)
{
    const SQLRecentConnectionPtr used = connection->copy();
    used->password = details->password();
    used->connectionSessionParameters = details->sessionParameters();
    used->lastUsed = QDateTime::currentDateTimeUtc();
    m_connector.recentConnections().update(used);
    Q_EMIT connectionRequested(details);
}

void StartWindow::duplicateSelected()
{
    const SQLRecentConnectionPtr connection = selected();
    if (!connection)
        return;
    const SQLRecentConnectionPtr duplicate = connection->copy();
    duplicate->connectionId = SQLRecentConnection::createConnectionId();
    duplicate->lastUsed = QDateTime();
    duplicate->alias = KNFormat(tr("%@ copy"), connection->hostDisplay());
    duplicate->registerColour();
    m_connector.recentConnections().update(duplicate);
    select(duplicate->connectionId);
}

void StartWindow::removeSelected()
{
    const SQLRecentConnectionPtr connection = selected();
    if (!connection)
        return;
    KNAlerts::Question question;
    question.title = KNFormat(tr("Remove the connection \"%@\"?"), connection->hostDisplay());
    question.text = tr("Vantor forgets the connection and its password. Nothing changes on the server.");
    question.buttons = QStringList{tr("Keep"), tr("Remove")};
    KNAlerts::shared().ask(this, question, [this, connection](int button) {
        SQLRecentConnectionList &list = m_connector.recentConnections();
        if (button == 1 && list.contains(connection))
            list.remove(connection);
    });
}

void StartWindow::showList()
{
    const SQLRecentConnectionPtr current = selected();
    m_model->reload();
    if (current)
        select(current->connectionId);
    if (!m_view->currentIndex().isValid())
        m_view->setCurrentIndex(m_filtered->index(0, 0));
    showState();
}

void StartWindow::select(const QString &connectionId)
{
    for (int row = 0; row < m_filtered->rowCount(); ++row) {
        const QModelIndex index = m_filtered->index(row, 0);
        if (m_model->connection(m_filtered->mapToSource(index))->connectionId == connectionId)
            m_view->setCurrentIndex(index);
    }
}

void StartWindow::showState()
{
    const SQLRecentConnectionList &list = m_connector.recentConnections();
    m_connect->setEnabled(selected() != nullptr);
    m_tryAgain->setVisible(list.problem().isSet());
    m_state->showState(list);
    m_hint->setVisible(m_filtered->rowCount() == 0);
    m_hint->setText(list.isLoading() ? tr("Reading the remembered connections…")
                    : m_model->rowCount() > 0
                        ? tr("No connection matches the filter.")
                        : tr("The servers that you connect to will be listed here.\n\nChoose New "
                             "Connection to connect to a server, or try the sample server."));
}
