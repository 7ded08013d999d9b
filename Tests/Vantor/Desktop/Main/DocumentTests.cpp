#include "Database/VantorDBC.h"
#include "DatabaseTree/KNDatabaseTreeContextHelper.h"
#include "Desktop/Main/DocumentTabs.h"
#include "Desktop/Main/MainWindowActions.h"
#include "Desktop/Main/StatusLine.h"
#include "QueryLoader/StaticQueryLoader.h"
#include "Support/DummyDocument.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/WindowTesting.h"
#include "UI/Alerts/KNUserNotifications.h"
#include "UI/DatabaseTree/KNDatabaseTreeViewController.h"
#include "UI/KNConnectorUserInterface.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QFile>
#include <QLabel>
#include <QTabBar>
#include <QTemporaryDir>

#include <stdexcept>

using WindowTesting::waitFor;

namespace {

const QString DummyKind = QStringLiteral("dummy");

/// What a connector with a new feature would bring: an action of the tree that opens a new kind of document.
class DummyConnector : public KNConnectorUserInterface
{
public:
    ConnectionWindowController *createConnectionWindowController(QWidget *) const override { return nullptr; }
    SQLRecentConnectionList &recentConnections() const override { throw std::logic_error("not used"); }
    void addTreeActions(KNDatabaseTreeContextHelper &helper, KNWorkspace &workspace) const override
    {
        helper.addAction(QStringLiteral("openDummy:"), [pointer = workspace.weakPointer()](
                                                           const KNMenuRepresentedObject &) {
            if (const auto existing = pointer.lock())
                existing->openDocument(std::make_unique<DummyDocument>(existing->selectedSettings()));
        });
    }
    std::unique_ptr<KNDocumentTab> restoreDocument(const KNDocumentState &state,
                                                   KNWorkspace &workspace) const override
    {
        if (state.kind != DummyKind)
            return nullptr;
        auto document = std::make_unique<DummyDocument>(workspace.databaseConnectionDetails());
        document->titleText = state.content.value(QStringLiteral("title")).toString();
        document->state = state;
        return document;
    }
};

class RecordingNotifications : public KNUserNotifications
{
public:
    void notify(const QString &title, const QString &text) override { shown.append({title, text}); }
    QList<QStringList> shown;
};

/// A window whose connector has a kind of document that the program does not know.
class Documents : public testing::Test
{
protected:
    Documents()
        : alerts(RecordingAlerts::install())
    {
        open(QString::fromLatin1(testing::UnitTest::GetInstance()->current_test_info()->name()));
    }
    ~Documents() override
    {
        delete window;
        EXPECT_TRUE(WindowTesting::settle());
    }
    void open(const QString &connectionId)
    {
        delete window;
        const VantorDBCPtr details =
            DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"));
        details->setConnectionId(connectionId);
        window = new MainWindow(*details, &connector);
        window->show();
    }
    DummyDocument *openDummy()
    {
        EXPECT_TRUE(window->treeContextHelper().performAction(QStringLiteral("openDummy:"), {}));
        return dynamic_cast<DummyDocument *>(window->currentDocument());
    }
    QAction *action(const char *name) const { return window->actions()->action(QString::fromLatin1(name)); }
    QString tabText(const KNDocumentTab *document) const
    {
        return window->tabs()->tabText(window->tabs()->indexOf(document));
    }
    QString statusText(const char *name) const
    {
        for (const QLabel *const label : window->statusBar()->findChildren<QLabel *>()) {
            if (label->accessibleName() == QLatin1String(name))
                return label->text();
        }
        return {};
    }

    RecordingAlerts &alerts;
    DummyConnector connector;
    QPointer<MainWindow> window;
};

} // namespace

TEST_F(Documents, OfANewKindOpenFromANewActionOfTheTree)
{
    DummyDocument *const document = openDummy();
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(window->documents().size(), 2);
    EXPECT_EQ(tabText(document), QStringLiteral("Dummy"));
    EXPECT_EQ(document->databaseConnectionDetails()->database(), QStringLiteral("shop"));
}

TEST_F(Documents, ShowTheirTitleMarkAndStatus)
{
    DummyDocument *const document = openDummy();
    document->titleText = QStringLiteral("Orders");
    document->modified = true;
    Q_EMIT document->titleChanged();
    EXPECT_EQ(tabText(document), QStringLiteral("Orders •"));
    document->shownStatus.text = QStringLiteral("Dropping column");
    document->shownStatus.database = QStringLiteral("library");
    Q_EMIT document->statusChanged();
    EXPECT_EQ(statusText("Activity"), QStringLiteral("Dropping column"));
    EXPECT_EQ(statusText("Database"), QStringLiteral("library"));
    EXPECT_EQ(statusText("Rows"), QString()) << "the document has no rows";
    EXPECT_EQ(statusText("Time"), QString());
    window->showDocument(window->documents().first());
    EXPECT_EQ(statusText("Activity"), QString());
    EXPECT_EQ(statusText("Rows"), QStringLiteral("0 rows"));
}

TEST_F(Documents, PerformTheActionsThatTheyOffer)
{
    DummyDocument *const document = openDummy();
    EXPECT_FALSE(action("run")->isEnabled());
    EXPECT_FALSE(action("save")->isEnabled());
    EXPECT_TRUE(action("closeTab")->isEnabled());
    document->possible = {KNDocumentAction::Save, KNDocumentAction::Cancel};
    Q_EMIT document->statusChanged();
    EXPECT_TRUE(action("save")->isEnabled());
    EXPECT_FALSE(action("saveAs")->isEnabled());
    action("save")->trigger();
    action("cancel")->trigger();
    EXPECT_EQ(document->performed,
              (QList<KNDocumentAction>{KNDocumentAction::Save, KNDocumentAction::Cancel}));
    window->showDocument(window->documents().first());
    EXPECT_TRUE(action("run")->isEnabled());
    EXPECT_TRUE(action("saveAs")->isEnabled());
}

TEST_F(Documents, StayOpenUntilTheyAgreeToClose)
{
    const QPointer document = openDummy();
    action("closeTab")->trigger();
    ASSERT_TRUE(document->closing);
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_EQ(window->documents().size(), 2);
    document->closing();
    EXPECT_TRUE(waitFor([&] { return !document; }));
    EXPECT_EQ(window->documents().size(), 1);
}

TEST_F(Documents, KeepTheirWindowOpenUntilTheyAgree)
{
    DummyDocument *const document = openDummy();
    window->close();
    ASSERT_TRUE(document->closing);
    EXPECT_TRUE(window->isVisible());
    document->closing();
    EXPECT_TRUE(waitFor([&] { return !window; }));
}

TEST_F(Documents, AreRestoredByTheirConnectorAtTheirPosition)
{
    open(QStringLiteral("documents restored"));
    DummyDocument *const document = openDummy();
    document->state = KNDocumentState{
        QStringLiteral("7"), DummyKind, {{QStringLiteral("title"), QStringLiteral("Orders")}}};
    Q_EMIT document->stateChanged();
    window->newQuery();
    DesktopTesting::currentQuery(*window)->insertText(QStringLiteral("select 1"));
    window->close();
    document->closing();
    EXPECT_TRUE(waitFor([&] { return !window; }));

    open(QStringLiteral("documents restored"));
    ASSERT_EQ(window->documents().size(), 3);
    EXPECT_NE(qobject_cast<QueryTab *>(window->documents().at(0)), nullptr);
    EXPECT_EQ(window->documents().at(1)->title(), QStringLiteral("Orders"));
    EXPECT_EQ(qobject_cast<QueryTab *>(window->documents().at(2))->text(), QStringLiteral("select 1"));
}

TEST_F(Documents, OfAnUnknownKindAreNotRestored)
{
    open(QStringLiteral("documents unknown"));
    DummyDocument *const document = openDummy();
    document->state = KNDocumentState{QStringLiteral("7"), QStringLiteral("other"), {}};
    Q_EMIT document->stateChanged();
    window->close();
    document->closing();
    EXPECT_TRUE(waitFor([&] { return !window; }));
    open(QStringLiteral("documents unknown"));
    EXPECT_EQ(window->documents().size(), 1);
}

TEST_F(Documents, TakeNoTextFromTheHistoryIfTheyHaveNone)
{
    DummyDocument *const document = openDummy();
    EXPECT_FALSE(document->insertText(QStringLiteral("select 1")));
    window->openQueryText(QStringLiteral("select 2"), window->databaseConnectionDetails(),
                          KNWorkspace::QueryUse::Show, {});
    EXPECT_EQ(DesktopTesting::currentQuery(*window)->text(), QStringLiteral("select 2"));
}

TEST_F(Documents, AreNotReplacedByAFileUnlessUnused)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.sql"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("SELECT 1");
    file.close();
    openDummy();
    window->openFiles({path});
    EXPECT_EQ(window->documents().size(), 3);
    EXPECT_EQ(window->currentDocument()->filePath(), path);
}

TEST_F(Documents, OpenAScriptWithNoticesWithoutRunningIt)
{
    KNQueryReport report;
    report.notices = {QStringLiteral("It acts on another table.")};
    window->openQuery(std::make_shared<StaticQueryLoader>(QStringLiteral("SELECT 1"), report),
                      window->databaseConnectionDetails(), KNWorkspace::QueryUse::Execute);
    QueryTab *const query = DesktopTesting::currentQuery(*window);
    EXPECT_EQ(query->text(), QStringLiteral("-- It acts on another table.\r\nSELECT 1"));
    EXPECT_FALSE(query->isRunning());
    window->openQuery(std::make_shared<StaticQueryLoader>(QStringLiteral("SELECT 2")),
                      window->databaseConnectionDetails(), KNWorkspace::QueryUse::Execute);
    EXPECT_TRUE(DesktopTesting::currentQuery(*window)->isRunning());
    EXPECT_TRUE(waitFor([&] { return !DesktopTesting::currentQuery(*window)->isRunning(); }));
}

TEST_F(Documents, ShowWhyAScriptHasNoText)
{
    KNQueryReport report;
    report.failure = KNError(QStringLiteral("x"), 1, QStringLiteral("The view is encrypted."));
    window->openQuery(std::make_shared<StaticQueryLoader>(QString(), report),
                      window->databaseConnectionDetails(), KNWorkspace::QueryUse::Show);
    ASSERT_EQ(alerts.messages.size(), 1u);
    EXPECT_EQ(alerts.messages.front().last(), QStringLiteral("The view is encrypted."));
    EXPECT_EQ(window->documents().size(), 1);
}

TEST_F(Documents, ActionsOfTheTreeDoNothingWithoutTheirWindow)
{
    const KNWorkspace::Settings details = window->databaseConnectionDetails();
    KNDatabaseTreeContextHelper helper;
    connector.addTreeActions(helper, *window);
    delete window;
    EXPECT_TRUE(helper.performAction(QStringLiteral("openDummy:"), {}));
}

TEST_F(Documents, NotifyTheUserOnTheDesktopAndInTheWindow)
{
    auto owned = std::make_unique<RecordingNotifications>();
    const RecordingNotifications &notifications = *owned;
    KNUserNotifications::setShared(std::move(owned));
    window->notifyUser(QStringLiteral("Index has been dropped"), QStringLiteral("Index a has been dropped"));
    EXPECT_EQ(notifications.shown, (QList<QStringList>{{QStringLiteral("Index has been dropped"),
                                                        QStringLiteral("Index a has been dropped")}}));
    EXPECT_EQ(window->statusBar()->currentMessage(), QStringLiteral("Index a has been dropped"));
    KNUserNotifications::setShared(nullptr);
}
