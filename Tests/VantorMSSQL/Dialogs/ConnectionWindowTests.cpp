#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNLogHelper.h"
#include "Recent/KNDBCTabColorHelper.h"
#include "SSH/KNSSHHostKey.h"
#include "SSH/KNSSHProcess.h"
#include "Support/HostileServerRelay.h"
#include "Support/LoginCounter.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/RecordingStore.h"
#include "Support/SSHServer.h"
#include "Support/SampleServerFixture.h"
#include "Support/TestCertificates.h"
#include "Support/WindowTesting.h"
#include "UI/Connecting/KNColourBox.h"
#include "UI/Connecting/KNConnectionStoreLabel.h"
#include "UI/Connecting/KNPasswordWindowController.h"
#include "UI/Dialogs/KNLazyComboBox.h"
#include "UI/Dialogs/KNPasswordField.h"
#include "UI/Dialogs/KNProgressMark.h"
#include "UI/Dialogs/MSSQLBrowseServersWindowController/MSSQLBrowseServersWindowController.h"
#include "UI/Dialogs/MSSQLConnectionWindowController/MSSQLConnectionForm.h"
#include "UI/Dialogs/MSSQLConnectionWindowController/MSSQLConnectionWindowController.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QPointer>
#include <QProcess>
#include <QPushButton>
#include <QTableWidget>

using WindowTesting::settle;
using WindowTesting::waitFor;

namespace {

class ConnectionWindow : public testing::Test
{
protected:
    void SetUp() override
    {
        MSSQLRecentConnection::forgetList();
        m_window.show();
    }
    void TearDown() override
    {
        delete m_dialog;
        EXPECT_TRUE(settle());
        MSSQLRecentConnection::forgetList();
        KNKeyValueStore::setShared(nullptr);
    }

    void open(const SQLRecentConnectionPtr &edited = nullptr)
    {
        m_dialog = new MSSQLConnectionWindowController(&m_window);
        m_dialog->setRecentConnection(edited);
        m_dialog->beginSheet([this](int code) {
            m_result = code;
            m_details = m_dialog->databaseConnectionDetails();
        });
        m_form = m_dialog->findChild<MSSQLConnectionForm *>();
    }
    /// Makes shortcuts and mnemonics work, as for a user.
    void activate() const
    {
        m_dialog->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_dialog));
    }
    /// Fills in what opens the shared sample server.
    void fillIn(const char *password = SampleServerFixture::Password,
                quint16 port = SampleServerFixture::shared().port())
    {
        m_form->server->setEditText(QStringLiteral("127.0.0.1,%1").arg(port));
        m_form->account->setText(QString::fromLatin1(SampleServerFixture::User));
        m_form->password->setText(QString::fromLatin1(password));
    }
    QPushButton *button(const char *title) const
    {
        const auto buttons = m_dialog->findChildren<QPushButton *>();
        for (QPushButton *const one : buttons) {
            if (one->text().remove(QLatin1Char('&')) == QLatin1String(title))
                return one;
        }
        return nullptr;
    }
    KNProgressMark *connecting() const
    {
        return m_dialog->findChild<KNProgressMark *>(QString(), Qt::FindDirectChildrenOnly);
    }
    static std::shared_ptr<MSSQLRecentConnection> remembered(int index)
    {
        return std::dynamic_pointer_cast<MSSQLRecentConnection>(
            MSSQLRecentConnection::RecentConnections().value(index));
    }
    static std::shared_ptr<MSSQLRecentConnection> entry(const char *id, const char *host)
    {
        auto made = std::make_shared<MSSQLRecentConnection>();
        made->connectionId = QString::fromLatin1(id);
        made->serverHost = QString::fromLatin1(host);
        made->username = QStringLiteral("alice");
        return made;
    }

    const std::shared_ptr<RecordingStore> m_store = RecordingStore::install();
    RecordingAlerts &m_alerts = RecordingAlerts::install();
    QWidget m_window;
    QPointer<MSSQLConnectionWindowController> m_dialog;
    MSSQLConnectionForm *m_form = nullptr;
    std::optional<int> m_result;
    VantorDBCPtr m_details;
};

} // namespace

TEST_F(ConnectionWindow, SavesNothingWithoutAUserName)
{
    open();
    m_form->server->setEditText(QStringLiteral("db.example"));
    QTest::keyClick(m_dialog, Qt::Key_Return);
    ASSERT_EQ(m_alerts.errors.size(), 1U);
    EXPECT_EQ(m_alerts.errors[0].domain(), QStringLiteral("MSSQL"));
    EXPECT_EQ(m_alerts.errors[0].code(), 0);
    EXPECT_EQ(m_alerts.errors[0].localizedDescription(), QStringLiteral("A username is required."));
    EXPECT_EQ(m_dialog->focusWidget(), m_form->account);
    EXPECT_FALSE(m_result);
    EXPECT_TRUE(m_store->writes.empty());
}

TEST_F(ConnectionWindow, SavesWithTheReturnKeyWithoutConnecting)
{
    open();
    m_form->alias->setText(QStringLiteral("Production"));
    m_form->server->setEditText(QStringLiteral("db.example,1500"));
    m_form->account->setText(QStringLiteral("alice"));
    m_form->password->setText(QStringLiteral("p"));
    m_form->database->setEditText(QStringLiteral("shop"));
    m_form->remembersPassword->setChecked(true);
    m_form->authentication->setCurrentIndex(1);
    QTest::keyClick(m_dialog, Qt::Key_Return);
    EXPECT_EQ(m_result, KNModalResponseSaveWithoutConnecting);
    EXPECT_FALSE(m_details);
    const auto saved = remembered(0);
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->alias, QStringLiteral("Production"));
    EXPECT_EQ(saved->serverHost, QStringLiteral("db.example,1500"));
    EXPECT_EQ(saved->username, QStringLiteral("alice"));
    EXPECT_EQ(saved->password, QStringLiteral("p"));
    EXPECT_EQ(saved->database, QStringLiteral("shop"));
    EXPECT_TRUE(saved->rememberPassword);
    EXPECT_EQ(saved->dumbAuthenticationType, 1);
    EXPECT_FALSE(KNDBCTabColorHelper::colorForId(saved->connectionId).isNull());
}

TEST_F(ConnectionWindow, ConnectsAndSaves)
{
    open();
    fillIn();
    m_form->database->setEditText(QStringLiteral("shop"));
    button("Save and Connect")->click();
    EXPECT_TRUE(connecting()->isRunning());
    EXPECT_FALSE(button("Save")->isEnabled());
    ASSERT_TRUE(waitFor([this] { return m_result.has_value(); }));
    EXPECT_EQ(m_result, KNModalResponseSaveAndConnect);
    ASSERT_TRUE(m_details);
    EXPECT_EQ(m_details->database(), QStringLiteral("shop"));
    ASSERT_TRUE(remembered(0));
    EXPECT_EQ(m_details->connectionId(), remembered(0)->connectionId);
    EXPECT_TRUE(m_alerts.errors.empty());
}

TEST_F(ConnectionWindow, StaysOpenWithAWrongPasswordAndASecondAttemptWorks)
{
    open();
    fillIn("wrong");
    m_dialog->onConnectAndSave();
    ASSERT_TRUE(waitFor([this] { return !m_alerts.errors.empty(); }));
    EXPECT_FALSE(m_result);
    const QString text = m_alerts.errors[0].localizedDescription();
    EXPECT_TRUE(text.contains(QStringLiteral("Login failed"))) << text.toStdString();
    EXPECT_EQ(connecting()->problem(), text);
    EXPECT_FALSE(connecting()->isRunning());
    EXPECT_TRUE(button("Save and Connect")->isEnabled());
    EXPECT_TRUE(m_store->writes.empty());
    // The next password replaces the refused one.
    EXPECT_EQ(m_dialog->focusWidget(), m_form->password);
    EXPECT_EQ(m_form->password->selectedText(), QStringLiteral("wrong"));

    m_form->password->setText(QString::fromLatin1(SampleServerFixture::Password));
    m_dialog->onConnectAndSave();
    EXPECT_TRUE(connecting()->problem().isNull());
    ASSERT_TRUE(waitFor([this] { return m_result.has_value(); }));
    EXPECT_EQ(m_result, KNModalResponseSaveAndConnect);
    EXPECT_EQ(m_alerts.errors.size(), 1U);
}

TEST_F(ConnectionWindow, CostsOneLoginForEachActionThatTheServerRefuses)
{
    const LoginCounter server;
    open();
    fillIn("wrong", server.port());
    m_form->database->setEditText(QStringLiteral("shop"));
    m_dialog->onConnectAndSave();
    ASSERT_TRUE(waitFor([this] { return !m_alerts.errors.empty(); }));
    EXPECT_EQ(server.logins(), 1);
    m_form->database->showPopup();
    ASSERT_TRUE(waitFor([this] { return !m_form->databaseProgress->problem().isNull(); }));
    m_form->database->hidePopup();
    EXPECT_EQ(server.logins(), 2);
}

TEST_F(ConnectionWindow, KeepsTheIdOfTheEntryThatIsEdited)
{
    MSSQLRecentConnection::UpdateRecentConnection(entry("one", "a"));
    MSSQLRecentConnection::UpdateRecentConnection(entry("two", "b"));
    const auto edited = entry("one", "a");
    open(edited);
    EXPECT_EQ(m_form->server->currentText(), QStringLiteral("a"));
    m_form->server->setEditText(QStringLiteral("c"));
    m_dialog->onSave();
    ASSERT_EQ(MSSQLRecentConnection::RecentConnections().size(), 2);
    EXPECT_EQ(remembered(0)->connectionId, QStringLiteral("one"));
    EXPECT_EQ(remembered(0)->serverHost, QStringLiteral("c"));
    EXPECT_EQ(edited->serverHost, QStringLiteral("a"));
}

TEST_F(ConnectionWindow, AssignsIdToNewConnection)
{
    MSSQLRecentConnection::UpdateRecentConnection(entry("one", "a"));
    open();
    EXPECT_EQ(m_form->server->currentText(), QStringLiteral("a")); // the first one is shown
    EXPECT_EQ(m_form->account->text(), QStringLiteral("alice"));
    m_dialog->onSave();
    ASSERT_EQ(MSSQLRecentConnection::RecentConnections().size(), 2);
    EXPECT_NE(remembered(0)->connectionId, QStringLiteral("one"));
    EXPECT_FALSE(remembered(0)->connectionId.isEmpty());
}

TEST_F(ConnectionWindow, ShowsAnEntryWholeAndTheServersOfTheOthers)
{
    auto shown = entry("one", "a");
    shown->alias = QStringLiteral("A");
    shown->password = QStringLiteral("p");
    shown->rememberPassword = true;
    shown->database = QStringLiteral("shop");
    shown->dumbAuthenticationType = 7;
    shown->connectionSessionParameters = {{QStringLiteral("loginTimeout"), 3}};
    shown->sshTunnelDetails.host = QStringLiteral("gate");
    MSSQLRecentConnection::UpdateRecentConnection(entry("two", "b"));
    open(shown);
    EXPECT_EQ(m_form->alias->text(), QStringLiteral("A"));
    EXPECT_EQ(m_form->password->text(), QStringLiteral("p"));
    EXPECT_TRUE(m_form->remembersPassword->isChecked());
    EXPECT_EQ(m_form->database->currentText(), QStringLiteral("shop"));
    EXPECT_EQ(m_form->authentication->currentIndex(), 1);
    EXPECT_EQ(m_form->server->count(), 1);
    EXPECT_EQ(m_form->server->itemText(0), QStringLiteral("b"));
    const auto details = m_dialog->connectionDetailsForCurrentState();
    EXPECT_EQ(details->sessionParameters(), shown->connectionSessionParameters);
    EXPECT_EQ(details->sshTunnelModel(), shown->sshTunnelDetails);
    EXPECT_TRUE(m_form->state->text().contains(QStringLiteral("gate")));
}

TEST_F(ConnectionWindow, TakesTheFieldsOfAServerThatIsChosenFromTheListAndOnlyThen)
{
    auto other = entry("two", "b");
    other->username = QStringLiteral("bob");
    MSSQLRecentConnection::UpdateRecentConnection(other);
    MSSQLRecentConnection::UpdateRecentConnection(entry("one", "a"));
    open(entry("one", "a"));
    const int index = m_form->server->findText(QStringLiteral("b"));
    m_form->server->showPopup();
    m_form->server->view()->setCurrentIndex(m_form->server->model()->index(index, 0));
    QTest::keyClick(m_form->server->view(), Qt::Key_Return);
    EXPECT_EQ(m_form->account->text(), QStringLiteral("bob"));

    m_form->account->setText(QStringLiteral("carol"));
    m_form->server->setFocus();
    m_form->server->setEditText(QStringLiteral("a"));
    QTest::keyClick(m_form->server->lineEdit(), Qt::Key_Return);
    EXPECT_EQ(m_result, KNModalResponseSaveWithoutConnecting);
    ASSERT_EQ(remembered(0)->connectionId, QStringLiteral("one"));
    EXPECT_EQ(remembered(0)->username, QStringLiteral("carol"));
}

TEST_F(ConnectionWindow, ShowsStorageLocationAndErrors)
{
    m_store->holdsAnswersBack = true;
    open();
    EXPECT_TRUE(m_form->state->text().contains(QStringLiteral("the test's memory")));
    EXPECT_TRUE(m_form->state->text().contains(QStringLiteral("Reading the remembered")));
    m_store->readProblem = KNKeyValueStore::Refused;
    m_store->answerPending();
    EXPECT_TRUE(m_form->state->text().contains(QStringLiteral("As the test wants it.")));
}

TEST_F(ConnectionWindow, ListsTheDatabasesWhenTheirListIsOpened)
{
    open();
    fillIn();
    m_form->database->setEditText(QStringLiteral("sh"));
    m_form->database->showPopup();
    EXPECT_TRUE(m_form->databaseProgress->isRunning());
    ASSERT_TRUE(waitFor([this] { return !m_form->databaseProgress->isRunning(); }));
    EXPECT_TRUE(m_form->databaseProgress->problem().isNull())
        << m_form->databaseProgress->problem().toStdString();
    EXPECT_GE(m_form->database->findText(QStringLiteral("library")), 0) << m_form->database->count();
    EXPECT_EQ(m_form->database->currentText(), QStringLiteral("sh"));
    // Another login may see others.
    QTest::keyClick(m_form->account, Qt::Key_X);
    EXPECT_EQ(m_form->database->count(), 0);
}

TEST_F(ConnectionWindow, DropsAListOfDatabasesThatAnotherLoginSees)
{
    open();
    fillIn();
    m_form->database->showPopup();
    ASSERT_TRUE(m_form->databaseProgress->isRunning());
    m_form->account->setText(QStringLiteral("another"));
    ASSERT_TRUE(waitFor([this] { return !m_form->databaseProgress->isRunning(); }));
    EXPECT_EQ(m_form->database->count(), 0);
}

TEST_F(ConnectionWindow, ListsNoDatabasesWithoutServerAndUserName)
{
    open();
    fillIn();
    m_form->account->clear();
    m_form->database->showPopup();
    EXPECT_FALSE(m_form->databaseProgress->isRunning());
    fillIn();
    m_form->server->setEditText(QString());
    m_form->database->showPopup();
    EXPECT_FALSE(m_form->databaseProgress->isRunning());
}

TEST_F(ConnectionWindow, ShowsWhyDatabasesCannotBeListed)
{
    QString logged;
    KNLogHelper::sharedInstance()->setObserver([&](const QString &record) { logged += record; });
    open();
    fillIn("wrong");
    m_form->database->showPopup();
    ASSERT_TRUE(waitFor([this] { return !m_form->databaseProgress->isRunning(); }));
    KNLogHelper::sharedInstance()->setObserver({});
    EXPECT_TRUE(m_form->databaseProgress->problem().contains(QStringLiteral("Login failed")));
    EXPECT_TRUE(logged.contains(QStringLiteral("Setting tooltip to be: ")));
    EXPECT_TRUE(m_alerts.errors.empty());
}

TEST_F(ConnectionWindow, IgnoresConnectResultAfterClosing)
{
    // A server that takes the connection and says nothing.
    auto relay = std::make_unique<HostileServerRelay>(SampleServerFixture::shared().port(),
                                                      HostileServerRelay::Fault::Stall, 0);
    open();
    fillIn(SampleServerFixture::Password, relay->port());
    m_dialog->onConnectAndSave();
    ASSERT_TRUE(waitFor([&] { return !relay->saidByClient().empty(); }));
    m_dialog->close(); // as the window's close button does
    EXPECT_EQ(m_result, 0);
    relay.reset();
    ASSERT_TRUE(settle());
    EXPECT_FALSE(m_dialog);
    EXPECT_EQ(m_result, 0);
    EXPECT_TRUE(m_alerts.errors.empty());
    EXPECT_TRUE(m_store->writes.empty());
}

TEST_F(ConnectionWindow, CancelDuringAnAttemptKeepsTheDialogAndItsText)
{
    const HostileServerRelay relay(SampleServerFixture::shared().port(), HostileServerRelay::Fault::Stall, 0);
    for (const bool byEscape : {false, true}) {
        open();
        fillIn("typed", relay.port());
        const auto before = relay.saidByClient().size();
        m_dialog->onConnectAndSave();
        ASSERT_TRUE(waitFor([&] { return relay.saidByClient().size() > before; }));
        if (byEscape)
            QTest::keyClick(m_dialog, Qt::Key_Escape);
        else
            button("Cancel")->click();
        EXPECT_FALSE(m_result);
        ASSERT_TRUE(m_dialog && m_dialog->isVisible());
        EXPECT_FALSE(connecting()->isRunning());
        EXPECT_TRUE(button("Save and Connect")->isEnabled());
        EXPECT_EQ(m_form->password->text(), QStringLiteral("typed"));
        ASSERT_TRUE(settle());
        EXPECT_TRUE(m_alerts.errors.empty());
        QTest::keyClick(m_dialog, Qt::Key_Escape);
        EXPECT_EQ(m_result, 0);
        m_result.reset();
        ASSERT_TRUE(settle());
    }
}

TEST_F(ConnectionWindow, ReachesEveryFieldByTheMnemonicOfItsLabel)
{
    open();
    activate();
    const std::pair<Qt::Key, QWidget *> fields[] = {{Qt::Key_N, m_form->alias},
                                                    {Qt::Key_E, m_form->server},
                                                    {Qt::Key_A, m_form->authentication},
                                                    {Qt::Key_U, m_form->account},
                                                    {Qt::Key_P, m_form->password},
                                                    {Qt::Key_D, m_form->database},
                                                    {Qt::Key_R, m_form->remembersPassword}};
    for (const auto &[key, field] : fields) {
        QTest::keyClick(m_dialog, key, Qt::AltModifier);
        EXPECT_TRUE(m_dialog->focusWidget() == field || field->isAncestorOf(m_dialog->focusWidget()))
            << QKeySequence(key).toString().toStdString();
    }
    EXPECT_TRUE(waitFor([this] { return m_form->remembersPassword->isChecked(); })); // after its animation
    EXPECT_FALSE(m_result);
}

TEST_F(ConnectionWindow, BeginsEmptyForAnEntryWithoutFieldsAndKeepsItsId)
{
    MSSQLRecentConnection::UpdateRecentConnection(entry("one", "a"));
    const auto made = std::make_shared<MSSQLRecentConnection>();
    made->connectionId = QStringLiteral("new");
    open(made);
    EXPECT_EQ(m_form->server->currentText(), QString());
    EXPECT_EQ(m_form->account->text(), QString());
    EXPECT_EQ(m_form->server->count(), 1); // the servers of the others can be chosen
    fillIn();
    m_dialog->onSave();
    EXPECT_EQ(remembered(0)->connectionId, QStringLiteral("new"));
}

TEST_F(ConnectionWindow, ConnectsWithControlAndReturn)
{
    open();
    fillIn();
    activate();
    QTest::keyClick(m_dialog, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(connecting()->isRunning());
    ASSERT_TRUE(waitFor([this] { return m_result.has_value(); }));
    EXPECT_EQ(m_result, KNModalResponseSaveAndConnect);
}

TEST_F(ConnectionWindow, LogsInOnceForTheDialogAndItsWindow)
{
    VantorDatabaseConnectionPool &pool = *VantorDatabaseConnectionPool::sharedInstance();
    pool.closeIdleClients();
    open();
    fillIn();
    m_dialog->onConnectAndSave();
    ASSERT_TRUE(waitFor([this] { return m_result.has_value(); }));
    EXPECT_EQ(pool.idleCount(), 1U);
    pool.closeIdleClients();
}

TEST_F(ConnectionWindow, SavesNothingAfterClosing)
{
    open();
    fillIn();
    m_dialog->onConnectAndSave();
    m_dialog->endSheetWithReturnCode(0);
    ASSERT_TRUE(settle());
    EXPECT_EQ(m_result, 0);
    EXPECT_TRUE(MSSQLRecentConnection::RecentConnections().isEmpty());
}

TEST_F(ConnectionWindow, RefusesATunnelThatBeginsAndEndsHere)
{
    auto edited = entry("one", "localhost,1433");
    edited->sshTunnelDetails.host = QStringLiteral("localhost");
    open(edited);
    m_dialog->onConnectAndSave();
    EXPECT_EQ(m_alerts.messages.size(), 1U);
    EXPECT_FALSE(connecting()->isRunning());
    EXPECT_EQ(m_dialog->focusWidget(), m_form->server);
}

TEST_F(ConnectionWindow, AsksWhetherAnUnknownSSHServerIsTheRightOne)
{
    if (const QString missing = SSHServer::whatIsMissing(); !missing.isNull())
        GTEST_SKIP() << missing.toStdString();
    const SSHServer ssh;
    KNSSHProcess::setProgram(ssh.client());
    auto edited = entry("one", "");
    edited->sshTunnelDetails = {QString::fromLatin1(SSHServer::Alias), 0, QString(), ssh.keyFile()};
    open(edited);
    fillIn();

    m_alerts.answer = 0;
    m_dialog->onConnectAndSave();
    ASSERT_TRUE(waitFor([this] { return !m_alerts.errors.empty(); }));
    ASSERT_EQ(m_alerts.questions.size(), 1U);
    EXPECT_TRUE(m_alerts.questions[0].text.contains(ssh.fingerprint()))
        << m_alerts.questions[0].text.toStdString();
    EXPECT_FALSE(m_result);

    m_alerts.answer = 1;
    m_dialog->onConnectAndSave();
    ASSERT_TRUE(waitFor([this] { return m_result.has_value() || m_alerts.errors.size() > 1; }));
    EXPECT_EQ(m_result, KNModalResponseSaveAndConnect);
    EXPECT_EQ(m_alerts.questions.size(), 2U);
    KNSSHProcess::setProgram(QStringLiteral("ssh"));
    QFile::remove(KNSSHHostKey::knownHostsFile());
}

TEST_F(ConnectionWindow, BeginsInTheFieldOfTheServer)
{
    open();
    ASSERT_TRUE(QTest::qWaitForWindowActive(m_dialog));
    EXPECT_TRUE(m_form->server->hasFocus());
}

TEST_F(ConnectionWindow, TakesTheServerThatIsChosenInTheBrowser)
{
    const SampleServerFixture server({{"--browser-port", "0", "--instance", "SAMPLE"}, {}});
    MSSQLBrowserServiceClient::setSearch({QStringLiteral("127.255.255.255"), server.browserPort(),
                                          std::chrono::milliseconds(100), std::chrono::milliseconds(10)});
    open();
    m_form->browse->click();
    const QPointer browser = m_dialog->findChild<MSSQLBrowseServersWindowController *>();
    ASSERT_TRUE(browser);
    auto *const table = browser->findChild<QTableWidget *>();
    const QString port = QString::number(server.port());
    ASSERT_TRUE(waitFor([&] { return table->rowCount() == 1 && table->item(0, 3)->text() == port; }));
    table->selectRow(0);
    QTest::keyClick(browser, Qt::Key_Return);
    EXPECT_TRUE(m_form->server->currentText().endsWith(QStringLiteral(",%1\\SAMPLE").arg(server.port())))
        << m_form->server->currentText().toStdString();
    ASSERT_TRUE(settle());
    MSSQLBrowserServiceClient::setSearch({});
}

TEST_F(ConnectionWindow, SaveAloneChangesNoLastUse)
{
    const auto lastUsed =
        QDateTime::fromString(QStringLiteral("2024-05-06T07:08:09.000Z"), Qt::ISODateWithMs);
    auto edited = entry("one", "a");
    edited->lastUsed = lastUsed;
    MSSQLRecentConnection::UpdateRecentConnection(edited);
    open(edited);
    m_form->alias->setText(QStringLiteral("renamed"));
    m_dialog->onSave();
    ASSERT_EQ(remembered(0)->alias, QStringLiteral("renamed"));
    EXPECT_EQ(remembered(0)->lastUsed, lastUsed);

    m_result.reset();
    open(remembered(0));
    fillIn();
    m_dialog->onConnectAndSave();
    ASSERT_TRUE(waitFor([this] { return m_result.has_value(); }));
    EXPECT_GT(remembered(0)->lastUsed, lastUsed);
}

TEST_F(ConnectionWindow, TrustsACertificateForThisConnectionOnceItsFingerprintWasShown)
{
    TestCertificates &certificates = TestCertificates::shared();
    const auto files = certificates.issue({{}, {"127.0.0.1"}, -1, 30, true});
    const SampleServerFixture server({files.arguments("require"), {}});
    auto edited = entry("one", "");
    edited->connectionSessionParameters = {{QStringLiteral("encryption"), QStringLiteral("require")}};
    open(edited);
    fillIn(SampleServerFixture::Password, server.port());
    m_alerts.answer = 0;
    m_dialog->onConnectAndSave();
    ASSERT_TRUE(waitFor([this] { return !m_alerts.errors.empty(); }));
    ASSERT_EQ(m_alerts.questions.size(), 1U);
    EXPECT_TRUE(m_alerts.questions[0].text.contains(QStringLiteral("SHA-256")));
    EXPECT_FALSE(m_result);

    m_alerts.answer = 1;
    m_dialog->onConnectAndSave();
    ASSERT_TRUE(waitFor([this] { return m_result.has_value() || m_alerts.errors.size() > 1; }));
    EXPECT_EQ(m_result, KNModalResponseSaveAndConnect);
    ASSERT_TRUE(remembered(0));
    EXPECT_TRUE(remembered(0)
                    ->connectionSessionParameters.value(QStringLiteral("pinnedCertificate"))
                    .toString()
                    .startsWith(QStringLiteral("-----BEGIN CERTIFICATE-----")));
}

TEST_F(ConnectionWindow, EditsColourGroupAndProductionFlag)
{
    auto edited = entry("one", "a");
    edited->group = QStringLiteral("Shops");
    edited->colour = QStringLiteral("#123456"); // chosen elsewhere
    edited->isProduction = true;
    MSSQLRecentConnection::UpdateRecentConnection(edited);
    open(edited);
    EXPECT_EQ(m_form->group->currentText(), QStringLiteral("Shops"));
    EXPECT_EQ(m_form->group->findText(QStringLiteral("Shops")), 0); // the groups can be chosen
    EXPECT_EQ(m_form->colour->colour(), QStringLiteral("#123456"));
    EXPECT_TRUE(m_form->isProduction->isChecked());
    EXPECT_TRUE(m_dialog->connectionDetailsForCurrentState()->isProduction());

    m_form->group->setEditText(QStringLiteral(" Other "));
    m_form->colour->setCurrentIndex(m_form->colour->findText(QStringLiteral("Green")));
    m_form->isProduction->setChecked(false);
    m_dialog->onSave();
    EXPECT_EQ(remembered(0)->group, QStringLiteral("Other"));
    EXPECT_EQ(remembered(0)->colour, m_form->colour->colour());
    EXPECT_EQ(KNDBCTabColorHelper::colorForId(QStringLiteral("one")), remembered(0)->colour);
    EXPECT_FALSE(remembered(0)->isProduction);
}

TEST_F(ConnectionWindow, TestsAConnectionWithoutSavingIt)
{
    open();
    fillIn();
    button("Test")->click();
    EXPECT_TRUE(connecting()->isRunning());
    EXPECT_FALSE(button("Test")->isEnabled());
    ASSERT_TRUE(waitFor([this] { return !m_alerts.messages.empty(); }));
    EXPECT_EQ(m_alerts.messages[0].value(0), QStringLiteral("The connection works."));
    EXPECT_TRUE(m_alerts.messages[0].value(1).startsWith(QStringLiteral("Microsoft SQL Server")))
        << m_alerts.messages[0].value(1).toStdString();
    EXPECT_FALSE(m_result);
    EXPECT_TRUE(m_store->writes.empty());
    EXPECT_TRUE(button("Test")->isEnabled());

    fillIn("wrong");
    button("Test")->click();
    ASSERT_TRUE(waitFor([this] { return !m_alerts.errors.empty(); }));
    EXPECT_TRUE(m_alerts.errors[0].localizedDescription().contains(QStringLiteral("Login failed")));
    EXPECT_FALSE(m_result);
}

TEST_F(ConnectionWindow, TestCanBeCancelled)
{
    const HostileServerRelay relay(SampleServerFixture::shared().port(), HostileServerRelay::Fault::Stall, 0);
    open();
    fillIn(SampleServerFixture::Password, relay.port());
    button("Test")->click();
    ASSERT_TRUE(waitFor([&] { return !relay.saidByClient().empty(); }));
    button("Cancel")->click();
    EXPECT_FALSE(connecting()->isRunning());
    EXPECT_TRUE(button("Test")->isEnabled());
    EXPECT_FALSE(m_result);
    ASSERT_TRUE(settle());
    EXPECT_TRUE(m_alerts.errors.empty());
    EXPECT_TRUE(m_alerts.messages.empty());
}

TEST_F(ConnectionWindow, AsksForThePassphraseOfTheSSHKey)
{
    if (const QString missing = SSHServer::whatIsMissing(); !missing.isNull())
        GTEST_SKIP() << missing.toStdString();
    const SSHServer ssh;
    KNSSHProcess::setProgram(ssh.client());
    QProcess keygen;
    keygen.start(QStringLiteral("ssh-keygen"),
                 {QStringLiteral("-p"), QStringLiteral("-P"), QString(), QStringLiteral("-N"),
                  QStringLiteral("sesame"), QStringLiteral("-f"), ssh.keyFile()});
    ASSERT_TRUE(keygen.waitForFinished());
    auto edited = entry("one", "");
    edited->sshTunnelDetails = {QString::fromLatin1(SSHServer::Alias), 0, QString(), ssh.keyFile()};
    open(edited);
    fillIn();
    m_alerts.answer = 1; // the server's key is the right one
    m_dialog->onConnectAndSave();
    const auto sheet = [this] { return m_dialog->findChild<KNPasswordWindowController *>(); };
    ASSERT_TRUE(waitFor([&] { return sheet() != nullptr || !m_alerts.errors.empty(); }));
    ASSERT_TRUE(sheet());
    QTest::keyClicks(sheet()->findChild<QLineEdit *>(), QStringLiteral("sesame"));
    QTest::keyClick(sheet(), Qt::Key_Return);
    ASSERT_TRUE(waitFor([this] { return m_result.has_value() || !m_alerts.errors.empty(); }));
    EXPECT_EQ(m_result, KNModalResponseSaveAndConnect);
    KNSSHProcess::setProgram(QStringLiteral("ssh"));
    QFile::remove(KNSSHHostKey::knownHostsFile());
}
