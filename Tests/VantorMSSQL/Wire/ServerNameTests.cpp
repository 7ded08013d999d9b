#include "Foundation/KNFormat.h"
#include "Foundation/KNHostCache.h"
#include "Implementations/MSSQLLoginFile.h"
#include "Implementations/MSSQLServerCheck.h"
#include "Support/HostileServerBytes.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <QStringDecoder>

#include <mutex>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace ServerNameTests {

using namespace WireTest;
using namespace HostileServerBytes;

namespace {

const QString Server = QStringLiteral("127.0.0.1");
const QString OtherAddress = QStringLiteral("127.0.0.77"); ///< at which no server listens

/// A name with addresses in the cache of this process, which no resolver knows.
class CachedName
{
public:
    /// The first address is looked up first.
    CachedName(const QString &name, const QStringList &addresses)
        : m_name(name)
    {
        for (qsizetype i = addresses.size(); i-- > 0;)
            KNHostCache::sharedInstance()->prefer(name, addresses[i]);
    }
    ~CachedName() { KNHostCache::sharedInstance()->forget(m_name); }
    CachedName(const CachedName &) = delete;
    CachedName &operator=(const CachedName &) = delete;

private:
    const QString m_name;
};

/// Settings for a server on this port under a name.
std::shared_ptr<MSSQLDatabaseConnectionDetails> settingsFor(const QString &name, quint16 port)
{
    auto details = settings(port);
    details->setHost(KNFormat("%@,%d", name, port));
    details->setSessionParameters({{QStringLiteral("loginTimeout"), 20}});
    return details;
}

/// A port of OtherAddress that answers no connection attempt: its queue is full.
class SilentPort
{
public:
    explicit SilentPort(quint16 port)
    {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        EXPECT_EQ(inet_pton(AF_INET, OtherAddress.toLatin1().constData(), &address.sin_addr), 1);
        const auto *const generic = reinterpret_cast<const sockaddr *>(&address);
        m_sockets.push_back(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        EXPECT_EQ(bind(m_sockets[0], generic, sizeof address), 0);
        EXPECT_EQ(listen(m_sockets[0], 0), 0);
        for (int number = 0; number < 4; ++number) {
            m_sockets.push_back(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
            static_cast<void>(connect(m_sockets.back(), generic, sizeof address));
        }
    }
    ~SilentPort()
    {
        for (const int descriptor : m_sockets)
            close(descriptor);
    }
    SilentPort(const SilentPort &) = delete;
    SilentPort &operator=(const SilentPort &) = delete;

private:
    std::vector<int> m_sockets;
};

} // namespace

TEST(ServerName, WithAnAddressThatRefusesIsReachedByAnother)
{
    const QString name = QStringLiteral("refusing.listener.invalid");
    const CachedName cached(name, {OtherAddress, Server});
    connectedClient(settingsFor(name, SampleServerFixture::shared().port()));
    EXPECT_EQ(KNHostCache::sharedInstance()->cachedIPAddressForHost(name), Server);
}

TEST(ServerName, WithASilentAddressIsReachedByAnotherAtOnce)
{
    const quint16 port = SampleServerFixture::shared().port();
    const SilentPort silent(port);
    const QString name = QStringLiteral("silent.listener.invalid");
    const CachedName cached(name, {OtherAddress, Server});
    const auto begin = std::chrono::steady_clock::now();
    connectedClient(settingsFor(name, port));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
    EXPECT_EQ(KNHostCache::sharedInstance()->cachedIPAddressForHost(name), Server);
}

TEST(ServerName, OfSilentAddressesFailsWithinTheTimeForALogin)
{
    const quint16 port = SampleServerFixture::shared().port();
    const SilentPort silent(port);
    const QString name = QStringLiteral("dead.listener.invalid");
    const CachedName cached(name, {OtherAddress, QStringLiteral("127.0.0.77")});
    const auto details = settingsFor(name, port);
    details->setSessionParameters({{QStringLiteral("loginTimeout"), 1}});
    const auto begin = std::chrono::steady_clock::now();
    KNError error;
    EXPECT_FALSE(MSSQLClient(details).connect(&error));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    EXPECT_TRUE(error.localizedDescription().contains(name)) << error.localizedDescription().toStdString();
}

TEST(ServerName, IsResolvedAgainAfterItsAddressStoppedAnswering)
{
    const quint16 port = SampleServerFixture::shared().port();
    const QString name = QStringLiteral("localhost");
    const CachedName cached(name, {OtherAddress});
    MSSQLServerCheck::noteAnswer({OtherAddress, port}); // as if it had answered a moment ago
    const auto details = settingsFor(name, port);
    KNError error;
    EXPECT_FALSE(MSSQLClient(details).connect(&error));
    MSSQLClient client(details);
    EXPECT_TRUE(client.connect(&error)) << error.localizedDescription().toStdString();
}

TEST(AzureLogin, IsRepeatedOnceWithTheServersNameBehindTheUsers)
{
    std::mutex mutex;
    QStringList users; // guarded by mutex
    const HostileServer server(HostileServer::Script{
        HostileServer::expect(PreloginPacket), HostileServer::send(packet(preloginAnswer())),
        [&](HostileServer::Peer &peer) {
            const Bytes login = peer.readMessage().payload;
            // MS-TDS 2.2.6.4: offset and length of the user name, in UTF-16 units
            const auto number = [&](std::size_t at) { return login.at(at) | login.at(at + 1) << 8; };
            const auto *const text = reinterpret_cast<const char *>(login.data()) + number(40);
            const QString user =
                QStringDecoder(QStringDecoder::Utf16LE)(QByteArrayView(text, 2 * number(42)));
            {
                const std::lock_guard lock(mutex);
                users.append(user);
            }
            const std::string refusal = "No entry for " + user.toStdString() + ".";
            peer.send(packet(joined({message(18456, 14, refusal.c_str()), done(DoneError)})));
        }});
    const QString name = QStringLiteral("MyServer.database.windows.net");
    const CachedName cached(name, {Server});
    const auto details = settingsFor(name, server.port());
    details->setUsername(QStringLiteral("admin"));
    KNError error;
    EXPECT_FALSE(MSSQLClient(details).connect(&error));
    EXPECT_EQ(users, (QStringList{QStringLiteral("admin"), QStringLiteral("admin@MyServer")}));
    EXPECT_EQ(error.localizedDescription(),
              QStringLiteral("No entry for admin@MyServer. (Msg 18456, Level 14)."));
    EXPECT_EQ(details->username(), QStringLiteral("admin@MyServer"));
}

} // namespace ServerNameTests
