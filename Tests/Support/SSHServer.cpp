#include "Support/SSHServer.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QNetworkProxy>
#include <QProcess>
#include <QRandomGenerator>
#include <QTcpServer>

#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

namespace {

const QString Daemon = QStringLiteral("/usr/sbin/sshd");

QByteArray outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        throw std::runtime_error(process.readAllStandardError().toStdString());
    return process.readAllStandardOutput();
}

void makeKey(const QString &path)
{
    QFile::remove(path);
    outputOf(QStringLiteral("ssh-keygen"),
             {QStringLiteral("-q"), QStringLiteral("-t"), QStringLiteral("ed25519"), QStringLiteral("-N"),
              QString(), QStringLiteral("-f"), path});
}

void write(const QString &path, const QString &text, QFile::Permissions permissions = {})
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0)
        throw std::runtime_error(file.errorString().toStdString());
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | permissions);
}

/// A port on which nobody listens and that the system gives to no outgoing connection: one of those could
/// take it before sshd does, and isListening() could connect to itself.
quint16 unusedPort()
{
    QFile range(QStringLiteral("/proc/sys/net/ipv4/ip_local_port_range"));
    const int firstOutgoing =
        range.open(QIODevice::ReadOnly) ? range.readLine().split('\t').value(0).toInt() : 0;
    constexpr int First = 10000;
    const int end = firstOutgoing > First + 1000 ? firstOutgoing : 32768;
    for (int attempt = 0; attempt < 100; ++attempt) {
        const auto port = static_cast<quint16>(QRandomGenerator::global()->bounded(First, end));
        QTcpServer server;
        server.setProxy(QNetworkProxy::NoProxy);
        if (server.listen(QHostAddress::LocalHost, port))
            return port;
    }
    throw std::runtime_error("There is no unused port for sshd.");
}

bool isListening(quint16 port)
{
    const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    const bool isConnected = connect(descriptor, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0;
    close(descriptor);
    return isConnected;
}

/// Ends a process and all that it has started: sshd's sessions are in no group of its.
void killWithChildren(pid_t pid)
{
    kill(pid, SIGSTOP);
    const QStringList entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString &entry : entries) {
        QFile status(QStringLiteral("/proc/%1/stat").arg(entry));
        if (entry.toInt() <= 0 || !status.open(QIODevice::ReadOnly))
            continue;
        // "12 (sshd) S 11 ...", with anything in the parentheses
        const QByteArray text = status.readAll();
        if (text.mid(text.lastIndexOf(')') + 2).split(' ').value(1).toInt() == pid)
            killWithChildren(entry.toInt());
    }
    kill(pid, SIGKILL);
}

} // namespace

QString SSHServer::whatIsMissing()
{
    if (!QFileInfo(Daemon).isExecutable())
        return QStringLiteral("There is no sshd here (openssh-server).");
    // As root it wants a folder to lock itself into.
    if (geteuid() == 0 && mkdir("/run/sshd", 0755) != 0 && !QFileInfo(QStringLiteral("/run/sshd")).isDir())
        return QStringLiteral("There is no /run/sshd here, which sshd needs when it is run by root.");
    return QString();
}

SSHServer::SSHServer()
{
    makeKey(path("host_key"));
    makeKey(keyFile());
    makeKey(strangersKeyFile());
    QFile::copy(keyFile() + QStringLiteral(".pub"), path("authorized_keys"));
    m_port = unusedPort();
    write(
        path("sshd_config"),
        QStringLiteral("ListenAddress 127.0.0.1:%1\nHostKey \"%2\"\nAuthorizedKeysFile \"%3\"\nPidFile none\n"
                       "StrictModes no\nUsePAM no\nPasswordAuthentication no\nPermitRootLogin yes\n"
                       "AllowTcpForwarding yes\n")
            .arg(m_port)
            .arg(path("host_key"), path("authorized_keys")));
    write(path("ssh_config"),
          QStringLiteral("IdentityAgent none\nIdentityFile \"%1\"\nGlobalKnownHostsFile /dev/null\n"
                         "Host %2\nHostName 127.0.0.1\nPort %3\n")
              .arg(strangersKeyFile(), QString::fromLatin1(Alias))
              .arg(m_port));
    write(client(), QStringLiteral("#!/bin/sh\nexec ssh -F '%1' \"$@\"\n").arg(path("ssh_config")),
          QFile::ExeOwner);
    start();
}

SSHServer::~SSHServer()
{
    stop();
}

void SSHServer::start()
{
    const QByteArray config = QFile::encodeName(path("sshd_config"));
    const QByteArray log = QFile::encodeName(path("log"));
    m_pid = fork();
    if (m_pid == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        execl("/usr/sbin/sshd", "/usr/sbin/sshd", "-D", "-E", log.constData(), "-f", config.constData(),
              static_cast<char *>(nullptr));
        _exit(127);
    }
    const QDeadlineTimer deadline(30000);
    while (!isListening(m_port)) {
        if (deadline.hasExpired())
            throw std::runtime_error("sshd does not listen.");
        usleep(2000);
    }
}

void SSHServer::stop()
{
    if (m_pid <= 0)
        return;
    killWithChildren(m_pid);
    waitpid(m_pid, nullptr, 0);
    m_pid = -1;
}

QString SSHServer::fingerprint() const
{
    return QString::fromLatin1(
        outputOf(QStringLiteral("ssh-keygen"), {QStringLiteral("-lf"), path("host_key.pub")})
            .split(' ')
            .at(1));
}

void SSHServer::changeHostKey()
{
    stop();
    makeKey(path("host_key"));
    start();
}
