#include "UI/Dialogs/MSSQLConnectionWindowController/MSSQLConnectionWindowController.h"

#include "Catalog/MSSQLSystemDatabaseQueries.h"
#include "Catalog/MSSQLVersionHelper.h"
#include "Database/DatabaseResultSet.h"
#include "Database/VantorLoginProblem.h"
#include "Foundation/KNAssert.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNLogHelper.h"
#include "Implementations/MSSQLClient.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Connecting/KNColourBox.h"
#include "UI/Connecting/KNConnectionStoreLabel.h"
#include "UI/Dialogs/KNLazyComboBox.h"
#include "UI/Dialogs/KNPasswordField.h"
#include "UI/Dialogs/KNProgressMark.h"
#include "UI/Dialogs/MSSQLBrowseServersWindowController/MSSQLBrowseServersWindowController.h"
#include "UI/Dialogs/MSSQLConnectionWindowController/MSSQLConnectionForm.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QShortcut>

namespace {

const QString SourcePath =
    QStringLiteral("UI/Dialogs/MSSQLConnectionWindowController/MSSQLConnectionWindowController");

/// The databases that a login can see. The database in the settings may be partly typed, so the login is
/// repeated without it if the server refuses that database; never after a refused login, which counts against
/// the account. Blocks.
QStringList databasesSeenBy(const std::shared_ptr<MSSQLDatabaseConnectionDetails> &details, KNError *error)
{
    QStringList names;
    MSSQLClient client(details);
    if (!client.connect(error)) {
        const bool isDatabase = VantorLoginProblemOf(*error) == VantorLoginProblem::DatabaseRefused;
        if (details->database().isEmpty() || !isDatabase)
            return names;
        details->setDatabase(QString());
        return databasesSeenBy(details, error);
    }
    return client.databaseNames(error);
}

} // namespace

MSSQLConnectionWindowController::MSSQLConnectionWindowController(QWidget *parent)
    : ConnectionWindowController(parent)
    , m_form(new MSSQLConnectionForm)
    , m_progress(new KNProgressMark(tr("Connecting")))
    , m_listChanged(KNNotificationCenter::defaultCenter()->addObserver(
          SQLRecentConnectionList::ChangedNotificationName, [this](const QString &, const QVariantMap &) {
              fillServers();
              showState();
          }))
{
    setWindowTitle(tr("Connect to SQL Server"));
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(m_form);
    layout->addStretch();
    makeButtons();
    connect(m_form->browse, &QPushButton::clicked, this, &MSSQLConnectionWindowController::onBrowse);
    connect(m_form->sshTunnel, &QPushButton::clicked, this, [this] { showSSHTunnel(); });
    connect(m_form->sessionOptions, &QPushButton::clicked, this, [this] { showSessionOptions(); });
    connect(m_form->database, &KNLazyComboBox::needsTexts, this,
            &MSSQLConnectionWindowController::listDatabases);
    connect(m_form->server, &KNLazyComboBox::chosen, this, [this](int index) {
        const auto chosen = std::dynamic_pointer_cast<MSSQLRecentConnection>(
            MSSQLRecentConnection::RecentConnections().value(index));
        if (chosen)
            populateRecentConnection(*chosen);
    });
    // Another server or login has other databases.
    for (const QLineEdit *const field : std::initializer_list<const QLineEdit *>{
             m_form->server->lineEdit(), m_form->account, m_form->password})
        connect(field, &QLineEdit::textEdited, m_form->database, [this] { m_form->database->setTexts({}); });
    connect(this, &ConnectionWindowController::optionsChanged, this,
            &MSSQLConnectionWindowController::showState);
    showState();
    m_form->server->setFocus(); // a name is optional
}

MSSQLConnectionWindowController::~MSSQLConnectionWindowController() = default;

void MSSQLConnectionWindowController::makeButtons()
{
    auto *const buttons = new QDialogButtonBox;
    buttons->addButton(QDialogButtonBox::Cancel)->setAutoDefault(false);
    m_save = buttons->addButton(tr("&Save"), QDialogButtonBox::AcceptRole);
    m_connect = buttons->addButton(tr("Save and &Connect"), QDialogButtonBox::AcceptRole);
    m_connect->setAutoDefault(false);
    const QKeySequence connectKeys(Qt::CTRL | Qt::Key_Return);
    connect(new QShortcut(connectKeys, this), &QShortcut::activated, m_connect,
            [this] { m_connect->click(); });
    m_connect->setToolTip(KNFormat(tr("Connects, and saves once the login has succeeded (%@)"),
                                   connectKeys.toString(QKeySequence::NativeText)));
    m_save->setDefault(true);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_save, &QPushButton::clicked, this, &MSSQLConnectionWindowController::onSave);
    connect(m_connect, &QPushButton::clicked, this, &MSSQLConnectionWindowController::onConnectAndSave);
    m_test = new QPushButton(tr("&Test"));
    m_test->setAutoDefault(false);
    m_test->setToolTip(tr("Connects without saving, and shows the server's version"));
    connect(m_test, &QPushButton::clicked, this, &MSSQLConnectionWindowController::onTest);
    auto *const row = new QHBoxLayout;
    row->addWidget(m_test);
    row->addWidget(m_progress);
    row->addStretch();
    row->addWidget(buttons);
    static_cast<QVBoxLayout *>(layout())->addLayout(row);
}

void MSSQLConnectionWindowController::showEvent(QShowEvent *event)
{
    fillServers();
    ConnectionWindowController::showEvent(event);
}

/// Fills the list of servers and, the first time, the fields: with the edited entry, or with the first one.
void MSSQLConnectionWindowController::fillServers()
{
    const QString current = m_form->server->currentText();
    const auto connections = MSSQLRecentConnection::RecentConnections();
    QStringList hosts;
    QStringList groups;
    for (const SQLRecentConnectionPtr &connection : connections) {
        hosts.append(connection->serverHost);
        if (!connection->group.isEmpty())
            groups.append(connection->group);
    }
    groups.removeDuplicates();
    groups.sort(Qt::CaseInsensitive);
    m_form->server->setTexts(hosts);
    m_form->group->setTexts(groups);

    const SQLRecentConnectionPtr shown = recentConnection() ? recentConnection() : connections.value(0);
    const bool isUntouched = current.isEmpty() && m_form->account->text().isEmpty();
    if (const auto entry = std::dynamic_pointer_cast<MSSQLRecentConnection>(shown);
        entry && !m_isPopulated && isUntouched)
        populateRecentConnection(*entry);
}

void MSSQLConnectionWindowController::populateRecentConnection(const MSSQLRecentConnection &connection)
{
    m_isPopulated = true;
    m_form->alias->setText(connection.alias);
    m_form->server->setEditText(connection.serverHost);
    m_form->account->setText(connection.username);
    m_form->password->setText(connection.password);
    m_form->database->clear();
    m_form->database->setEditText(connection.database);
    m_form->remembersPassword->setChecked(connection.rememberPassword);
    m_form->authentication->setCurrentIndex(connection.dumbAuthenticationType != 0 ? 1 : 0);
    m_form->group->setEditText(connection.group);
    m_form->colour->setColour(connection.colour);
    m_form->isProduction->setChecked(connection.isProduction);
    setConnectionSessionParameters(connection.connectionSessionParameters);
    setSSHTunnelModel(connection.sshTunnelDetails);
}

void MSSQLConnectionWindowController::showState()
{
    QStringList lines;
    if (sshTunnelModel().isUsed())
        lines.append(KNFormat(tr("Through the SSH server %@."), sshTunnelModel().host));
    m_form->state->showState(MSSQLRecentConnection::list(), lines);
}

std::shared_ptr<MSSQLDatabaseConnectionDetails>
MSSQLConnectionWindowController::connectionDetailsForCurrentState() const
{
    auto details = std::make_shared<MSSQLDatabaseConnectionDetails>();
    details->setAlias(m_form->alias->text());
    details->setHost(m_form->server->currentText().trimmed());
    details->setUsername(m_form->account->text());
    details->setPassword(m_form->password->text());
    details->setDatabase(m_form->database->currentText().trimmed());
    details->setSessionParameters(connectionSessionParameters());
    details->setSSHTunnelModel(sshTunnelModel());
    details->setProduction(m_form->isProduction->isChecked());
    return details;
}

void MSSQLConnectionWindowController::onSave()
{
    if (m_form->account->text().isEmpty()) {
        KNAlerts::shared().showError(this,
                                     KNError(QStringLiteral("MSSQL"), 0, tr("A username is required.")));
        m_form->account->setFocus();
        return;
    }
    saveConnectionDetails(connectionDetailsForCurrentState(),
                          recentConnection() ? recentConnection()->lastUsed : QDateTime());
    endSheetWithReturnCode(KNModalResponseSaveWithoutConnecting);
}

/// Stores the settings, and assigns them the id of their entry.
void MSSQLConnectionWindowController::saveConnectionDetails(const Details &details, const QDateTime &lastUsed)
{
    const auto entry = std::make_shared<MSSQLRecentConnection>();
    entry->connectionId = recentConnection() && !recentConnection()->connectionId.isEmpty()
                              ? recentConnection()->connectionId
                              : SQLRecentConnection::createConnectionId();
    entry->serverHost = details->host();
    entry->alias = m_form->alias->text();
    entry->username = details->username();
    entry->password = details->password();
    entry->serverPort = details->port();
    entry->database = details->database();
    entry->connectionSessionParameters = details->sessionParameters();
    entry->sshTunnelDetails = details->sshTunnelModel();
    entry->dumbAuthenticationType = m_form->authentication->currentIndex();
    entry->rememberPassword = m_form->remembersPassword->isChecked();
    entry->lastUsed = lastUsed;
    entry->group = m_form->group->currentText().trimmed();
    entry->colour = m_form->colour->colour();
    entry->isProduction = m_form->isProduction->isChecked();
    details->setConnectionId(entry->connectionId);
    entry->registerColour();
    MSSQLRecentConnection::UpdateRecentConnection(entry);
}

void MSSQLConnectionWindowController::onConnectAndSave()
{
    attempt({}, [this](const Details &details, const QString &) {
        saveConnectionDetails(details, QDateTime::currentDateTimeUtc());
        setDatabaseConnectionDetails(details);
        endSheetWithReturnCode(KNModalResponseSaveAndConnect);
    });
}

void MSSQLConnectionWindowController::onTest()
{
    const auto askForVersion = [](VantorDatabaseClient &client, KNError *) {
        const auto &details =
            static_cast<MSSQLDatabaseConnectionDetails &>(client.databaseConnectionDetails());
        MSSQLVersionHelper::sharedInstance()->learnFrom(client, details);
        return MSSQLVersionHelper::sharedInstance()->versionForDBC(details);
    };
    attempt(askForVersion, [this](const Details &details, const QString &version) {
        setConnectionSessionParameters(details->sessionParameters()); // perhaps trusts a certificate
        KNAlerts::shared().showMessage(this, tr("The connection works."),
                                       version.section(QLatin1Char('\n'), 0, 0).simplified());
    });
}

/// Cancel and Esc stop an attempt first, and close the dialog only without one: the text of the fields is
/// kept.
void MSSQLConnectionWindowController::reject()
{
    if (m_attempt)
        stopAttempt();
    else
        ConnectionWindowController::reject();
}

/// The window's close button closes the dialog during an attempt, too.
void MSSQLConnectionWindowController::closeEvent(QCloseEvent *event)
{
    stopAttempt();
    ConnectionWindowController::closeEvent(event);
}

/// Connects in the background with what the fields contain, and runs the inquiry.
void MSSQLConnectionWindowController::attempt(const KNConnectionAttempt::Inquiry &inquiry,
                                              const Succeeded &succeeded)
{
    const Details details = connectionDetailsForCurrentState();
    KNAssert(details != nullptr, "localDatabaseConnectionDetails cannot be nil", SourcePath.toUtf8());
    if (!checkSSHToLocalhost(*details)) {
        m_form->server->setFocus();
        return;
    }
    m_attempt = new KNConnectionAttempt(details, this);
    connect(m_attempt, &KNConnectionAttempt::succeeded, this,
            [this, details, succeeded](const QString &answer) {
                stopAttempt();
                succeeded(details, answer);
            });
    connect(m_attempt, &KNConnectionAttempt::failed, this, &MSSQLConnectionWindowController::connectFailed);
    m_progress->start();
    setButtonsEnabled(false);
    m_attempt->start(inquiry);
}

void MSSQLConnectionWindowController::connectFailed(const KNError &error)
{
    setConnectionSessionParameters(m_attempt->details()->sessionParameters()); // perhaps trusts a certificate
    stopAttempt();
    if (VantorLoginProblemOf(error) == VantorLoginProblem::LoginRefused) {
        m_form->password->setFocus();
        m_form->password->selectAll();
    }
    KNAlerts::shared().showError(this, error);
    m_progress->fail(error.localizedDescription());
}

void MSSQLConnectionWindowController::stopAttempt()
{
    if (!m_attempt)
        return;
    m_attempt->deleteLater();
    m_attempt->disconnect(this);
    m_attempt = nullptr;
    m_progress->stop();
    setButtonsEnabled(true);
}

void MSSQLConnectionWindowController::setButtonsEnabled(bool enabled)
{
    for (QPushButton *const button :
         {m_save, m_connect, m_test, m_form->browse, m_form->sshTunnel, m_form->sessionOptions})
        button->setEnabled(enabled);
}

void MSSQLConnectionWindowController::listDatabases()
{
    const Details details = connectionDetailsForCurrentState();
    if (details->host().isEmpty() || details->username().isEmpty() || m_isListing)
        return;
    m_isListing = true;
    m_databaseListerConnectionDetails = details;
    m_form->databaseProgress->start();
    KNDispatch::globalQueue([this, guard = QPointer(this), details] {
        KNError error;
        const QStringList names = databasesSeenBy(details, &error);
        KNDispatch::mainQueue([this, guard, names, error] {
            if (guard && !closed())
                databasesListed(names, error);
        });
    });
}

void MSSQLConnectionWindowController::databasesListed(const QStringList &names, const KNError &error)
{
    m_isListing = false;
    // The fields may describe another server or login by now.
    const bool isCurrent =
        m_databaseListerConnectionDetails->host() == m_form->server->currentText().trimmed() &&
        m_databaseListerConnectionDetails->username() == m_form->account->text();
    if (error) {
        KNLogHelper::sharedInstance()->logMessage("Setting tooltip to be: %@", error.localizedDescription());
        m_form->databaseProgress->fail(error.localizedDescription());
        return;
    }
    m_form->databaseProgress->stop();
    if (!isCurrent)
        return;
    m_form->database->setTexts(names);
    if (m_form->database->hasFocus() && !names.isEmpty())
        m_form->database->showPopup();
}

void MSSQLConnectionWindowController::onBrowse()
{
    auto *const browser = new MSSQLBrowseServersWindowController(this);
    browser->beginSheet([this, browser](int code) {
        if (code == 1)
            m_form->server->setEditText(browser->currentConnectionString());
    });
}
