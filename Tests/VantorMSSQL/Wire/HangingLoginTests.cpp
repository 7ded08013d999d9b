#include "Database/VantorLoginProblem.h"
#include "Support/HostileServerBytes.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <algorithm>
#include <future>
#include <thread>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace WireTest;
using namespace HostileServerBytes;
using namespace std::chrono_literals;

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point begin)
{
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

std::shared_ptr<MSSQLDatabaseConnectionDetails> settingsWithTimeout(quint16 port, int seconds)
{
    const auto details = settings(port);
    details->setSessionParameters({{QStringLiteral("loginTimeout"), seconds}});
    return details;
}

/// Answers PRELOGIN and then says nothing.
HostileServer::Script silentBehindPrelogin()
{
    return {HostileServer::expect(PreloginPacket), HostileServer::send(packet(preloginAnswer())),
            HostileServer::stall()};
}

/// Answers the login byte by byte, with a pause that no time-out for a single answer notices.
HostileServer::Script drippingLogin()
{
    return {HostileServer::expect(PreloginPacket), HostileServer::send(packet(preloginAnswer())),
            HostileServer::expect(LoginPacket), [](HostileServer::Peer &peer) {
                const Bytes bytes = packet(loginAnswer());
                for (const std::uint8_t &byte : bytes) {
                    peer.send({&byte, 1});
                    std::this_thread::sleep_for(100ms);
                }
            }};
}

/// Answers PRELOGIN with packets without content, without end.
HostileServer::Script floodOfEmptyPackets()
{
    return {HostileServer::expect(PreloginPacket), [](HostileServer::Peer &peer) {
                for (;;)
                    peer.send(packet({}, false));
            }};
}

double secondsOfFiftyLogins()
{
    const Clock::time_point begin = Clock::now();
    std::vector<std::thread> threads;
    for (int number = 0; number < 50; ++number) {
        threads.emplace_back([] {
            const auto details = settings(SampleServerFixture::shared().port());
            details->setTdsVersion(8);
            details->setUseNTLMv2(false);
            connectedClient(details);
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    return secondsSince(begin);
}

/// A port whose queue of connections is full: the system drops further ones without an answer.
class FullPort
{
public:
    FullPort()
    {
        m_sockets.push_back(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto *const generic = reinterpret_cast<sockaddr *>(&address);
        EXPECT_EQ(bind(m_sockets[0], generic, size), 0);
        EXPECT_EQ(listen(m_sockets[0], 0), 0);
        EXPECT_EQ(getsockname(m_sockets[0], generic, &size), 0);
        m_port = ntohs(address.sin_port);
        for (int number = 0; number < 4; ++number) {
            m_sockets.push_back(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
            static_cast<void>(connect(m_sockets.back(), generic, size));
        }
    }
    ~FullPort()
    {
        for (const int descriptor : m_sockets)
            close(descriptor);
    }
    quint16 port() const { return m_port; }

private:
    std::vector<int> m_sockets;
    quint16 m_port = 0;
};

/// Connects in the background, cancels after a while and returns how long the end took, with its error.
double secondsToCancel(quint16 port, KNError *error)
{
    const auto client = std::make_unique<MSSQLClient>(settingsWithTimeout(port, 20));
    auto result = std::async(std::launch::async, [&] { return client->connect(error); });
    std::this_thread::sleep_for(300ms);
    const Clock::time_point begin = Clock::now();
    KNError ignored;
    do {
        client->cancelCurrentQuery(&ignored);
    } while (result.wait_for(10ms) == std::future_status::timeout);
    EXPECT_FALSE(result.get());
    return secondsSince(begin);
}

} // namespace

TEST(HangingLogin, DoesNotBlockOtherLogins)
{
    SampleServerFixture::shared(); // it ends with the thread that starts it
    secondsOfFiftyLogins();
    double usual = 60;
    for (int round = 0; round < 3; ++round)
        usual = std::min(usual, secondsOfFiftyLogins());
    HostileServer silent({HostileServer::stall()});
    KNError error;
    MSSQLClient hanging(settingsWithTimeout(silent.port(), 60));
    auto result = std::async(std::launch::async, [&] { return hanging.connect(&error); });
    ASSERT_TRUE(waitFor([&] { return silent.connectionCount() > 0; }));
    double meanwhile = 60;
    for (int round = 0; round < 3; ++round)
        meanwhile = std::min(meanwhile, secondsOfFiftyLogins());
    EXPECT_EQ(result.wait_for(0ms), std::future_status::timeout);
    EXPECT_LE(meanwhile, 1.5 * usual + 0.05);
    silent.release();
    result.get();
}

TEST(HangingLogin, EndsWithinASecondOfACancelWhereverItHangs)
{
    HostileServer silent({HostileServer::stall()});
    HostileServer stalled(silentBehindPrelogin());
    HostileServer dripping(drippingLogin());
    const FullPort full;
    for (const quint16 port : {silent.port(), stalled.port(), dripping.port(), full.port()}) {
        KNError error;
        EXPECT_LT(secondsToCancel(port, &error), 1.0);
        EXPECT_EQ(error.localizedDescription(), QStringLiteral("Connecting was cancelled."));
        EXPECT_EQ(VantorLoginProblemOf(error), VantorLoginProblem::Cancelled);
    }
    EXPECT_EQ(scalar(*connectedClient(), QStringLiteral("SELECT 3")), KNValue(3));
}

TEST(HangingLogin, EndsWithinASecondOfTheTimeOfAllAttempts)
{
    HostileServer silent({HostileServer::stall()});
    HostileServer stalled(silentBehindPrelogin());
    HostileServer dripping(drippingLogin());
    HostileServer flooding(floodOfEmptyPackets());
    const FullPort full;
    for (const quint16 port :
         {silent.port(), stalled.port(), dripping.port(), flooding.port(), full.port()}) {
        MSSQLClient client(settingsWithTimeout(port, 2));
        const Clock::time_point begin = Clock::now();
        KNError error;
        EXPECT_FALSE(client.connect(&error));
        EXPECT_LT(secondsSince(begin), 3.0);
        EXPECT_GT(secondsSince(begin), 1.5);
        EXPECT_EQ(VantorLoginProblemOf(error), VantorLoginProblem::ServerUnreachable);
        const QString text = error.descriptionWithSuggestion();
        EXPECT_TRUE(text.contains(QStringLiteral("127.0.0.1"))) << text.toStdString();
        EXPECT_TRUE(text.contains(QString::number(port))) << text.toStdString();
        EXPECT_FALSE(error.recoverySuggestion().isEmpty());
    }
}

TEST(HangingLogin, IncludesTheCheckOfTheCertificate)
{
    // Agrees to encrypt, and never answers the handshake.
    HostileServer server({HostileServer::expect(PreloginPacket),
                          HostileServer::send(packet(preloginAnswer(1))), HostileServer::stall()});
    const auto details = encryptedSettings(server.port());
    QVariantMap parameters = details->sessionParameters();
    parameters.insert(QStringLiteral("loginTimeout"), 2);
    details->setSessionParameters(parameters);
    const Clock::time_point begin = Clock::now();
    KNError error;
    EXPECT_FALSE(MSSQLClient(details).connect(&error));
    EXPECT_LT(secondsSince(begin), 3.0);
}

TEST(UnreachableServer, IsCalledSqlServerAndNamed)
{
    MSSQLClient client(settingsWithTimeout(1, 5)); // nobody listens there
    KNError error;
    EXPECT_FALSE(client.connect(&error));
    const QString text = error.descriptionWithSuggestion();
    EXPECT_TRUE(text.contains(QStringLiteral("SQL Server is unavailable or does not exist")))
        << text.toStdString();
    EXPECT_FALSE(text.contains(QStringLiteral("Adaptive Server")));
    EXPECT_TRUE(error.recoverySuggestion().contains(QStringLiteral("127.0.0.1")));
    EXPECT_TRUE(error.recoverySuggestion().contains(QStringLiteral("port 1")));
    const QStringList own =
        error.userInfo().value(QStringLiteral("com.quorvex.mssql.libraryTexts")).toStringList();
    ASSERT_FALSE(own.isEmpty());
    EXPECT_TRUE(own.first().contains(QStringLiteral("Adaptive Server is unavailable or does not exist")));
}

/// FreeTDS never leaves a FEATUREEXTACK that the end of the connection cuts. Its thread would hold up the end
/// of this process, so all of it happens in another one.
TEST(HangingLogin, ThatTheLibraryNeverLeavesLetsOthersLogIn)
{
    const auto hangAndLogIn = [] {
        constexpr std::uint8_t FeatureExtAck = 0xAE, Utf8Support = 0x0A; // with a length of a megabyte
        HostileServer server(
            {HostileServer::expect(PreloginPacket), HostileServer::send(packet(preloginAnswer())),
             HostileServer::expect(LoginPacket),
             HostileServer::send(
                 packet(joined({loginAck(), {FeatureExtAck, Utf8Support, 0, 0, 0x10, 0}, done()})))});
        const auto hanging = settings(server.port());
        hanging->setSessionParameters({{QStringLiteral("loginTimeout"), 1}});
        std::atomic<bool> hasEnded = false;
        std::thread([&] {
            MSSQLClient client(hanging);
            KNError error;
            client.connect(&error);
            hasEnded = true;
        }).detach();
        const bool hasBegun = waitFor([&] { return server.connectionCount() >= 2; }); // one is for the check
        std::this_thread::sleep_for(500ms);
        MSSQLClient other(settings(SampleServerFixture::shared().port()));
        KNError error;
        const bool isIn = other.connect(&error);
        _exit(!hasBegun ? 2 : hasEnded ? 3 : isIn ? 0 : 1);
    };
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(hangAndLogIn(), testing::ExitedWithCode(0), "");
}
