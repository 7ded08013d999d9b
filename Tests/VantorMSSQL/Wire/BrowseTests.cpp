#include "Implementations/MSSQLBrowserServiceClient.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNNotificationCenter.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <atomic>

namespace {

using Client = MSSQLBrowserServiceClient;

/// Counts the notifications of the search while it lives.
class Browsing : public testing::Test
{
protected:
    void TearDown() override
    {
        Client::stopBrowseForServers();
        EXPECT_TRUE(KNDispatch::waitUntilIdle(30000));
        Client::setSearch({});
    }
    /// Asks whoever listens on the loopback's own broadcast address.
    static void searchLoopback(quint16 port)
    {
        Client::setSearch({QStringLiteral("127.255.255.255"), port, std::chrono::milliseconds(100),
                           std::chrono::milliseconds(1)});
    }
    /// A port on which nobody listens.
    static quint16 silentPort()
    {
        const SampleServerFixture server({{"--browser-port", "0"}, {}});
        return server.browserPort();
    }

    std::atomic<int> m_started = 0;
    std::atomic<int> m_updated = 0;

private:
    const KNNotificationCenter::Token m_tokens[2] = {
        KNNotificationCenter::defaultCenter()->addObserver(
            Client::MSSQLBrowserServiceClientStartedSearchingNotification,
            [this](const QString &, const QVariantMap &) { ++m_started; }),
        KNNotificationCenter::defaultCenter()->addObserver(
            Client::MSSQLBrowserServiceClientUpdatedNotification,
            [this](const QString &, const QVariantMap &) { ++m_updated; })};
};

} // namespace

TEST_F(Browsing, FindsTheInstanceThatAnswersABroadcast)
{
    const SampleServerFixture server({{"--browser-port", "0", "--instance", "SAMPLE"}, {}});
    searchLoopback(server.browserPort());
    Client::doBrowseForServers();
    EXPECT_EQ(m_started, 1);
    EXPECT_EQ(m_updated, 1);
    const auto entries = Client::allDatabases();
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(entries[0].instance, QStringLiteral("SAMPLE"));
    EXPECT_EQ(entries[0].port, server.port());
    EXPECT_FALSE(entries[0].version.isEmpty());
}

TEST_F(Browsing, KeepsListWithoutAnswers)
{
    {
        const SampleServerFixture server({{"--browser-port", "0"}, {}});
        searchLoopback(server.browserPort());
        Client::doBrowseForServers();
    }
    ASSERT_EQ(Client::allDatabases().size(), 1);
    searchLoopback(silentPort());
    Client::doBrowseForServers();
    EXPECT_EQ(m_started, 2);
    EXPECT_EQ(m_updated, 1);
    EXPECT_EQ(Client::allDatabases().size(), 1);
}

TEST_F(Browsing, RepeatsInBackgroundUntilStopped)
{
    const SampleServerFixture server({{"--browser-port", "0"}, {}});
    searchLoopback(server.browserPort());
    Client::beginBrowseForServers();
    EXPECT_TRUE(WireTest::waitFor([] { return Client::IsSearching(); }));
    EXPECT_TRUE(WireTest::waitFor([this] { return m_updated >= 2; }));
    Client::stopBrowseForServers();
    ASSERT_TRUE(KNDispatch::waitUntilIdle(30000));
    EXPECT_FALSE(Client::IsSearching());
    EXPECT_EQ(Client::allDatabases().size(), 1);
}

TEST_F(Browsing, IsStoppedWithoutWaitingForItsPause)
{
    Client::setSearch({QStringLiteral("no address"), 1, std::chrono::milliseconds(1), std::chrono::hours(1)});
    Client::beginBrowseForServers();
    EXPECT_TRUE(WireTest::waitFor([this] { return m_started == 1 && !Client::IsSearching(); }));
    Client::stopBrowseForServers();
    EXPECT_TRUE(KNDispatch::waitUntilIdle(30000));
    EXPECT_EQ(m_started, 1);
}
