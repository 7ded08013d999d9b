#include "Implementations/MSSQLBrowserServiceClient.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNLogHelper.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

using Client = MSSQLBrowserServiceClient;

const QDateTime Now = QDateTime::fromString(QStringLiteral("2024-05-06T07:08:09Z"), Qt::ISODate);

QByteArray answer(const QByteArray &text)
{
    QByteArray bytes("\x05");
    bytes.append(static_cast<char>(text.size() & 0xFF)).append(static_cast<char>(text.size() >> 8));
    return bytes + text;
}

QByteArray record(const QByteArray &host, const QByteArray &instance, const QByteArray &port)
{
    return "ServerName;" + host + ";InstanceName;" + instance + ";IsClustered;No;Version;16.0.1000.6;tcp;" +
           port + ";;";
}

/// What the answers become that a socket receives before it falls silent.
QString received(const QList<QByteArray> &datagrams)
{
    int sockets[2] = {-1, -1};
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_DGRAM, 0, sockets), 0);
    const timeval timeout = {0, 20000};
    setsockopt(sockets[0], SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
    for (const QByteArray &datagram : datagrams)
        EXPECT_EQ(send(sockets[1], datagram.constData(), static_cast<size_t>(datagram.size()), 0),
                  datagram.size());
    const QString text = Client::reciveBroadcastRespondFromSocket(sockets[0], 1434);
    close(sockets[0]);
    close(sockets[1]);
    return text;
}

/// Sends a datagram again and again, for at most 20 s, to a socket that a pass reads.
class Flood
{
public:
    explicit Flood(const QByteArray &datagram, qsizetype stopsSearchAfter = -1)
    {
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_DGRAM, 0, m_sockets), 0);
        const timeval timeout = {1, 0};
        setsockopt(m_sockets[0], SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
        setsockopt(m_sockets[1], SOL_SOCKET, SO_SNDTIMEO, &timeout, sizeof timeout);
        m_sender = std::thread([this, datagram, stopsSearchAfter] {
            const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
            for (qsizetype count = 0; !m_isOver && std::chrono::steady_clock::now() < end; ++count) {
                if (count == stopsSearchAfter)
                    Client::stopBrowseForServers();
                send(m_sockets[1], datagram.constData(), static_cast<size_t>(datagram.size()), MSG_NOSIGNAL);
            }
            m_hasGivenUp = !m_isOver;
        });
    }
    ~Flood()
    {
        m_isOver = true;
        m_sender.join();
        close(m_sockets[0]);
        close(m_sockets[1]);
    }
    Flood(const Flood &) = delete;
    Flood &operator=(const Flood &) = delete;

    int socket() const { return m_sockets[0]; }
    /// Whether the reader had to be ended.
    bool hasGivenUp() const { return m_hasGivenUp; }

private:
    int m_sockets[2] = {-1, -1};
    std::atomic<bool> m_isOver = false;
    std::atomic<bool> m_hasGivenUp = false;
    std::thread m_sender;
};

/// Uses other times for the search while it lives.
class SearchTimes
{
public:
    explicit SearchTimes(std::chrono::milliseconds longestPass)
    {
        Client::Search search = {QStringLiteral("no address"), 1};
        search.longestPass = longestPass;
        search.pause = std::chrono::hours(1);
        Client::setSearch(search);
    }
    ~SearchTimes() { Client::setSearch({}); }
    SearchTimes(const SearchTimes &) = delete;
    SearchTimes &operator=(const SearchTimes &) = delete;
};

/// What is logged while it lives.
class Log
{
public:
    Log()
    {
        KNLogHelper::sharedInstance()->setObserver([this](const QString &record) { m_text += record; });
    }
    ~Log() { KNLogHelper::sharedInstance()->setObserver({}); }

    bool holds(const char *text) const { return m_text.contains(QString::fromLatin1(text)); }

private:
    QString m_text;
};

} // namespace

TEST(BrowserAnswers, ReturnNullWithoutAnswer)
{
    EXPECT_TRUE(received({}).isNull());
    EXPECT_TRUE(received({"\x05"}).isNull());
    EXPECT_TRUE(received({QByteArray("\x05\x00\x00", 3)}).isNull());
}

TEST(BrowserAnswers, AreReadAsTheirText)
{
    const QByteArray text = record("SRV", "SQLEXPRESS", "49172");
    EXPECT_EQ(received({answer(text)}), QString::fromLatin1(text));
    EXPECT_EQ(received({answer("ServerName;Köln;;")}), QStringLiteral("ServerName;Köln;;"));
}

TEST(BrowserAnswers, OfSeveralServersRepeatTheTextOfTheFirstInTheLengthOfEach)
{
    const QByteArray first = record("FIRST", "A", "1433");
    const QByteArray shorter = record("B", "B", "1");
    EXPECT_EQ(received({answer(first), answer(first)}), QString::fromLatin1(first + first));
    EXPECT_EQ(received({answer(first), answer(shorter)}),
              QString::fromLatin1(first + first.left(shorter.size())));
    EXPECT_EQ(received({answer(shorter), answer("x"), answer(first)}).left(shorter.size() + 1),
              QString::fromLatin1(shorter + 'S'));
}

TEST(BrowserAnswers, KeepEarlierAnswersWhenTruncated)
{
    const Log log;
    const QByteArray whole = record("SRV", "A", "1433");
    EXPECT_EQ(received({answer(whole), answer(whole).chopped(1)}), QString::fromLatin1(whole));
    EXPECT_TRUE(log.holds("Did not received entire message."));
    EXPECT_EQ(received({answer(whole), "\x05"}), QString::fromLatin1(whole));
    EXPECT_TRUE(received({QByteArray("\x05\xFF\xFFxx", 5)}).isEmpty());
}

TEST(BrowserAnswers, ReturnNullForInvalidAnswer)
{
    const QByteArray whole = record("SRV", "A", "1433");
    EXPECT_TRUE(received({"rubbish"}).isNull());
    EXPECT_TRUE(received({answer(whole), "rubbish"}).isNull());
    EXPECT_TRUE(received({"rubbish", answer(whole)}).isNull());
}

TEST(BrowserAnswers, DropTextThatIsNotUtf8)
{
    EXPECT_EQ(received({answer("a\xFF"), answer("")}), QStringLiteral(""));
}

TEST(BrowserAnswers, AreReadWhenLongerThanABuffer)
{
    const Log log;
    // 511 bytes of each datagram count, so the second one begins within the first one's text.
    const QByteArray longAnswer = answer(QByteArray(600, 'x'));
    EXPECT_TRUE(received({longAnswer}).isEmpty());
    EXPECT_TRUE(log.holds("Did not received entire message."));
    const QByteArray next = answer(QByteArray(100, 'y'));
    const qsizetype missing = 603 - 511;
    EXPECT_TRUE(received({longAnswer, next}).isNull()) << "the walk goes on within the second answer";
    EXPECT_EQ(received({longAnswer, next.first(missing)}),
              QString::fromLatin1(QByteArray(508, 'x') + next.first(missing)));
}

TEST(BrowserAnswers, AreBoundedInSize)
{
    const SearchTimes times(std::chrono::hours(1));
    const Flood flood(answer(QByteArray(500, 'x')));
    const QString text = Client::reciveBroadcastRespondFromSocket(flood.socket(), 1434);
    EXPECT_FALSE(flood.hasGivenUp());
    constexpr qsizetype FourMebibytes = 4 * 1024 * 1024;
    EXPECT_LE(text.size(), FourMebibytes);
    EXPECT_GT(text.size(), FourMebibytes - FourMebibytes / 100);
}

TEST(BrowserAnswers, EndAtTheDeadlineOfThePass)
{
    const SearchTimes times(std::chrono::milliseconds(50));
    for (const QByteArray &datagram : {QByteArray(""), QByteArray("\x05\x00\x00", 3)}) {
        const Flood flood(datagram);
        EXPECT_TRUE(Client::reciveBroadcastRespondFromSocket(flood.socket(), 1434).isEmpty());
        EXPECT_FALSE(flood.hasGivenUp()) << datagram.size();
    }
}

TEST(BrowserAnswers, EndWhenTheSearchIsStopped)
{
    const SearchTimes times(std::chrono::hours(1));
    Client::beginBrowseForServers();
    {
        const Flood flood("", 100);
        EXPECT_TRUE(Client::reciveBroadcastRespondFromSocket(flood.socket(), 1434).isNull());
        EXPECT_FALSE(flood.hasGivenUp());
    }
    EXPECT_TRUE(KNDispatch::waitUntilIdle(30000));
}

TEST(BrowserAnswers, WithARecordYieldItsInstance)
{
    const auto entries = Client::entriesInText(
        QStringLiteral("ServerName;A;InstanceName;B;IsClustered;No;Version;16.0.1000.6;tcp;1433;;"), Now);
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(entries[0].host, QStringLiteral("A"));
    EXPECT_EQ(entries[0].instance, QStringLiteral("B"));
    EXPECT_EQ(entries[0].port, 1433);
    EXPECT_EQ(entries[0].version, QStringLiteral("16.0.1000.6"));
    EXPECT_EQ(entries[0].lastSeen, Now);
    EXPECT_EQ(entries[0].connectionString(), QStringLiteral("A,1433\\B"));
}

TEST(BrowserAnswers, OfNamedPipesOnlyKeepPortZero)
{
    const Log log;
    const auto entries = Client::entriesInText(
        QStringLiteral("ServerName;A;InstanceName;B;IsClustered;No;Version;9.0;np;\\\\A\\pipe\\sql;;"), Now);
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(entries[0].port, 0);
    EXPECT_TRUE(log.holds("Unknown key (np) with value (\\\\A\\pipe\\sql)."));
}

TEST(BrowserAnswers, WithAPortThatIsNoNumberYieldItsDigits)
{
    const auto portIn = [](const char *value) {
        const auto text = QStringLiteral("ServerName;A;tcp;%1;;").arg(QLatin1String(value));
        return Client::entriesInText(text, Now).value(0).port;
    };
    EXPECT_EQ(portIn("1433x"), 1433);
    EXPECT_EQ(portIn("-7"), -7);
    EXPECT_EQ(portIn("x1433"), 0);
    EXPECT_EQ(portIn("99999999999"), 0);
}

TEST(BrowserAnswers, WithoutAnInstanceNameLeaveItsPlaceEmpty)
{
    const auto entries = Client::entriesInText(QStringLiteral("ServerName;A;tcp;1433;;"), Now);
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(entries[0].connectionString(), QStringLiteral("A,1433\\"));
}

TEST(BrowserAnswers, MayWriteTheirKeysInAnyCase)
{
    const auto entries =
        Client::entriesInText(QStringLiteral("servername;A;instancename;B;VERSION;1;TCP;7;;"), Now);
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(entries[0].instance, QStringLiteral("B"));
    EXPECT_EQ(entries[0].port, 7);
    EXPECT_EQ(entries[0].version, QStringLiteral("1"));
}

TEST(BrowserAnswers, WithSeveralRecordsYieldThemAll)
{
    const auto entries = Client::entriesInText(
        QString::fromLatin1("tcp;9;" + record("A", "X", "1") + record("B", "Y", "2")), Now);
    ASSERT_EQ(entries.size(), 2);
    EXPECT_EQ(entries[0].port, 1);
    EXPECT_EQ(entries[1].connectionString(), QStringLiteral("B,2\\Y"));
}

TEST(BrowserAnswers, AcceptArbitraryBytes)
{
    for (const char *text : {"", ";", ";;", ";;;;;;;", "ServerName", "ServerName;", "tcp;x", "a;b;c;d;e"})
        EXPECT_LE(Client::entriesInText(QString::fromLatin1(text), Now).size(), 1) << text;
}

TEST(BrowserEntries, AreTheSameInstanceByHostNameAndPort)
{
    const MSSQLBrowserServiceClientEntry entry = {QStringLiteral("A"), QStringLiteral("B"), 1,
                                                  QStringLiteral("1"), Now};
    MSSQLBrowserServiceClientEntry other = entry;
    other.version = QStringLiteral("2");
    other.lastSeen = Now.addDays(1);
    EXPECT_TRUE(entry.isEqualTo(other));
    other.instance = QStringLiteral("b");
    EXPECT_FALSE(entry.isEqualTo(other));
    other = entry;
    other.port = 2;
    EXPECT_FALSE(entry.isEqualTo(other));
    other = entry;
    other.host = QStringLiteral("C");
    EXPECT_FALSE(entry.isEqualTo(other));
}
