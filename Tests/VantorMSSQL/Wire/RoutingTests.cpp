#include "Support/HostileServerBytes.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <QElapsedTimer>

using namespace WireTest;
using namespace HostileServerBytes;

namespace {

void put16(Bytes &out, std::size_t number)
{
    out.push_back(static_cast<std::uint8_t>(number));
    out.push_back(static_cast<std::uint8_t>(number >> 8));
}

/// Where a server sends a client at the end of its login (MS-TDS 2.2.7.9, type 20).
struct Route
{
    std::string host;
    std::uint16_t port = 0;
    std::uint8_t protocol = 0; ///< TCP
    /// What the token says about lengths instead of the truth.
    std::optional<std::uint16_t> claimedCharacters = {};
    std::optional<std::uint16_t> claimedBytes = {};
};

Bytes tokenOf(const Route &route)
{
    Bytes data{route.protocol};
    put16(data, route.port);
    put16(data, route.claimedCharacters.value_or(static_cast<std::uint16_t>(route.host.size())));
    for (const char character : route.host) {
        data.push_back(static_cast<std::uint8_t>(character));
        data.push_back(0);
    }
    constexpr std::uint8_t Routing = 20;
    Bytes content{Routing};
    put16(content, route.claimedBytes.value_or(static_cast<std::uint16_t>(data.size())));
    content.insert(content.end(), data.begin(), data.end());
    put16(content, 0); // the old value
    constexpr std::uint8_t EnvironmentChange = 0xE3;
    Bytes token{EnvironmentChange};
    put16(token, content.size());
    token.insert(token.end(), content.begin(), content.end());
    return token;
}

HostileServer::Script routing(const Route &route)
{
    using Server = HostileServer;
    return {Server::expect(PreloginPacket), Server::send(packet(preloginAnswer())),
            Server::expect(LoginPacket), Server::send(packet(joined({tokenOf(route), loginAnswer()})))};
}

/// Logs in at a server that routes; must end within the bound, with a session or with an error.
bool logsIn(quint16 port, KNError *error)
{
    const auto details = settings(port);
    details->setSessionParameters({{QStringLiteral("loginTimeout"), 2}});
    MSSQLClient client(details);
    QElapsedTimer timer;
    timer.start();
    const bool isIn = client.connect(error);
    constexpr qint64 Bound = 12'000; // four versions of the protocol may be tried
    EXPECT_LT(timer.elapsed(), Bound);
    EXPECT_NE(isIn, bool(*error));
    return isIn;
}

void expectNextConnectionWorks()
{
    EXPECT_EQ(scalar(*connectedClient(), QStringLiteral("SELECT 3")), KNValue(3));
}

} // namespace

TEST(RoutedLogin, LeadsToTheServerThatIsNamed)
{
    const SampleServerFixture &other = SampleServerFixture::shared();
    const HostileServer server(routing({"127.0.0.1", other.port()}));
    MSSQLClient client(settings(server.port()));
    KNError error;
    ASSERT_TRUE(client.connect(&error)) << error.localizedDescription().toStdString();
    EXPECT_EQ(scalar(client, QStringLiteral("SELECT COUNT(*) FROM sys.databases WHERE name = 'shop'")),
              KNValue(1));
}

TEST(RoutedLogin, LoopToSameServerFails)
{
    std::uint16_t port = 0;
    HostileServer server([&port](std::uint64_t) { return routing({"127.0.0.1", port}); });
    port = server.port();
    KNError error;
    EXPECT_FALSE(logsIn(server.port(), &error));
    constexpr std::uint64_t MostConnections = 40;
    EXPECT_LE(server.connectionCount(), MostConnections);
    expectNextConnectionWorks();
}

TEST(RoutedLogin, LoopBetweenTwoServersFails)
{
    std::uint16_t second = 0;
    HostileServer first([&second](std::uint64_t) { return routing({"127.0.0.1", second}); });
    HostileServer other([&first](std::uint64_t) { return routing({"127.0.0.1", first.port()}); });
    second = other.port();
    KNError error;
    EXPECT_FALSE(logsIn(first.port(), &error));
    constexpr std::uint64_t MostConnections = 40;
    EXPECT_LE(first.connectionCount() + other.connectionCount(), MostConnections);
    expectNextConnectionWorks();
}

TEST(RoutedLogin, ToNowhereIsAnErrorInTime)
{
    const std::uint16_t port = SampleServerFixture::shared().port();
    const std::vector<Route> routes = {
        {"127.0.0.1", 0},
        {"127.0.0.1", 1},
        {"127.0.0.1", 65535},
        {"127.0.0.1\\SQLEXPRESS", 0},
        {"127.0.0.1\\SQLEXPRESS", 1},
        {"nowhere.invalid", port},
        {"", port},
        {" ", port},
        {"-oProxyCommand=x", port},
        {"[127.0.0.1]", port},
        {"127.0.0.1,1", port},
        {std::string("127.0.0.1\0.example", 18), port},
        {std::string(128, 'a'), port},
        {std::string(1000, 'a'), port},
        {std::string(16000, 'a'), port},
    };
    for (const Route &route : routes) {
        SCOPED_TRACE(route.host.substr(0, 40) + ' ' + std::to_string(route.port));
        const HostileServer server(routing(route));
        KNError error;
        logsIn(server.port(), &error);
    }
    expectNextConnectionWorks();
}

TEST(RoutedLogin, WithLengthsThatLieIsAnErrorInTime)
{
    const std::uint16_t port = SampleServerFixture::shared().port();
    const std::string host = "127.0.0.1";
    const std::vector<Route> routes = {
        {host, port, 1},          {host, port, 255},           {host, port, 0, 0},     {host, port, 0, 8},
        {host, port, 0, 10},      {host, port, 0, 0xFFFF},     {host, port, 0, {}, 0}, {host, port, 0, {}, 4},
        {host, port, 0, {}, 100}, {host, port, 0, {}, 0xFFFF}, {host, port, 0, 0, 0},
    };
    for (const Route &route : routes) {
        SCOPED_TRACE(std::to_string(route.protocol) + ' ' +
                     std::to_string(route.claimedCharacters.value_or(9)) + ' ' +
                     std::to_string(route.claimedBytes.value_or(23)));
        const HostileServer server(routing(route));
        KNError error;
        logsIn(server.port(), &error);
    }
    expectNextConnectionWorks();
}
