#include "Implementations/MSSQLBrowserServiceClient.h"
#include "Support/DialogTesting.h"
#include "Support/RecordingAlerts.h"
#include "Support/RecordingStore.h"
#include "Support/SampleServerFixture.h"
#include "Support/WatchedApplication.h"
#include "UI/Connecting/KNLoginWindowController.h"
#include "UI/Connecting/KNPasswordWindowController.h"
#include "UI/Connecting/KNSSHTunnelWindowController.h"
#include "UI/Connecting/KNSessionOptionsWindowController.h"
#include "UI/Dialogs/KNLazyComboBox.h"
#include "UI/Dialogs/MSSQLBrowseServersWindowController/MSSQLBrowseServersWindowController.h"
#include "UI/Dialogs/MSSQLConnectionWindowController/MSSQLConnectionWindowController.h"
#include "UI/Dialogs/MSSQLFederationMemberConnectionWindowController/MSSQLFederationMemberConnectionWindowController.h"
#include "UI/TableDesigner/MSSQLCreateTableWindowController.h"
#include "UI/TableDesigner/MSSQLEditForeignKeyWindowController.h"
#include "UI/TableDesigner/MSSQLEditIndexWindowController.h"
#include "UI/TableDesigner/MSSQLRenameTableWindowController.h"
#include "UI/TableDesigner/MSSQLRenameWindowController.h"

#include <QAbstractItemView>
#include <QLineEdit>
#include <QPointer>
#include <QTableView>

namespace {

/// How each dialog of the connector, and of connecting, is opened.
struct Opening
{
    const char *name;
    std::function<KNWindowController *(QWidget *parent)> make;
    const char *defaultButton;
};

std::shared_ptr<const VantorDBC> shopSettings()
{
    const auto settings = std::make_shared<MSSQLDatabaseConnectionDetails>();
    settings->setHost(QStringLiteral("127.0.0.1,%1").arg(SampleServerFixture::shared().port()));
    settings->setUsername(QString::fromLatin1(SampleServerFixture::User));
    settings->setPassword(QString::fromLatin1(SampleServerFixture::Password));
    settings->setDatabase(QStringLiteral("shop"));
    return settings;
}

MSSQLDesignedTable orders()
{
    return {QStringLiteral("dbo"), QStringLiteral("Orders")};
}

/// A session that its window owns.
MSSQLTableDesignSession *designSession(QWidget *window)
{
    return new MSSQLTableDesignSession(orders(), shopSettings(), window);
}

std::vector<Opening> openings()
{
    return {
        {"connection", [](QWidget *parent) { return new MSSQLConnectionWindowController(parent); }, "Save"},
        {"servers", [](QWidget *parent) { return new MSSQLBrowseServersWindowController(parent); }, "Choose"},
        {"federation",
         [](QWidget *parent) {
             MSSQLDatabaseConnectionDetails settings;
             settings.setHost(QStringLiteral("127.0.0.1,1"));
             settings.setUsername(QStringLiteral("sa"));
             return new MSSQLFederationMemberConnectionWindowController(settings, QStringLiteral("int"),
                                                                        parent);
         },
         "Connect"},
        {"tunnel",
         [](QWidget *parent) {
             return new KNSSHTunnelWindowController({QStringLiteral("gate"), 0, {}, {}}, parent);
         },
         "OK"},
        {"options", [](QWidget *parent) { return new KNSessionOptionsWindowController({}, parent); }, "OK"},
        {"password",
         [](QWidget *parent) { return new KNPasswordWindowController(QStringLiteral("sa at db"), parent); },
         "Connect"},
        {"login",
         [](QWidget *parent) {
             MSSQLDatabaseConnectionDetails settings;
             settings.setHost(QStringLiteral("db"));
             settings.setUsername(QStringLiteral("sa"));
             return new KNLoginWindowController(settings, true, parent);
         },
         "Connect"},
        {"newTable",
         [](QWidget *parent) { return new MSSQLCreateTableWindowController(shopSettings(), parent); },
         "Create"},
        {"renameTable",
         [](QWidget *parent) {
             return new MSSQLRenameTableWindowController(orders(), shopSettings(), parent);
         },
         "Rename"},
        {"renameColumn",
         [](QWidget *parent) {
             return new MSSQLRenameWindowController(QStringLiteral("Rename Column"),
                                                    QStringLiteral("OrderId"), parent);
         },
         "Rename…"},
        {"index",
         [](QWidget *parent) { return new MSSQLEditIndexWindowController(*designSession(parent), {}, true); },
         "Apply…"},
        {"foreignKey",
         [](QWidget *parent) { return new MSSQLEditForeignKeyWindowController(*designSession(parent), {}); },
         "Apply…"},
    };
}

class ConnectorDialogs : public testing::TestWithParam<Opening>
{
protected:
    void SetUp() override
    {
        MSSQLRecentConnection::forgetList();
        MSSQLBrowserServiceClient::setSearch({QStringLiteral("127.255.255.255"), 1, ShortTime, ShortTime});
        m_window.show();
        WatchedApplication::instance().beginWatch();
        WatchedApplication::instance().watch("opening", [this] {
            m_dialog = GetParam().make(&m_window);
            m_dialog->beginSheet([this](int code) { m_result = code; });
        });
        m_dialog->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_dialog));
        if (qstrcmp(GetParam().name, "servers") != 0) { // its search does not end
            ASSERT_TRUE(WindowTesting::settle());
        }
    }
    void TearDown() override
    {
        delete m_dialog;
        EXPECT_TRUE(WindowTesting::settle());
        MSSQLBrowserServiceClient::setSearch({});
        MSSQLRecentConnection::forgetList();
        KNKeyValueStore::setShared(nullptr);
    }

    static constexpr auto ShortTime = std::chrono::milliseconds(50);
    RecordingAlerts &m_alerts = RecordingAlerts::install();
    const std::shared_ptr<RecordingStore> m_store = RecordingStore::install();
    QWidget m_window;
    QPointer<KNWindowController> m_dialog;
    std::optional<int> m_result;
};

} // namespace

TEST_P(ConnectorDialogs, AreNamedAndTheTabKeyReachesEveryNamedField)
{
    DialogTesting::expectNamesAndTabOrder(*m_dialog);
    EXPECT_FALSE(m_result);
}

TEST_P(ConnectorDialogs, CloseWithEscapeAndAcceptNothing)
{
    DialogTesting::pressEscape(*m_dialog);
    EXPECT_EQ(m_result, 0);
    EXPECT_TRUE(m_store->writes.empty());
    EXPECT_TRUE(m_alerts.errors.empty());
}

TEST_P(ConnectorDialogs, HaveOneDefaultButtonForTheReturnKey)
{
    DialogTesting::expectDefaultButton(*m_dialog, QString::fromUtf8(GetParam().defaultButton));
    // No other button takes the Return key over because it has had the focus.
    for (QPushButton *const button : m_dialog->findChildren<QPushButton *>()) {
        EXPECT_TRUE(button->isDefault() || !button->autoDefault()) << button->text().toStdString();
    }
}

TEST_P(ConnectorDialogs, BeginInAFieldSoThatTypedTextIsNotLost)
{
    QWidget *const focus = m_dialog->focusWidget();
    ASSERT_NE(focus, nullptr);
    EXPECT_EQ(qobject_cast<QPushButton *>(focus), nullptr);
}

TEST_P(ConnectorDialogs, OpenWithoutHoldingTheWindowUp)
{
    const WatchedApplication::Call &longest = WatchedApplication::instance().longestCall();
    EXPECT_LT(longest.milliseconds, WatchedApplication::LongestAllowed) << longest.what;
}

TEST_P(ConnectorDialogs, HaveMnemonicsThatDifferAndReachTheirFields)
{
    DialogTesting::expectMnemonics(*m_dialog);
    EXPECT_FALSE(m_result);
}

INSTANTIATE_TEST_SUITE_P(All, ConnectorDialogs, testing::ValuesIn(openings()),
                         [](const testing::TestParamInfo<Opening> &opening) { return opening.param.name; });

TEST(NewTableDialog, KeepsTheFocusInItsGridWhileColumnsAreEditedByKeyboard)
{
    RecordingAlerts &alerts = RecordingAlerts::install();
    QWidget window;
    window.show();
    const QPointer dialog(new MSSQLCreateTableWindowController(shopSettings(), &window));
    std::optional<int> result;
    dialog->beginSheet([&](int code) { result = code; });
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog));
    EXPECT_TRUE(WindowTesting::settle());
    auto *const grid = dialog->findChild<QTableView *>();
    grid->setFocus();
    grid->setCurrentIndex(grid->model()->index(1, MSSQLColumnGridModel::Field));
    QTest::keyClick(grid, Qt::Key_Return);
    ASSERT_TRUE(qobject_cast<QLineEdit *>(dialog->focusWidget()));
    QTest::keyClicks(dialog->focusWidget(), QStringLiteral("Amount"));
    QTest::keyClick(dialog->focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(WindowTesting::waitFor([&] { return dialog->focusWidget() == grid; }));
    EXPECT_EQ(grid->currentIndex(), grid->model()->index(1, MSSQLColumnGridModel::Field));
    EXPECT_EQ(grid->currentIndex().data().toString(), QStringLiteral("Amount"));
    EXPECT_FALSE(result);
    EXPECT_TRUE(alerts.errors.empty()); // the key does not create the table
    delete dialog.data();
    EXPECT_TRUE(WindowTesting::settle());
}

TEST(ConnectionDialogScale, ShowsTenThousandDatabasesWithoutHoldingTheWindowUp)
{
    KNKeyValueStore::setShared(nullptr);
    const auto store = RecordingStore::install();
    QStringList names;
    for (int i = 0; i < 10000; ++i)
        names.append(QStringLiteral("database of customer %1").arg(i));
    QWidget window;
    window.show();
    const QPointer dialog(new MSSQLConnectionWindowController(&window));
    dialog->beginSheet([](int) {});
    ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog));
    KNLazyComboBox *databases = nullptr;
    for (KNLazyComboBox *const box : dialog->findChildren<KNLazyComboBox *>()) {
        if (DialogTesting::nameOf(box) == QStringLiteral("Database"))
            databases = box;
    }
    ASSERT_NE(databases, nullptr);
    WatchedApplication &application = WatchedApplication::instance();
    application.beginWatch();
    application.watch("filling", [&] { databases->setTexts(names); });
    application.watch("opening", [&] { databases->showPopup(); });
    ASSERT_TRUE(QTest::qWaitForWindowExposed(databases->view()->window()));
    QTest::keyClick(databases->view(), Qt::Key_End);
    QCoreApplication::processEvents();
    EXPECT_LT(application.longestCall().milliseconds, WatchedApplication::LongestAllowed)
        << application.longestCall().what;
    databases->hidePopup();
    delete dialog.data();
    EXPECT_TRUE(WindowTesting::settle());
    MSSQLRecentConnection::forgetList();
    KNKeyValueStore::setShared(nullptr);
}
