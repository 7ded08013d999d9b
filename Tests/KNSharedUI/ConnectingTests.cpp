#include "Database/KNServerCertificate.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "SSH/KNSSHHostKey.h"
#include "Support/FakeDatabase.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/WindowTesting.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Connecting/ConnectionWindowController.h"
#include "UI/Connecting/KNConnectionAttempt.h"
#include "UI/Connecting/KNConnectionQuestions.h"
#include "UI/Connecting/KNConnectionStoreLabel.h"
#include "UI/Connecting/KNPasswordWindowController.h"
#include "UI/Connecting/KNSSHTunnelWindowController.h"
#include "UI/Connecting/KNSessionOptionsWindowController.h"
#include "UI/Dialogs/KNFileField.h"
#include "UI/Dialogs/KNLazyComboBox.h"
#include "UI/Dialogs/KNPasswordField.h"
#include "UI/Dialogs/KNProgressMark.h"

#include <QAbstractItemView>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QThread>

using WindowTesting::waitFor;

namespace {

class Dialog : public ConnectionWindowController
{
public:
    using ConnectionWindowController::checkSSHFingerprintError;
    using ConnectionWindowController::checkSSHToLocalhost;
    using ConnectionWindowController::connectionSessionParameters;
    using ConnectionWindowController::ConnectionWindowController;
    using ConnectionWindowController::showSessionOptions;
    using ConnectionWindowController::showSSHTunnel;
    using ConnectionWindowController::sshTunnelModel;
};

QString string(const char *text)
{
    return QString::fromUtf8(text);
}

QPushButton *acceptButton(const QWidget &window)
{
    const auto buttons = window.findChildren<QPushButton *>();
    for (QPushButton *const button : buttons) {
        if (button->isDefault())
            return button;
    }
    return nullptr;
}

KNSSHHostKey unknownKey()
{
    return *KNSSHHostKey::fromKnownHostsLine(
        string("gate ssh-ed25519 AAAAC3NzaC1lZDI1NTE5AAAAIJwJ+4mPqwbY1vGcsSxvDKIMVcH3j2xYUIYn4Vd3Fj9n"));
}

/// Whether a tunnel through `ssh` to `server` is let pass.
bool passes(const char *ssh, const char *server)
{
    QWidget parent;
    Dialog dialog(&parent);
    FakeDatabase::Server database;
    FakeDatabase::Settings details(database);
    details.setSSHTunnelModel({string(ssh), 0, {}, {}});
    details.setHost(string(server));
    return dialog.checkSSHToLocalhost(details);
}

} // namespace

TEST(Sheets, EndOnceAndAreGoneThen)
{
    QWidget parent;
    QPointer sheet = new KNWindowController(&parent);
    std::vector<int> codes;
    sheet->beginSheet([&](int code) { codes.push_back(code); });
    EXPECT_TRUE(sheet->isVisible());
    EXPECT_TRUE(codes.empty()); // nobody waits
    sheet->endSheetWithReturnCode(7);
    sheet->endSheetWithReturnCode(8);
    EXPECT_EQ(codes, std::vector<int>{7});
    EXPECT_TRUE(waitFor([&] { return !sheet; }));
}

TEST(Sheets, EndWithZeroOnEscape)
{
    QWidget parent;
    auto *const sheet = new KNWindowController(&parent);
    std::optional<int> ended;
    sheet->beginSheet([&](int code) { ended = code; });
    QTest::keyClick(sheet, Qt::Key_Escape);
    EXPECT_EQ(ended, 0);
}

TEST(SSHTunnelSheet, ReturnsItsInitialSettings)
{
    QWidget parent;
    const KNSSHTunnelModel model = {string("gate"), 2222, string("me"), string("/home/me/key")};
    const KNSSHTunnelWindowController sheet(model, &parent);
    EXPECT_EQ(sheet.sshTunnelModel(), model);
}

TEST(SSHTunnelSheet, NeedsAServerWhereATunnelIsUsed)
{
    QWidget parent;
    KNSSHTunnelWindowController sheet({}, &parent);
    sheet.show();
    auto *const isUsed = sheet.findChild<QCheckBox *>();
    const QPushButton *const accept = acceptButton(sheet);
    EXPECT_FALSE(isUsed->isChecked());
    EXPECT_TRUE(accept->isEnabled());
    isUsed->click();
    EXPECT_FALSE(accept->isEnabled());
    QTest::keyClicks(sheet.focusWidget(), string("gate"));
    EXPECT_TRUE(accept->isEnabled());
    EXPECT_EQ(sheet.sshTunnelModel().host, string("gate"));
    isUsed->click();
    EXPECT_FALSE(sheet.sshTunnelModel().isUsed());
}

TEST(SSHTunnelSheet, TakesTheKeyThatIsChosen)
{
    QWidget parent;
    const KNSSHTunnelWindowController sheet({string("gate"), 0, {}, {}}, &parent);
    RecordingFilePanels &panels = RecordingFilePanels::install();
    panels.answer = {string("/home/me/.ssh/id")};
    sheet.findChild<KNFileField *>()->findChild<QPushButton *>()->click();
    EXPECT_EQ(sheet.sshTunnelModel().keyFile, string("/home/me/.ssh/id"));
    EXPECT_EQ(panels.requests.size(), 1U);
}

TEST(SessionOptionsSheet, OmitsDefaults)
{
    QWidget parent;
    EXPECT_EQ(KNSessionOptionsWindowController({}, &parent).connectionSessionParameters(), QVariantMap());
}

TEST(SessionOptionsSheet, ReturnsInitialAndUnknownSettings)
{
    const QVariantMap parameters = {{string("encryption"), string("require")},
                                    {string("trustedCertificateFile"), string("/ca.pem")},
                                    {string("checkHostName"), false},
                                    {string("loginTimeout"), 5},
                                    {string("queryTimeout"), 60},
                                    {string("applicationIntent"), string("readonly")},
                                    {string("initialStatements"), string("SET LANGUAGE German\nGO")},
                                    {string("fromTheFuture"), 1}};
    QWidget parent;
    EXPECT_EQ(KNSessionOptionsWindowController(parameters, &parent).connectionSessionParameters(),
              parameters);
}

TEST(SessionOptionsSheet, CanTrustAnyoneOnlyWithoutACertificateFile)
{
    QWidget parent;
    KNSessionOptionsWindowController sheet(
        {{string("encryption"), string("require")}, {string("trustedCertificateFile"), string("/ca.pem")}},
        &parent);
    const auto boxes = sheet.findChildren<QCheckBox *>();
    for (QCheckBox *const box : boxes) {
        if (box->text().contains(string("any server certificate")))
            box->click();
    }
    EXPECT_FALSE(sheet.findChild<KNFileField *>()->isEnabled());
    const QVariantMap parameters = sheet.connectionSessionParameters();
    EXPECT_EQ(parameters.value(string("trustServerCertificate")), QVariant(true));
    EXPECT_FALSE(parameters.contains(string("trustedCertificateFile")));
}

TEST(SessionOptionsSheet, RequiresEncryptionOnceACertificateIsNamed)
{
    QWidget parent;
    KNSessionOptionsWindowController sheet({}, &parent);
    auto *const encryption = sheet.findChildren<QComboBox *>().first();
    EXPECT_EQ(encryption->currentData(), QVariant(string("request")));
    sheet.findChild<KNFileField *>()->setPath(string("/ca.pem"));
    EXPECT_EQ(encryption->currentData(), QVariant(string("require")));
    EXPECT_EQ(sheet.connectionSessionParameters().value(string("encryption")), QVariant(string("require")));
    encryption->setCurrentIndex(encryption->findData(string("request")));
    EXPECT_EQ(encryption->currentData(), QVariant(string("require")));
    sheet.findChild<KNFileField *>()->setPath(QString());
    encryption->setCurrentIndex(encryption->findData(string("request")));
    EXPECT_EQ(sheet.connectionSessionParameters(), QVariantMap());
}

TEST(SessionOptionsSheet, ShowsARememberedRequestWithACertificateAsRequired)
{
    QWidget parent;
    const KNSessionOptionsWindowController sheet(
        {{string("encryption"), string("request")}, {string("trustedCertificateFile"), string("/ca.pem")}},
        &parent);
    EXPECT_EQ(sheet.connectionSessionParameters(),
              (QVariantMap{{string("encryption"), string("require")},
                           {string("trustedCertificateFile"), string("/ca.pem")}}));
}

TEST(SessionOptionsSheet, HasNothingToTrustWithoutEncryption)
{
    QWidget parent;
    KNSessionOptionsWindowController sheet({{string("trustServerCertificate"), true}}, &parent);
    auto *const encryption = sheet.findChildren<QComboBox *>().first();
    encryption->setCurrentIndex(encryption->findData(string("off")));
    EXPECT_EQ(sheet.connectionSessionParameters(), (QVariantMap{{string("encryption"), string("off")}}));
    EXPECT_FALSE(sheet.findChild<KNFileField *>()->isEnabled());
}

TEST(PasswordSheet, ReturnsPasswordAndShowsAccount)
{
    QWidget parent;
    auto *const sheet = new KNPasswordWindowController(string("sa at R&D"), &parent);
    std::optional<int> ended;
    QString password;
    sheet->beginSheet([&](int code) {
        ended = code;
        password = sheet->password();
    });
    EXPECT_TRUE(sheet->findChild<QLabel *>()->text().contains(string("sa at R&&D")));
    auto *const field = sheet->findChild<QLineEdit *>();
    EXPECT_EQ(field->echoMode(), QLineEdit::Password);
    QTest::keyClicks(field, string(" secret "));
    QTest::keyClick(sheet, Qt::Key_Return);
    EXPECT_EQ(ended, 1);
    EXPECT_EQ(password, string(" secret "));
}

TEST(ConnectionDialog, RefusesATunnelFromThisComputerToItself)
{
    RecordingAlerts &alerts = RecordingAlerts::install();
    EXPECT_FALSE(passes("localhost", "localhost,1433"));
    EXPECT_FALSE(passes("127.0.0.1", "LOCALHOST\\SQLEXPRESS"));
    EXPECT_EQ(alerts.messages.size(), 2U);
    EXPECT_TRUE(passes("gate.example", "localhost"));
    EXPECT_TRUE(passes("localhost", "db.example"));
    EXPECT_TRUE(passes("", "localhost"));
    EXPECT_EQ(alerts.messages.size(), 2U);
}

TEST(ConnectionDialog, RemembersAnSSHServersKeyThatTheUserHasAccepted)
{
    RecordingAlerts &alerts = RecordingAlerts::install();
    QWidget parent;
    Dialog dialog(&parent);
    const KNSSHHostKey key = unknownKey();
    std::vector<bool> answers;
    const auto answered = [&](bool isAccepted) { answers.push_back(isAccepted); };

    dialog.checkSSHFingerprintError(KNError(string("other"), 1, string("no key")), answered);
    EXPECT_EQ(answers, std::vector<bool>{false});
    EXPECT_TRUE(alerts.questions.empty());

    alerts.answer = 0;
    dialog.checkSSHFingerprintError(key.unknownHostError(), answered);
    EXPECT_EQ(answers, (std::vector<bool>{false, false}));
    EXPECT_FALSE(QFile::exists(KNSSHHostKey::knownHostsFile()));
    ASSERT_EQ(alerts.questions.size(), 1U);
    EXPECT_TRUE(alerts.questions[0].text.contains(key.fingerprint()));
    EXPECT_TRUE(alerts.questions[0].text.contains(string("ED25519")));

    alerts.answer = 1;
    dialog.checkSSHFingerprintError(key.unknownHostError(), answered);
    EXPECT_EQ(answers, (std::vector<bool>{false, false, true}));
    QFile file(KNSSHHostKey::knownHostsFile());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().startsWith("gate ssh-ed25519 "));
    file.remove();
}

TEST(ConnectionDialog, IgnoresResultsAfterClosing)
{
    RecordingAlerts &alerts = RecordingAlerts::install();
    QWidget parent;
    auto *const dialog = new Dialog(&parent);
    bool isAnswered = false;
    dialog->checkSSHFingerprintError(unknownKey().unknownHostError(), [&](bool) { isAnswered = true; });
    ASSERT_EQ(alerts.pending.size(), 1U);
    delete dialog;
    alerts.pending[0](1);
    EXPECT_FALSE(isAnswered);
    EXPECT_FALSE(QFile::exists(KNSSHHostKey::knownHostsFile()));
}

TEST(ConnectionDialog, AppliesEditsOfItsSheets)
{
    QWidget parent;
    Dialog dialog(&parent);
    QSignalSpy changed(&dialog, &ConnectionWindowController::optionsChanged);
    dialog.showSSHTunnel();
    auto *const tunnel = dialog.findChild<KNSSHTunnelWindowController *>();
    tunnel->findChild<QCheckBox *>()->click();
    tunnel->findChild<QLineEdit *>()->setText(string("gate"));
    acceptButton(*tunnel)->click();
    EXPECT_EQ(dialog.sshTunnelModel().host, string("gate"));

    dialog.showSessionOptions();
    auto *const options = dialog.findChild<KNSessionOptionsWindowController *>();
    options->findChild<QPlainTextEdit *>()->setPlainText(string("SET NOCOUNT ON"));
    acceptButton(*options)->click();
    EXPECT_EQ(dialog.connectionSessionParameters().value(string("initialStatements")),
              QVariant(string("SET NOCOUNT ON")));
    EXPECT_EQ(changed.size(), 2);

    dialog.showSSHTunnel();
    QTest::keyClick(dialog.findChildren<KNSSHTunnelWindowController *>().last(), Qt::Key_Escape);
    EXPECT_EQ(dialog.sshTunnelModel().host, string("gate"));
}

TEST(LazyComboBox, LoadsTextsAndKeepsCurrentText)
{
    KNLazyComboBox box;
    QSignalSpy needed(&box, &KNLazyComboBox::needsTexts);
    box.setEditText(string("typed"));
    box.showPopup();
    EXPECT_EQ(needed.size(), 1);
    box.setTexts({string("a"), string("b")});
    EXPECT_EQ(box.currentText(), string("typed"));
    EXPECT_EQ(box.count(), 2);
    box.showPopup();
    box.hidePopup();
    EXPECT_EQ(needed.size(), 1);
    box.setEditText(string("b"));
    box.setTexts({string("a"), string("b")});
    EXPECT_EQ(box.currentIndex(), 1);
}

TEST(LazyComboBox, DistinguishesChosenFromTypedText)
{
    KNLazyComboBox box;
    box.setTexts({string("a"), string("b")});
    box.show();
    QSignalSpy chosen(&box, &KNLazyComboBox::chosen);
    QTest::keyClicks(box.lineEdit(), string("b"));
    QTest::keyClick(box.lineEdit(), Qt::Key_Return);
    EXPECT_EQ(chosen.size(), 0);
    box.showPopup();
    box.view()->setCurrentIndex(box.model()->index(0, 0));
    QTest::keyClick(box.view(), Qt::Key_Return);
    ASSERT_EQ(chosen.size(), 1);
    EXPECT_EQ(chosen.value(0).value(0), QVariant(0));
    box.showPopup();
    QTest::keyClick(box.view(), Qt::Key_Escape);
    EXPECT_EQ(chosen.size(), 1);
}

TEST(ProgressMark, ShowsProgressOrFailure)
{
    KNProgressMark mark(string("Connecting"));
    EXPECT_FALSE(mark.isRunning());
    EXPECT_TRUE(mark.problem().isNull());
    mark.start();
    EXPECT_TRUE(mark.isRunning());
    mark.fail(string("why"));
    EXPECT_FALSE(mark.isRunning());
    EXPECT_EQ(mark.problem(), string("why"));
    mark.start();
    EXPECT_TRUE(mark.problem().isNull());
    mark.stop();
    EXPECT_FALSE(mark.isRunning());
}

TEST(SessionOptionsSheet, ShowsAndForgetsAPinnedCertificate)
{
    // The certificate is the text "abc"; its SHA-256 hash begins with BA:78:16:BF.
    const QVariantMap parameters = {
        {string("encryption"), string("require")},
        {string("pinnedCertificate"),
         string("-----BEGIN CERTIFICATE-----\nYWJj\n-----END CERTIFICATE-----\n")}};
    QWidget parent;
    KNSessionOptionsWindowController sheet(parameters, &parent);
    const auto shows = [&](const char *text) {
        const auto labels = sheet.findChildren<QLabel *>();
        return std::any_of(labels.begin(), labels.end(),
                           [&](const QLabel *label) { return label->text().contains(string(text)); });
    };
    EXPECT_TRUE(shows("BA:78:16:BF:8F:01:CF:EA:41:41:40:DE:5D:AE:22:23\nB0:03:61:A3"));
    EXPECT_EQ(sheet.connectionSessionParameters(), parameters);
    auto *const encryption = sheet.findChildren<QComboBox *>().first();
    encryption->setCurrentIndex(encryption->findText(string("Encrypt everything")));
    EXPECT_FALSE(shows("BA:78"));
    EXPECT_EQ(sheet.connectionSessionParameters(), (QVariantMap{{string("encryption"), string("require")}}));
}

TEST(SessionOptionsSheet, ExplainsWhatAChoiceMeans)
{
    QWidget parent;
    KNSessionOptionsWindowController sheet({}, &parent);
    const auto shows = [&](const char *text) {
        const auto labels = sheet.findChildren<QLabel *>();
        return std::any_of(labels.begin(), labels.end(),
                           [&](const QLabel *label) { return label->text().contains(string(text)); });
    };
    auto *const encryption = sheet.findChildren<QComboBox *>().first();
    EXPECT_TRUE(shows("Statements and results are sent as plain text, unless"));
    encryption->setCurrentIndex(encryption->findText(string("Do not encrypt")));
    EXPECT_TRUE(shows("also the password"));
    encryption->setCurrentIndex(encryption->findText(string("Encrypt everything")));
    EXPECT_TRUE(shows("must prove"));
}

TEST(CertificateQuestion, ShowsTheCertificateAndPinsItOnlyWhenItIsTrusted)
{
    RecordingAlerts &alerts = RecordingAlerts::install();
    class Settings : public FakeDatabase::Settings
    {
    public:
        using FakeDatabase::Settings::Settings;
        QVariantMap sessionParameters() const override { return parameters; }
        void setSessionParameters(const QVariantMap &changed) override { parameters = changed; }
        QVariantMap parameters = {{string("checkHostName"), false}, {string("loginTimeout"), 3}};
    };
    QWidget window;
    FakeDatabase::Server server;
    const auto details = std::make_shared<Settings>(server);
    details->setHost(string("db.example"));
    const KNServerCertificate certificate = {"-----BEGIN CERTIFICATE-----\nYWJj\n-----END CERTIFICATE-----\n",
                                             string("CN=db"), string("CN=someone"),
                                             QDateTime(QDate(2026, 1, 2), QTime(0, 0), Qt::UTC),
                                             QDateTime(QDate(2027, 3, 4), QTime(0, 0), Qt::UTC)};
    const KNError error(string("x"), 1, string("It is not trusted here."), certificate.errorInfo());
    std::vector<bool> answers;
    const auto answered = [&](bool again) { answers.push_back(again); };

    alerts.answer = 0; // also the Return key's
    KNConnectionQuestions::ask(&window, error, details, answered);
    EXPECT_FALSE(details->parameters.contains(string("pinnedCertificate")));
    ASSERT_EQ(alerts.questions.size(), 1U);
    for (const char *const text : {"It is not trusted here.", "db.example", "CN=db", "CN=someone",
                                   "2026-01-02", "2027-03-04", "BA:78:16:BF"})
        EXPECT_TRUE(alerts.questions[0].text.contains(string(text))) << text;

    alerts.answer = 1;
    KNConnectionQuestions::ask(&window, error, details, answered);
    EXPECT_EQ(answers, (std::vector<bool>{false, true}));
    EXPECT_EQ(details->parameters,
              (QVariantMap{{string("loginTimeout"), 3},
                           {string("encryption"), string("require")},
                           {string("pinnedCertificate"), QString::fromLatin1(certificate.pem)}}));
}

TEST(PasswordField, ShowsItsTextWhileTheEyeIsOpen)
{
    KNPasswordField field;
    field.show();
    EXPECT_EQ(field.echoMode(), QLineEdit::Password);
    ASSERT_EQ(field.actions().size(), 1);
    QAction *const eye = field.actions().first();
    EXPECT_EQ(eye->text(), string("Show the password"));
    eye->trigger();
    EXPECT_EQ(field.echoMode(), QLineEdit::Normal);
    EXPECT_EQ(eye->text(), string("Hide the password"));
    eye->trigger();
    EXPECT_EQ(field.echoMode(), QLineEdit::Password);
}

TEST(ConnectionAttempt, KeepsItsSessionAndReportsTheAnswer)
{
    static FakeDatabase::Server server; // the pool remembers its logins beyond the test
    VantorDatabaseConnectionPool &pool = *VantorDatabaseConnectionPool::sharedInstance();
    QWidget window;
    const auto details = std::make_shared<FakeDatabase::Settings>(server);
    details->setHost(string("kept"));
    KNConnectionAttempt attempt(details, &window);
    QSignalSpy succeeded(&attempt, &KNConnectionAttempt::succeeded);
    attempt.start([](VantorDatabaseClient &client, KNError *) {
        return client.isConnected() ? string("16.0") : QString();
    });
    ASSERT_TRUE(waitFor([&] { return succeeded.size() == 1; }));
    EXPECT_EQ(succeeded.value(0).value(0), QVariant(string("16.0")));
    EXPECT_EQ(server.open, 1);
    pool.closeIdleClients();
    EXPECT_EQ(server.open, 0);
}

TEST(ConnectionAttempt, IsCancelledWhenItIsDestroyed)
{
    static FakeDatabase::Server server; // the pool remembers its logins beyond the test
    server.cancels = 0;
    std::atomic<bool> hasBegun = false;
    server.duringLogin = [&] {
        hasBegun = true;
        for (int i = 0; i < 30000 && server.cancels == 0; ++i)
            QThread::msleep(1);
    };
    QWidget window;
    const auto details = std::make_shared<FakeDatabase::Settings>(server);
    details->setHost(string("cancelled"));
    auto *const attempt = new KNConnectionAttempt(details, &window);
    QSignalSpy succeeded(attempt, &KNConnectionAttempt::succeeded);
    attempt->start();
    ASSERT_TRUE(waitFor([&] { return hasBegun.load(); }));
    delete attempt;
    EXPECT_TRUE(WindowTesting::settle());
    server.duringLogin = {};
    EXPECT_EQ(server.cancels, 1);
    EXPECT_EQ(server.open, 0); // nobody keeps the session
    EXPECT_TRUE(succeeded.isEmpty());
}

TEST(MessageBoxes, AreDismissedByEscapeAndAnsweredByReturn)
{
    KNAlerts::setShared(nullptr); // the program's own
    QWidget window;
    window.show();
    std::vector<int> answers;
    const KNAlerts::Question question = {
        string("Go on?"), string("Or not."), {string("Keep"), string("Remove")}};
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return}) {
        KNAlerts::shared().ask(&window, question, [&](int button) { answers.push_back(button); });
        const QPointer box = window.findChild<QMessageBox *>();
        ASSERT_TRUE(box);
        QTest::keyClick(box, key);
        EXPECT_TRUE(waitFor([&] { return !box; }));
    }
    KNAlerts::shared().ask(&window, question, [&](int button) { answers.push_back(button); });
    window.findChild<QMessageBox *>()->close();
    EXPECT_EQ(answers, (std::vector<int>{-1, 0, -1}));
}

TEST(MessageBoxes, DoNotWrapTheirTextAtTheWidthOfAShortTitle)
{
    KNAlerts::setShared(nullptr);
    QWidget window;
    window.show();
    KNAlerts::shared().ask(
        &window, {string("Go on?"), string("Thirty characters, more or less"), {string("Keep")}}, [](int) {});
    const QPointer box = window.findChild<QMessageBox *>();
    ASSERT_TRUE(box && QTest::qWaitForWindowExposed(box));
    const auto *const label = box->findChild<QLabel *>(string("qt_msgbox_informativelabel"));
    ASSERT_NE(label, nullptr);
    EXPECT_GE(label->width(), label->fontMetrics().horizontalAdvance(label->text()));
    box->close();
    EXPECT_TRUE(waitFor([&] { return !box; }));
}

TEST(ConnectionStoreLabel, IsHighEnoughForItsLinesInAForm)
{
    QWidget window;
    auto *const form = new QFormLayout(&window);
    auto *const label = new KNConnectionStoreLabel;
    form->addRow(string("Name:"), new QLineEdit);
    form->addRow(QString(), label);
    label->setText(
        string("Connections are stored in the file /home/somebody/.local/share/vantor/credentials.json, "
               "not encrypted."));
    window.resize(300, 10);
    window.show();
    EXPECT_TRUE(waitFor([&] { return label->height() >= label->heightForWidth(label->width()); }));
}
