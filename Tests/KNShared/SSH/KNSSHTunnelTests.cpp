#include "SSH/KNSSHTunnel.h"

#include "Foundation/KNLogHelper.h"
#include "SSH/KNSSHAskPass.h"
#include "SSH/KNSSHCommand.h"
#include "SSH/KNSSHHostKey.h"
#include "SSH/KNSSHPassphrases.h"
#include "SSH/KNSSHProcess.h"
#include "Support/PrintQt.h"
#include "Support/SSHServerTest.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <thread>

using namespace std::chrono_literals;

namespace {

/// Somebody behind the SSH server who says one line to everyone.
class Greeter
{
public:
    Greeter()
        : m_listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        bind(m_listener, reinterpret_cast<sockaddr *>(&address), size);
        listen(m_listener, 8);
        getsockname(m_listener, reinterpret_cast<sockaddr *>(&address), &size);
        m_port = ntohs(address.sin_port);
        m_thread = std::thread([this] {
            for (int guest = 0; (guest = accept(m_listener, nullptr, nullptr)) >= 0;) {
                send(guest, "hello\n", 6, MSG_NOSIGNAL);
                close(guest);
            }
        });
    }
    ~Greeter()
    {
        shutdown(m_listener, SHUT_RDWR);
        m_thread.join();
        close(m_listener);
    }
    quint16 port() const { return m_port; }

private:
    const int m_listener;
    quint16 m_port = 0;
    std::thread m_thread;
};

/// What somebody says until the end; null when nobody listens.
QByteArray heardFrom(quint16 port)
{
    const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    QByteArray heard;
    if (connect(descriptor, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0) {
        heard = QByteArray("");
        char buffer[64];
        for (ssize_t size = 0; (size = recv(descriptor, buffer, sizeof buffer, 0)) > 0;)
            heard.append(buffer, size);
    }
    close(descriptor);
    return heard;
}

class Tunnel : public SSHServerTest
{
protected:
    std::shared_ptr<KNSSHTunnel> open(KNError *error) const
    {
        return KNSSHTunnel::open(m_model, QStringLiteral("127.0.0.1"), m_greeter.port(), 20s, error);
    }
    /// Fails the test when there is none.
    std::shared_ptr<KNSSHTunnel> opened() const
    {
        KNError error;
        auto tunnel = open(&error);
        EXPECT_TRUE(tunnel) << error.localizedDescription().toStdString();
        return tunnel;
    }
    void acceptHostKey() const
    {
        KNError error;
        open(&error);
        const auto key = KNSSHHostKey::fromError(error);
        ASSERT_TRUE(key) << error.localizedDescription().toStdString();
        ASSERT_TRUE(key->accept(&error));
    }

    Greeter m_greeter;
};

/// An `ssh` of the test's own.
class FakeSSH : public testing::Test
{
protected:
    void TearDown() override { KNSSHProcess::setProgram(QStringLiteral("ssh")); }

    void use(const QByteArray &script)
    {
        QFile file(m_folder.filePath(QStringLiteral("ssh")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\ncd '" + m_folder.path().toLocal8Bit() + "'\n" + script);
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        KNSSHProcess::setProgram(file.fileName());
    }
    static std::shared_ptr<KNSSHTunnel> open(KNError *error, std::chrono::seconds timeout = 20s)
    {
        KNSSHTunnelModel model;
        model.host = QStringLiteral("gate");
        return KNSSHTunnel::open(model, QStringLiteral("db"), 1433, timeout, error);
    }
    /// How often the script has run: it must append a line to "runs".
    int runs() const
    {
        QFile file(m_folder.filePath(QStringLiteral("runs")));
        return file.open(QIODevice::ReadOnly) ? static_cast<int>(file.readAll().count('\n')) : 0;
    }

    const QTemporaryDir m_folder;
};

} // namespace

TEST_F(Tunnel, ToAnUnknownServerIsNotOpenedAndTheErrorCarriesItsKey)
{
    KNError error;
    EXPECT_FALSE(open(&error));
    EXPECT_EQ(error.domain(), KNSSHCommand::ErrorDomain);
    EXPECT_EQ(error.code(), KNSSHCommand::UnknownHost) << error.localizedDescription().toStdString();
    const auto key = KNSSHHostKey::fromError(error);
    ASSERT_TRUE(key);
    EXPECT_EQ(key->type(), QStringLiteral("ED25519"));
    EXPECT_EQ(key->fingerprint(), m_server->fingerprint());
    EXPECT_TRUE(error.localizedDescription().contains(m_server->fingerprint()));
}

TEST_F(Tunnel, IsOpenedOnceTheKeyIsAcceptedAndLeadsToTheHost)
{
    acceptHostKey();
    const auto tunnel = opened();
    ASSERT_TRUE(tunnel);
    EXPECT_EQ(heardFrom(tunnel->localPort()), QByteArray("hello\n"));
    EXPECT_FALSE(QFile(KNSSHHostKey::knownHostsFile()).permissions() & (QFile::ReadGroup | QFile::ReadOther));
}

TEST_F(Tunnel, IsSharedBySameConnectionsAndClosedWithLast)
{
    acceptHostKey();
    auto first = opened();
    ASSERT_TRUE(first);
    EXPECT_EQ(first, opened());
    KNError error;
    const auto elsewhere =
        KNSSHTunnel::open(m_model, QStringLiteral("localhost"), m_greeter.port(), 20s, &error);
    EXPECT_NE(first, elsewhere);
    const quint16 port = first->localPort();
    first.reset();
    EXPECT_TRUE(heardFrom(port).isNull());
}

TEST_F(Tunnel, IsOpenedAgainWhenItHasDied)
{
    acceptHostKey();
    const auto first = opened();
    ASSERT_TRUE(first);
    m_server->stop();
    for (int i = 0; i < 30000 && first->isAlive(); ++i)
        std::this_thread::sleep_for(1ms);
    ASSERT_FALSE(first->isAlive());
    m_server->start();
    const auto second = opened();
    ASSERT_TRUE(second);
    EXPECT_NE(first, second);
    EXPECT_EQ(heardFrom(second->localPort()), QByteArray("hello\n"));
}

TEST_F(Tunnel, IsNotOpenedWithoutAcceptedKey)
{
    acceptHostKey();
    m_model.keyFile = m_server->strangersKeyFile();
    KNError error;
    EXPECT_FALSE(open(&error));
    EXPECT_EQ(error.code(), KNSSHCommand::NotLetIn) << error.localizedDescription().toStdString();
}

TEST_F(Tunnel, IsNotOpenedToAServerThatHasChangedItsKey)
{
    acceptHostKey();
    m_server->changeHostKey();
    KNError error;
    EXPECT_FALSE(open(&error));
    EXPECT_EQ(error.code(), KNSSHCommand::ChangedHostKey) << error.localizedDescription().toStdString();
    EXPECT_FALSE(KNSSHHostKey::fromError(error));
}

TEST_F(Tunnel, ReportsUnreachableHost)
{
    acceptHostKey();
    KNError error;
    const auto tunnel = KNSSHTunnel::open(m_model, QStringLiteral("127.0.0.1"), 1, 20s, &error);
    ASSERT_TRUE(tunnel);
    EXPECT_FALSE(tunnel->couldNotReachHost(0ms));
    EXPECT_EQ(heardFrom(tunnel->localPort()), QByteArray());
    EXPECT_TRUE(tunnel->couldNotReachHost(20s)); // ssh may report it after it has closed the connection
}

TEST_F(Tunnel, ReportsUnreachableSSHServer)
{
    m_server->stop();
    KNError error;
    EXPECT_FALSE(open(&error));
    EXPECT_EQ(error.code(), KNSSHCommand::Failed);
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("Connection refused")))
        << error.localizedDescription().toStdString();
}

TEST_F(FakeSSH, IsRetriedWithAnotherPortIfTaken)
{
    use("echo >> runs\n"
        "[ $(wc -l < runs) -ge 3 ] && { echo tunnel-is-open; exec sleep 600; }\n"
        "echo 'channel_setup_fwd_listener_tcpip: cannot listen to port: 40000' >&2; exit 255\n");
    KNError error;
    EXPECT_TRUE(open(&error)) << error.localizedDescription().toStdString();
    EXPECT_EQ(runs(), 3);
}

TEST_F(FakeSSH, IsGivenUpAfterThreePorts)
{
    use("echo >> runs; echo 'cannot listen to port: 40000' >&2; exit 255\n");
    KNError error;
    EXPECT_FALSE(open(&error));
    EXPECT_EQ(error.code(), KNSSHCommand::Failed);
    EXPECT_EQ(runs(), 3);
}

TEST_F(FakeSSH, TimesOutWithoutOutput)
{
    use("exec sleep 600\n");
    KNError error;
    EXPECT_FALSE(open(&error, 1s));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("in time")));
}

TEST_F(FakeSSH, IsKilledIfItIgnoresTermination)
{
    use("trap '' TERM; echo tunnel-is-open; while :; do sleep 1; done\n");
    KNError error;
    auto tunnel = open(&error);
    ASSERT_TRUE(tunnel);
    tunnel.reset(); // comes back
}

TEST_F(FakeSSH, ThatIsNotThereIsAnError)
{
    KNSSHProcess::setProgram(QStringLiteral("no-such-ssh"));
    KNError error;
    EXPECT_FALSE(open(&error));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("not installed")));
}

TEST_F(FakeSSH, IsStartedOnceForConcurrentCallers)
{
    use("echo >> runs; while [ ! -e go ]; do sleep 0.01; done; echo tunnel-is-open; exec sleep 600\n");
    std::vector<std::shared_ptr<KNSSHTunnel>> tunnels(8);
    std::vector<std::thread> threads;
    for (auto &tunnel : tunnels)
        threads.emplace_back([&tunnel] {
            KNError error;
            tunnel = open(&error);
        });
    QFile go(m_folder.filePath(QStringLiteral("go")));
    ASSERT_TRUE(go.open(QIODevice::WriteOnly));
    for (std::thread &thread : threads)
        thread.join();
    ASSERT_TRUE(tunnels[0]);
    for (const auto &tunnel : tunnels)
        EXPECT_EQ(tunnel, tunnels[0]);
    EXPECT_EQ(runs(), 1);
}

namespace {

/// Gives the accepted key a passphrase.
void protect(const QString &keyFile, const char *passphrase)
{
    QProcess keygen;
    keygen.start(QStringLiteral("ssh-keygen"),
                 {QStringLiteral("-p"), QStringLiteral("-P"), QString(), QStringLiteral("-N"),
                  QString::fromLatin1(passphrase), QStringLiteral("-f"), keyFile});
    ASSERT_TRUE(keygen.waitForFinished());
    ASSERT_EQ(keygen.exitCode(), 0);
}

} // namespace

TEST_F(Tunnel, AsksForThePassphraseOfItsKeyAndForgetsAWrongOne)
{
    acceptHostKey();
    protect(m_model.keyFile, "open ' \" $sesame");
    KNError error;
    EXPECT_FALSE(open(&error));
    EXPECT_EQ(error.code(), KNSSHCommand::NeedsPassphrase) << error.localizedDescription().toStdString();
    const QString prompt = KNSSHPassphrases::promptIn(error);
    EXPECT_TRUE(prompt.contains(m_model.keyFile)) << prompt.toStdString();

    KNSSHPassphrases::set(prompt, QStringLiteral("wrong"));
    EXPECT_FALSE(open(&error));
    EXPECT_EQ(error.code(), KNSSHCommand::NeedsPassphrase);
    EXPECT_EQ(KNSSHPassphrases::promptIn(error), prompt);
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("wrong.")));
    EXPECT_TRUE(KNSSHPassphrases::all().isEmpty());

    KNSSHPassphrases::set(prompt, QStringLiteral("open ' \" $sesame"));
    QString logged;
    KNLogHelper::sharedInstance()->setObserver([&](const QString &record) { logged += record; });
    EXPECT_EQ(heardFrom(opened()->localPort()), "hello\n");
    KNLogHelper::sharedInstance()->setObserver({});
    EXPECT_FALSE(logged.contains(QStringLiteral("sesame")));
    KNSSHPassphrases::forget(prompt);
}

TEST_F(Tunnel, KeepsAPassphraseOutOfFilesArgumentsAndEnvironment)
{
    constexpr char Secret[] = "pass-phrase-of-the-test";
    KNSSHPassphrases::set(QStringLiteral("Enter it: "), QString::fromLatin1(Secret));
    const KNSSHAskPass askPass;
    const QStringList variables = askPass.environment();
    ASSERT_EQ(variables.size(), 2);
    EXPECT_EQ(variables[1], QStringLiteral("SSH_ASKPASS_REQUIRE=force"));
    EXPECT_FALSE(variables.join(QLatin1Char(' ')).contains(QLatin1String(Secret)));
    const QString program = variables[0].section(QLatin1Char('='), 1);
    const QFileInfo folder(QFileInfo(program).path());
    EXPECT_EQ(folder.permissions() & (QFile::ReadGroup | QFile::ReadOther | QFile::ExeOther),
              QFile::Permissions());
    const QFileInfoList files = QDir(folder.filePath()).entryInfoList(QDir::Files);
    EXPECT_GE(files.size(), 2);
    for (const QFileInfo &info : files) {
        QFile file(info.filePath());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_FALSE(file.readAll().contains(Secret)) << info.fileName().toStdString();
    }
    const auto answerTo = [&](const char *prompt) {
        QProcess asking;
        asking.start(program, {QString::fromLatin1(prompt)});
        asking.waitForFinished();
        return asking.exitCode() == 0 ? asking.readAllStandardOutput() : QByteArray("refused");
    };
    EXPECT_EQ(answerTo("Something else: "), "refused");
    EXPECT_EQ(askPass.unansweredPrompt(), QStringLiteral("Something else: "));
    EXPECT_EQ(answerTo("Enter it: "), QByteArray(Secret) + '\n');
    EXPECT_EQ(answerTo("Enter it: "), "refused"); // once only
    EXPECT_EQ(askPass.answeredPrompts(), QStringList{QStringLiteral("Enter it: ")});
    KNSSHPassphrases::forget(QStringLiteral("Enter it: "));
}
