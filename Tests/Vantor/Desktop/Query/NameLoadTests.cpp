// Names that are loaded late, not at all, or from several databases, over the wire.

#include "Autocomplete/KNAutocompleteHelper.h"
#include "Autocomplete/KNCompletionCatalog.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "Support/HostileServerRelay.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/TestText.h"
#include "Support/WindowTesting.h"
#include "UI/Completion/KNCompletionPopup.h"
#include "UI/Completion/KNEditorCompletion.h"
#include "UI/Editor/KNSQLEditor.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QElapsedTimer>

#include <algorithm>
#include <atomic>
#include <string_view>
#include <thread>

namespace NameLoadTests {

using WindowTesting::waitFor;

/// Holds the queries for names back on their way to the server.
class Gate
{
public:
    explicit Gate(HostileServerRelay &relay)
    {
        relay.changeClient([this](std::span<std::uint8_t> bytes) { hold(bytes); });
    }
    ~Gate() { open(); }

    void open() { m_isOpen = true; }
    bool isReached() const { return m_isReached; }

private:
    void hold(std::span<std::uint8_t> bytes)
    {
        constexpr std::u16string_view Mark = u"AS schemaName";
        const std::string_view mark(reinterpret_cast<const char *>(Mark.data()), Mark.size() * 2);
        const std::string_view said(reinterpret_cast<const char *>(bytes.data()), bytes.size());
        if (said.find(mark) == std::string_view::npos)
            return;
        m_isReached = true;
        for (int step = 0; step < 2'000 && !m_isOpen; ++step) // 20 s at most
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }

    std::atomic<bool> m_isOpen = false;
    std::atomic<bool> m_isReached = false;
};

class NameLoads : public testing::Test
{
protected:
    ~NameLoads() override
    {
        EXPECT_TRUE(WindowTesting::settle());
        EXPECT_TRUE(alerts.messages.empty());
    }

    static std::unique_ptr<QueryTab> shownTab(const VantorDBC &details)
    {
        auto tab = std::make_unique<QueryTab>(details);
        tab->resize(800, 600);
        tab->show();
        tab->activateWindow();
        tab->editor()->setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(tab.get()));
        return tab;
    }
    static void loadNames(const QueryTab &tab)
    {
        const auto details = tab.databaseConnectionDetails();
        ASSERT_TRUE(waitFor([&] {
            const auto catalog = details->sharedAutocompleteHelper()->catalogForConnection(*details);
            return catalog && !catalog->databases.isEmpty();
        }));
    }
    /// The names that are offered at the end of a text.
    static QStringList offered(QueryTab &tab, const char *text)
    {
        tab.setText(q(text));
        tab.editor()->selectRange({tab.text().size(), 0});
        QStringList names;
        const auto items = tab.completion()->completions();
        for (const KNCompletionItem &item : items)
            names.append(item.name);
        return names;
    }
    static void execute(const VantorDBC &details, const char *sql)
    {
        const auto client = details.createNewClient();
        KNError error;
        ASSERT_TRUE(client->connect(&error));
        client->executeQuery(q(sql), &error);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
    }

    RecordingAlerts &alerts = RecordingAlerts::install();
};

TEST_F(NameLoads, SlowLoadDelaysNoKey)
{
    HostileServerRelay relay(SampleServerFixture::shared().port(), HostileServerRelay::Fault::None, 0);
    Gate gate(relay);
    const auto tab = shownTab(*DesktopTesting::settingsFor(relay.port(), q("shop")));
    QElapsedTimer timer;
    timer.start();
    QTest::keyClicks(tab->editor(), q("SELECT * FROM Orde"));
    EXPECT_LT(timer.elapsed(), 5'000); // the queries are held back for 20 s
    EXPECT_EQ(tab->text(), q("SELECT * FROM Orde"));
    ASSERT_TRUE(waitFor([&] { return gate.isReached(); }));
    EXPECT_FALSE(offered(*tab, "SELECT * FROM Orde").contains(q("Orders")));
    EXPECT_LT(timer.elapsed(), 15'000);
    gate.open();
    EXPECT_TRUE(waitFor([&] { return offered(*tab, "SELECT * FROM Orde").contains(q("Orders")); }));
}

TEST_F(NameLoads, ClosedTabLeavesItsLoadBehind)
{
    HostileServerRelay relay(SampleServerFixture::shared().port(), HostileServerRelay::Fault::None, 0);
    Gate gate(relay);
    const VantorDBCPtr details = DesktopTesting::settingsFor(relay.port(), q("shop"));
    auto tab = shownTab(*details);
    QTest::keyClicks(tab->editor(), q("SELECT * FROM Orde"));
    ASSERT_TRUE(waitFor([&] { return gate.isReached(); }));
    tab.reset();
    gate.open();
    EXPECT_TRUE(WindowTesting::settle());
    const auto next = shownTab(*details); // finds the names there, without a load of its own
    EXPECT_TRUE(offered(*next, "SELECT * FROM Orde").contains(q("Orders")));
}

TEST_F(NameLoads, FailedLoadLeavesTypingAlone)
{
    HostileServerRelay relay(SampleServerFixture::shared().port(), HostileServerRelay::Fault::None, 0);
    relay.replaceInBatches(u"FROM sys.columns AS col", u"FROM syz.columns AS col");
    const auto tab = shownTab(*DesktopTesting::settingsFor(relay.port(), q("shop")));
    QTest::keyClicks(tab->editor(), q("SELECT * FROM Orders o WHE"));
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_EQ(tab->text(), q("SELECT * FROM Orders o WHE"));
    EXPECT_EQ(offered(*tab, "SELECT * FROM Orders o WHE"), QStringList(q("WHERE")));
    EXPECT_FALSE(offered(*tab, "SELECT * FROM Orde").contains(q("Orders")));
}

TEST_F(NameLoads, DroppedDatabaseKeepsTheNamesThatWereKnown)
{
    const SampleServerFixture server;
    execute(*DesktopTesting::settingsFor(server, q("master")), "CREATE DATABASE leaving");
    const VantorDBCPtr details = DesktopTesting::settingsFor(server, q("leaving"));
    execute(*details, "CREATE TABLE dbo.Remembered (Id int)");
    const auto tab = shownTab(*details);
    loadNames(*tab);
    EXPECT_TRUE(offered(*tab, "SELECT * FROM ").contains(q("Remembered")));
    VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
    execute(*DesktopTesting::settingsFor(server, q("master")), "DROP DATABASE leaving");
    details->sharedAutocompleteHelper()->requestEntriesForDatabaseConnectionDetails(*details, true);
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_TRUE(offered(*tab, "SELECT * FROM ").contains(q("Remembered")));
}

TEST_F(NameLoads, RenamedDatabaseIsKnownByItsNewName)
{
    const SampleServerFixture server;
    const VantorDBCPtr master = DesktopTesting::settingsFor(server, q("master"));
    execute(*master, "CREATE DATABASE before");
    const VantorDBCPtr details = DesktopTesting::settingsFor(server, q("before"));
    execute(*details, "CREATE TABLE dbo.Moved (Id int)");
    const auto tab = shownTab(*details);
    loadNames(*tab);
    EXPECT_TRUE(offered(*tab, "SELECT * FROM ").contains(q("Moved")));
    VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
    execute(*master, "ALTER DATABASE before MODIFY NAME = after");
    const auto renamed = shownTab(*DesktopTesting::settingsFor(server, q("after")));
    loadNames(*renamed);
    EXPECT_TRUE(offered(*renamed, "SELECT * FROM ").contains(q("Moved")));
    EXPECT_TRUE(offered(*renamed, "USE ").contains(q("after")));
    EXPECT_FALSE(offered(*renamed, "USE ").contains(q("before")));
}

TEST_F(NameLoads, TwoConnectionsKeepTheirNamesApart)
{
    const SampleServerFixture other;
    execute(*DesktopTesting::settingsFor(other, q("shop")), "CREATE TABLE dbo.OnTheOtherServer (Id int)");
    const auto shop = shownTab(*DesktopTesting::settingsFor(SampleServerFixture::shared(), q("shop")));
    const auto library = shownTab(*DesktopTesting::settingsFor(SampleServerFixture::shared(), q("library")));
    const auto otherShop = shownTab(*DesktopTesting::settingsFor(other, q("shop")));
    for (QueryTab *const tab : {shop.get(), library.get(), otherShop.get()})
        loadNames(*tab);
    const QStringList inShop = offered(*shop, "SELECT * FROM ");
    const QStringList inLibrary = offered(*library, "SELECT * FROM ");
    const QStringList inOtherShop = offered(*otherShop, "SELECT * FROM ");
    EXPECT_TRUE(inShop.contains(q("Orders")));
    EXPECT_TRUE(inOtherShop.contains(q("Orders")));
    EXPECT_TRUE(inOtherShop.contains(q("OnTheOtherServer")));
    EXPECT_FALSE(inShop.contains(q("OnTheOtherServer")));
    EXPECT_TRUE(inLibrary.contains(q("Books")));
    EXPECT_FALSE(inLibrary.contains(q("Orders")));
    EXPECT_FALSE(inShop.contains(q("Books")));
}

TEST_F(NameLoads, SystemObjectsAreOfferedBehindTheirSchema)
{
    const auto tab = shownTab(*DesktopTesting::settingsFor(SampleServerFixture::shared(), q("shop")));
    loadNames(*tab);
    EXPECT_FALSE(offered(*tab, "SELECT * FROM ").contains(q("all_objects")));
    EXPECT_TRUE(waitFor([&] { return offered(*tab, "SELECT * FROM sys.").contains(q("all_objects")); }));
    EXPECT_TRUE(offered(*tab, "SELECT * FROM INFORMATION_SCHEMA.TAB").contains(q("TABLES")));
    EXPECT_TRUE(offered(*tab, "SELECT * FROM sys.objects o WHERE o.").contains(q("object_id")));
    EXPECT_FALSE(offered(*tab, "SELECT * FROM sys.").contains(q("Orders")));
}

TEST_F(NameLoads, ListOpensOnceTheNamesBehindADotAreLoaded)
{
    const SampleServerFixture server; // nothing of it is known yet
    const auto tab = shownTab(*DesktopTesting::settingsFor(server, q("shop")));
    loadNames(*tab);
    QTest::keyClicks(tab->editor(), q("SELECT * FROM sys."));
    EXPECT_TRUE(
        waitFor([&] { return tab->completion()->popup() && tab->completion()->popup()->isVisible(); }));
}

TEST_F(NameLoads, FiftyThousandTablesAreListedWithinBounds)
{
    const SampleServerFixture server({.arguments = {"--tables", "50000"}});
    const auto tab = shownTab(*DesktopTesting::settingsFor(server, q("many")));
    loadNames(*tab);
    const auto seconds = [] {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
    };
    tab->setText(q("SELECT * FROM tab"));
    tab->editor()->selectRange({17, 0});
    QList<KNCompletionItem> items = tab->completion()->completions();
    EXPECT_EQ(items.size(), 200);
    constexpr int Keys = 10;
    const double begin = seconds();
    for (int key = 0; key < Keys; ++key)
        tab->completion()->completions();
    const double milliseconds = (seconds() - begin) * 1000 / Keys;
    std::printf("%.1f ms for each key with 50,000 tables\n", milliseconds);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    EXPECT_LE(milliseconds, 30.0);
#endif
}

} // namespace NameLoadTests
