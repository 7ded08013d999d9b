#include "Desktop/Start/StartWindow.h"

#include "Database/VantorDatabaseConnectionPool.h"
#include "Database/VantorLoginProblem.h"
#include "Recent/SQLRecentConnectionList.h"
#include "Support/FakeDatabase.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/RecordingStore.h"
#include "Support/WindowTesting.h"
#include "UI/Connecting/ConnectionWindowController.h"
#include "UI/Connecting/KNLoginWindowController.h"
#include "UI/KNConnectorUserInterface.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSignalSpy>

namespace {

FakeDatabase::Server &server()
{
    static FakeDatabase::Server instance;
    return instance;
}

std::shared_ptr<FakeDatabase::Settings> newSettings()
{
    return std::make_shared<FakeDatabase::Settings>(server());
}

class Entry : public SQLRecentConnection
{
public:
    QString icon32() const override { return {}; }
    QString iconLarge() const override { return {}; }
    SQLRecentConnectionPtr copy() const override { return SQLRecentConnectionPtr(new Entry(*this)); }
    VantorDBCPtr createDatabaseConnectionDetails() const override
    {
        auto details = newSettings();
        fill(*details);
        return details;
    }
};

class Dialog : public ConnectionWindowController
{
public:
    using ConnectionWindowController::ConnectionWindowController;
    using ConnectionWindowController::setDatabaseConnectionDetails;
};

class Connector : public KNConnectorUserInterface
{
public:
    Connector() { m_list.load(); }
    ConnectionWindowController *createConnectionWindowController(QWidget *parent) const override
    {
        return new Dialog(parent);
    }
    SQLRecentConnectionList &recentConnections() const override { return m_list; }
    void addTreeActions(KNDatabaseTreeContextHelper &, KNWorkspace &) const override {}

private:
    mutable SQLRecentConnectionList m_list{QStringLiteral("Connections"),
                                           [] { return std::make_shared<Entry>(); }};
};

class StartWindowTest : public testing::Test
{
protected:
    void TearDown() override
    {
        m_window.reset();
        EXPECT_TRUE(WindowTesting::settle());
        m_connector.reset();
        VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
        server().refusesLogins = false;
        KNKeyValueStore::setShared(nullptr);
    }
    /// Remembers a connection; the last one is the latest.
    SQLRecentConnectionPtr remember(const char *alias, const char *host, const char *password = "p")
    {
        auto entry = std::make_shared<Entry>();
        entry->connectionId = QString::fromLatin1(alias);
        entry->alias = QString::fromLatin1(alias);
        entry->serverHost = QString::fromLatin1(host);
        entry->username = QStringLiteral("alice");
        entry->password = QString::fromLatin1(password);
        list().update(entry);
        entry->connectionDate = QDateTime::currentDateTimeUtc().addSecs(++m_seconds - 100000);
        entry->lastUsed = entry->connectionDate;
        return entry;
    }
    void open()
    {
        m_window = std::make_unique<StartWindow>(*m_connector);
        m_window->show();
        m_view = m_window->findChild<QListView *>();
        m_filter = m_window->findChild<QLineEdit *>();
        m_requests = std::make_unique<QSignalSpy>(m_window.get(), &StartWindow::connectionRequested);
    }
    bool waitForRequests(int count) const
    {
        return WindowTesting::waitFor([&] { return m_requests->size() >= count; });
    }
    KNLoginWindowController *login() const { return m_window->findChild<KNLoginWindowController *>(); }
    SQLRecentConnectionList &list() { return m_connector->recentConnections(); }
    QStringList shown() const
    {
        QStringList names;
        for (int row = 0; row < m_view->model()->rowCount(); ++row)
            names.append(m_view->model()->index(row, 0).data().toString());
        return names;
    }
    VantorDBCPtr requested(int index) const
    {
        return m_requests->value(index).value(0).value<VantorDBCPtr>();
    }
    /// Whether a text can be seen, with nothing over it.
    bool shows(const char *text) const
    {
        const auto labels = m_window->findChildren<QLabel *>();
        return std::any_of(labels.begin(), labels.end(), [&](const QLabel *label) {
            const QPoint middle = label->mapTo(m_window.get(), label->rect().center());
            return label->isVisible() && label->text().contains(QString::fromUtf8(text)) &&
                   m_window->childAt(middle) == label;
        });
    }
    QPushButton *button(const char *title) const
    {
        const auto buttons = m_window->findChildren<QPushButton *>();
        for (QPushButton *const one : buttons) {
            if (one->text().remove(QLatin1Char('&')) == QString::fromUtf8(title))
                return one;
        }
        return nullptr;
    }
    void trigger(const char *title) const
    {
        const auto actions = m_view->actions();
        for (QAction *const action : actions) {
            if (action->text() == QString::fromUtf8(title))
                action->trigger();
        }
    }

    RecordingAlerts &m_alerts = RecordingAlerts::install();
    const std::shared_ptr<RecordingStore> m_store = RecordingStore::install();
    std::unique_ptr<Connector> m_connector = std::make_unique<Connector>();
    std::unique_ptr<StartWindow> m_window;
    std::unique_ptr<QSignalSpy> m_requests;
    QListView *m_view = nullptr;
    QLineEdit *m_filter = nullptr;
    int m_seconds = 0;
};

} // namespace

TEST_F(StartWindowTest, ShowsTheLatestConnectionFirst)
{
    remember("old", "a");
    remember("new", "b");
    open();
    EXPECT_EQ(shown(), (QStringList{QStringLiteral("new"), QStringLiteral("old")}));
    EXPECT_TRUE(shows("the test's memory"));
    EXPECT_FALSE(button("Try Again")->isVisible());
}

TEST_F(StartWindowTest, DoubleClickConnects)
{
    remember("old", "a");
    remember("new", "b");
    open();
    const QPoint second = m_view->visualRect(m_view->model()->index(1, 0)).center();
    QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, second);
    QTest::mouseDClick(m_view->viewport(), Qt::LeftButton, {}, second);
    ASSERT_TRUE(waitForRequests(1));
    EXPECT_EQ(requested(0)->host(), QStringLiteral("a"));
    EXPECT_EQ(requested(0)->password(), QStringLiteral("p"));
    EXPECT_EQ(requested(0)->connectionId(), QStringLiteral("old"));
    EXPECT_EQ(shown().first(), QStringLiteral("old")); // the latest now
}

TEST_F(StartWindowTest, ConnectsWithTheReturnKey)
{
    remember("old", "a");
    remember("new", "b");
    open();
    QTest::keyClick(m_view, Qt::Key_Return);
    ASSERT_TRUE(waitForRequests(1));
    EXPECT_EQ(requested(0)->host(), QStringLiteral("b"));
}

TEST_F(StartWindowTest, FiltersWhileOneTypesAndConnectsFromThere)
{
    remember("Production", "db1.example");
    remember("Test", "db2.example");
    remember("Staging", "db3.example");
    open();
    QTest::keyClicks(m_filter, QStringLiteral("PROD"));
    EXPECT_EQ(shown(), QStringList{QStringLiteral("Production")});
    m_filter->setText(QStringLiteral("db2")); // the server counts, too
    EXPECT_EQ(shown(), QStringList{QStringLiteral("Test")});
    QTest::keyClick(m_filter, Qt::Key_Return);
    ASSERT_TRUE(waitForRequests(1));
    EXPECT_EQ(requested(0)->host(), QStringLiteral("db2.example"));

    m_filter->setText(QStringLiteral("nothing like it"));
    EXPECT_TRUE(shown().isEmpty());
    EXPECT_TRUE(shows("No connection matches the filter."));
    QTest::keyClick(m_filter, Qt::Key_Return);
    EXPECT_EQ(m_requests->size(), 1);
}

TEST_F(StartWindowTest, GoesThroughTheListWithTheArrowKeysOfTheFilter)
{
    remember("old", "a");
    remember("new", "b");
    open();
    QTest::keyClick(m_filter, Qt::Key_Down);
    QTest::keyClick(m_filter, Qt::Key_Down);
    QTest::keyClick(m_filter, Qt::Key_Return);
    ASSERT_TRUE(waitForRequests(1));
    EXPECT_EQ(requested(0)->host(), QStringLiteral("a"));
}

TEST_F(StartWindowTest, AsksForAPasswordThatIsNotRemembered)
{
    remember("one", "a", "");
    open();
    QTest::keyClick(m_view, Qt::Key_Return);
    EXPECT_EQ(m_requests->size(), 0);
    ASSERT_TRUE(login());
    QTest::keyClicks(login()->findChild<QLineEdit *>(), QStringLiteral("typed"));
    QTest::keyClick(login(), Qt::Key_Return);
    ASSERT_TRUE(waitForRequests(1));
    EXPECT_EQ(requested(0)->password(), QStringLiteral("typed"));
    // As long as the program runs it is not asked for again, and it is not stored.
    QTest::keyClick(m_view, Qt::Key_Return);
    ASSERT_TRUE(waitForRequests(2));
    EXPECT_FALSE(QByteArray::fromBase64(m_store->texts.value(QStringLiteral("Connections")).toLatin1())
                     .contains("typed"));
}

TEST_F(StartWindowTest, OpensNothingBeforeTheLoginHasSucceededAndOffersThePasswordAgain)
{
    const auto entry = remember("one", "a", "wrong");
    entry->rememberPassword = true;
    server().refusesLogins = true;
    server().refusal = KNError(QStringLiteral("fake"), 1, QStringLiteral("Login failed for user 'alice'."),
                               VantorLoginProblemInfo(VantorLoginProblem::LoginRefused));
    open();
    QTest::keyClick(m_view, Qt::Key_Return);
    ASSERT_TRUE(login());
    EXPECT_FALSE(login()->findChild<QLineEdit *>()->isVisible()); // it is known, as far as one knows
    ASSERT_TRUE(WindowTesting::waitFor([this] { return !login()->problem().isEmpty(); }));
    EXPECT_EQ(m_requests->size(), 0);
    EXPECT_TRUE(login()->problem().contains(QStringLiteral("Login failed for user 'alice'.")));
    EXPECT_TRUE(m_alerts.errors.empty());
    auto *const password = login()->findChild<QLineEdit *>();
    EXPECT_TRUE(password->isVisible());
    EXPECT_EQ(login()->focusWidget(), password);
    const auto buttons = login()->findChildren<QPushButton *>();
    EXPECT_TRUE(std::any_of(buttons.begin(), buttons.end(), [](const QPushButton *one) {
        return one->isDefault() && one->isEnabled() && one->text() == QStringLiteral("&Try Again");
    }));

    server().refusesLogins = false;
    QTest::keyClicks(password, QStringLiteral("right")); // the wrong one is selected
    QTest::keyClick(login(), Qt::Key_Return);
    ASSERT_TRUE(waitForRequests(1));
    EXPECT_EQ(requested(0)->password(), QStringLiteral("right"));
    EXPECT_EQ(list().connections().first()->password, QStringLiteral("right"));
    EXPECT_TRUE(QByteArray::fromBase64(m_store->texts.value(QStringLiteral("Connections")).toLatin1())
                    .contains("\"right\""));
}

TEST_F(StartWindowTest, AFailedLoginCanBeCancelledAndRemembersNoUse)
{
    remember("one", "a");
    server().refusesLogins = true;
    open();
    const auto lastUsed = list().connections().first()->lastUsed;
    QTest::keyClick(m_view, Qt::Key_Return);
    ASSERT_TRUE(WindowTesting::waitFor([this] { return !login()->problem().isEmpty(); }));
    QTest::keyClick(login(), Qt::Key_Escape);
    ASSERT_TRUE(WindowTesting::settle());
    EXPECT_EQ(m_requests->size(), 0);
    EXPECT_EQ(list().connections().first()->lastUsed, lastUsed);
}

TEST_F(StartWindowTest, ConnectsToNothingWhenNoPasswordIsGiven)
{
    remember("one", "a", "");
    open();
    QTest::keyClick(m_view, Qt::Key_Return);
    QTest::keyClick(login(), Qt::Key_Escape);
    EXPECT_EQ(m_requests->size(), 0);
}

TEST_F(StartWindowTest, ConnectIsItsDefaultButton)
{
    remember("one", "a");
    open();
    EXPECT_TRUE(button("Connect")->isDefault());
    m_filter->clear();
    QTest::keyClick(m_window.get(), Qt::Key_Return);
    EXPECT_TRUE(waitForRequests(1));
}

TEST_F(StartWindowTest, NewConnectionOpensWithSettingsOfDialog)
{
    remember("one", "a");
    open();
    button("New Connection…")->click();
    auto *const dialog = static_cast<Dialog *>(m_window->findChild<ConnectionWindowController *>());
    ASSERT_TRUE(dialog);
    ASSERT_TRUE(dialog->recentConnection());
    EXPECT_TRUE(dialog->recentConnection()->serverHost.isEmpty()); // it begins empty
    EXPECT_FALSE(dialog->recentConnection()->connectionId.isEmpty());
    const auto details = newSettings();
    dialog->setDatabaseConnectionDetails(details);
    dialog->endSheetWithReturnCode(KNModalResponseSaveAndConnect);
    ASSERT_EQ(m_requests->size(), 1);
    EXPECT_EQ(requested(0), details);
}

TEST_F(StartWindowTest, EditsACopyAndConnectsToNothingThatWasOnlySaved)
{
    const auto entry = remember("one", "a");
    open();
    trigger("Edit…");
    auto *const dialog = m_window->findChild<ConnectionWindowController *>();
    ASSERT_TRUE(dialog);
    ASSERT_TRUE(dialog->recentConnection());
    EXPECT_EQ(dialog->recentConnection()->connectionId, QStringLiteral("one"));
    EXPECT_NE(dialog->recentConnection(), entry);
    dialog->endSheetWithReturnCode(KNModalResponseSaveWithoutConnecting);
    EXPECT_EQ(m_requests->size(), 0);
}

TEST_F(StartWindowTest, DuplicatesAConnection)
{
    remember("one", "a");
    open();
    trigger("Duplicate");
    ASSERT_EQ(shown().size(), 2);
    EXPECT_EQ(m_view->currentIndex().data().toString(), QStringLiteral("one copy"));
    EXPECT_NE(list().connections()[0]->connectionId, list().connections()[1]->connectionId);
}

TEST_F(StartWindowTest, RemovesAConnectionAfterItHasAskedAndNotWithTheReturnKey)
{
    remember("one", "a");
    remember("two", "b");
    open();
    m_alerts.answer = 0; // the default button
    trigger("Remove…");
    EXPECT_EQ(shown().size(), 2);
    m_alerts.answer = -1; // Esc
    trigger("Remove…");
    EXPECT_EQ(shown().size(), 2);
    m_alerts.answer = 1;
    trigger("Remove…");
    EXPECT_EQ(shown(), QStringList{QStringLiteral("one")});
    ASSERT_EQ(m_alerts.questions.size(), 3U);
    EXPECT_EQ(m_alerts.questions[0].buttons, (QStringList{QStringLiteral("Keep"), QStringLiteral("Remove")}));
}

TEST_F(StartWindowTest, ShowsHintWhenListIsEmpty)
{
    open();
    EXPECT_TRUE(shows("will be listed here"));
    EXPECT_FALSE(button("Connect")->isEnabled());
    QSignalSpy sample(m_window.get(), &StartWindow::sampleServerRequested);
    button("Try the Sample Server")->click();
    EXPECT_EQ(sample.size(), 1);
    remember("one", "a");
    EXPECT_FALSE(shows("will be listed here"));
    EXPECT_TRUE(button("Connect")->isEnabled());
}

TEST_F(StartWindowTest, ShowsStoreErrorAndRetries)
{
    m_connector.reset();
    m_store->holdsAnswersBack = true;
    m_store->readProblem = KNKeyValueStore::Refused;
    m_connector = std::make_unique<Connector>();
    open();
    EXPECT_TRUE(shows("Reading the remembered connections"));
    m_store->holdsAnswersBack = false;
    m_store->answerPending();
    EXPECT_TRUE(shows("As the test wants it."));
    ASSERT_TRUE(button("Try Again")->isVisible());
    m_store->readProblem.reset();
    button("Try Again")->click();
    EXPECT_FALSE(shows("As the test wants it."));
    EXPECT_FALSE(button("Try Again")->isVisible());
}

TEST_F(StartWindowTest, KeepsItsOrderWhenAConnectionIsOnlySaved)
{
    const auto older = remember("old", "a");
    remember("new", "b");
    open();
    const auto saved = older->copy();
    saved->username = QStringLiteral("bob");
    list().update(saved);
    EXPECT_EQ(shown(), (QStringList{QStringLiteral("new"), QStringLiteral("old")}));
}

TEST_F(StartWindowTest, ShowsGroupsByNameBelowTheOthers)
{
    remember("in b", "a")->group = QStringLiteral("Beta");
    remember("plain", "b");
    remember("in a", "c")->group = QStringLiteral("alpha");
    remember("in a, too", "d")->group = QStringLiteral("Alpha");
    open();
    EXPECT_EQ(shown(), (QStringList{QStringLiteral("plain"), QStringLiteral("in a, too"),
                                    QStringLiteral("in a"), QStringLiteral("in b")}));
    // The first row of a group has the group's name above it.
    const auto height = [this](int row) {
        return m_view->visualRect(m_view->model()->index(row, 0)).height();
    };
    EXPECT_GT(height(1), height(0));
    EXPECT_EQ(height(2), height(0));
    EXPECT_GT(height(3), height(0));
    EXPECT_TRUE(m_view->model()
                    ->index(1, 0)
                    .data(Qt::AccessibleTextRole)
                    .toString()
                    .contains(QStringLiteral("group Alpha")));
    m_filter->setText(QStringLiteral("beta")); // a group is found by its name
    EXPECT_EQ(shown(), QStringList{QStringLiteral("in b")});
}

TEST_F(StartWindowTest, ReadsOutThatAConnectionIsAProductionOne)
{
    remember("one", "a")->isProduction = true;
    open();
    EXPECT_TRUE(m_view->model()
                    ->index(0, 0)
                    .data(Qt::AccessibleTextRole)
                    .toString()
                    .contains(QStringLiteral("production")));
    QTest::keyClick(m_view, Qt::Key_Return);
    ASSERT_TRUE(waitForRequests(1));
    EXPECT_TRUE(requested(0)->isProduction());
}
