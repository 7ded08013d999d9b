#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "Implementations/MSSQLInstancePort.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QNetworkDatagram>
#include <QUdpSocket>

#include <atomic>
#include <thread>

namespace {

QByteArray answerOf(const QByteArray &fields)
{
    QByteArray answer("\x05");
    answer.append(static_cast<char>(fields.size() & 0xFF)).append(static_cast<char>(fields.size() >> 8));
    return answer + fields;
}

QByteArray instanceAnswer(const QByteArray &port)
{
    return answerOf("ServerName;SRV;InstanceName;SQLEXPRESS;IsClustered;No;Version;16.0.1000.6;tcp;" + port +
                    ";;");
}

/// A Browser on a free loopback port that gives every request the same answers.
class Browser
{
public:
    explicit Browser(const QList<QByteArray> &answers)
    {
        std::atomic<quint16> port = 0;
        m_thread = std::thread([this, &port, answers] {
            QUdpSocket socket;
            socket.bind(QHostAddress::LocalHost, 0);
            port = socket.localPort();
            while (!m_stop) {
                if (!socket.waitForReadyRead(10))
                    continue;
                const QNetworkDatagram request = socket.receiveDatagram();
                ++m_requests;
                m_lastRequest = request.data();
                for (const QByteArray &answer : answers)
                    socket.writeDatagram(answer, request.senderAddress(),
                                         static_cast<quint16>(request.senderPort()));
            }
        });
        while (port == 0)
            std::this_thread::yield();
        setBrowserServicePort(port);
    }
    ~Browser()
    {
        m_stop = true;
        m_thread.join();
        setBrowserServicePort(1434);
    }

    int requests() const { return m_requests; }
    QByteArray lastRequest() const { return m_lastRequest; }

private:
    std::atomic<bool> m_stop = false;
    std::atomic<int> m_requests = 0;
    QByteArray m_lastRequest; ///< written before the answer is sent
    std::thread m_thread;
};

/// Without an application the main thread's sockets leave Qt's record of the thread behind.
class Application : public testing::Environment
{
public:
    void SetUp() override { m_application = std::make_unique<QCoreApplication>(m_count, m_arguments); }
    void TearDown() override { m_application.reset(); }

private:
    int m_count = 1;
    char m_name[6] = "tests";
    char *m_arguments[2] = {m_name, nullptr};
    std::unique_ptr<QCoreApplication> m_application;
};

[[maybe_unused]] testing::Environment *const application = testing::AddGlobalTestEnvironment(new Application);

const QString Loopback = QStringLiteral("127.0.0.1");
const QString Instance = QStringLiteral("SQLEXPRESS");

} // namespace

TEST(BrowserAnswer, NamesThePortOfTheInstance)
{
    EXPECT_EQ(portFromBrowserAnswer(instanceAnswer("49172"), QStringLiteral("sqlexpress")), 49172);
}

TEST(BrowserAnswer, IgnoresPortOfAnotherInstance)
{
    EXPECT_EQ(portFromBrowserAnswer(instanceAnswer("49172"), QStringLiteral("OTHER")), 0);
}

TEST(BrowserAnswer, MalformedAnswerHasNoPort)
{
    const QByteArray good = instanceAnswer("49172");
    for (qsizetype length = 0; length < good.size(); ++length)
        EXPECT_EQ(portFromBrowserAnswer(good.left(length), Instance), 0) << length;
    EXPECT_EQ(portFromBrowserAnswer(instanceAnswer("99999"), Instance), 0);
    EXPECT_EQ(portFromBrowserAnswer(instanceAnswer("x"), Instance), 0);
    EXPECT_EQ(portFromBrowserAnswer('\x06' + good.mid(1), Instance), 0);
    EXPECT_EQ(portFromBrowserAnswer(answerOf(""), Instance), 0);
    EXPECT_EQ(portFromBrowserAnswer(answerOf(";;;;;;"), Instance), 0);
}

TEST(InstancePort, ComesFromTheBrowserAtTheServer)
{
    const Browser browser({instanceAnswer("49172")});
    EXPECT_EQ(dbportforinstance(Loopback, Instance), 49172);
    EXPECT_EQ(browser.lastRequest(), QByteArray("\x04SQLEXPRESS\0", 12));
}

TEST(InstancePort, IsFoundAfterInvalidAnswer)
{
    const Browser browser({"rubbish", instanceAnswer("49172")});
    EXPECT_EQ(dbportforinstance(Loopback, Instance), 49172);
}

TEST(InstancePort, SilentBrowserTimesOut)
{
    const Browser browser({});
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(dbportforinstance(Loopback, Instance, std::chrono::milliseconds(100)), 0);
    EXPECT_GE(timer.elapsed(), 90);
    EXPECT_LT(timer.elapsed(), 5000);
}

TEST(InstancePort, NothingIsAskedForNamesThatCannotBe)
{
    const Browser browser({instanceAnswer("49172")});
    EXPECT_EQ(dbportforinstance(Loopback, QString()), 0);
    EXPECT_EQ(dbportforinstance(Loopback, QString(33, QLatin1Char('x'))), 0);
    EXPECT_EQ(dbportforinstance(QStringLiteral("no address"), Instance), 0);
    EXPECT_EQ(browser.requests(), 0);
}

TEST(ConnectionDetails, AskTheBrowserForAnInstancesPort)
{
    const Browser browser({instanceAnswer("49172")});
    quint16 port = 0;
    QString host;
    MSSQLDatabaseConnectionDetails().getHostAndPortForServer(QStringLiteral("127.0.0.1\\SQLEXPRESS"), &port,
                                                             &host);
    EXPECT_EQ(host, Loopback);
    EXPECT_EQ(port, 49172);
}

TEST(ConnectionDetails, DoNotAskTheBrowserWhenThePortIsGiven)
{
    const Browser browser({instanceAnswer("49172")});
    quint16 port = 1500;
    QString host;
    MSSQLDatabaseConnectionDetails().getHostAndPortForServer(QStringLiteral("127.0.0.1\\SQLEXPRESS"), &port,
                                                             &host);
    EXPECT_EQ(host, Loopback);
    EXPECT_EQ(port, 1500);
    EXPECT_EQ(browser.requests(), 0);
}
