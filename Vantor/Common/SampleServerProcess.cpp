#include "Common/SampleServerProcess.h"

#include "Foundation/KNFormat.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QUuid>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <vector>

namespace {

const QByteArray PasswordVariable = "VANTOR_PRIVATE_SAMPLE_PASSWORD";
constexpr char UserName[] = "sample";

/// Reads up to a line end; returns the text so far if the time has passed or the pipe was closed.
QByteArray readLine(int descriptor, int timeoutMilliseconds)
{
    QByteArray line;
    const QDeadlineTimer deadline(timeoutMilliseconds);
    while (!line.endsWith('\n') && !deadline.hasExpired()) {
        pollfd waiting = {descriptor, POLLIN, 0};
        if (poll(&waiting, 1, static_cast<int>(deadline.remainingTime())) <= 0)
            continue;
        char byte = 0;
        if (read(descriptor, &byte, 1) != 1)
            break;
        line += byte;
    }
    return line;
}

QString programPath()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/vantor-sample-server");
}

bool fail(const QString &why, KNError *error)
{
    *error = KNError(QStringLiteral("com.quorvex.vantor.sampleServer"), 0,
                     KNFormat("The sample server %@ could not be started: %@", programPath(), why));
    return false;
}

} // namespace

QString SampleServerProcess::userName() const
{
    return QString::fromLatin1(UserName);
}

bool SampleServerProcess::launch(KNError *error)
{
    const QString program = programPath();
    m_password = QUuid::createUuid().toString(QUuid::WithoutBraces);
    int output[2];
    if (pipe2(output, O_CLOEXEC) != 0)
        return fail(QString::fromLocal8Bit(strerror(errno)), error);

    // All memory is allocated before the fork.
    const QByteArray path = QFile::encodeName(program);
    QByteArray user(UserName);
    QByteArray variable = PasswordVariable;
    std::array<char *, 8> arguments = {const_cast<char *>(path.data()),
                                       const_cast<char *>("--port"),
                                       const_cast<char *>("0"),
                                       const_cast<char *>("--user"),
                                       user.data(),
                                       const_cast<char *>("--password-env"),
                                       variable.data(),
                                       nullptr};
    // The password is in the server's environment only, not in this program's, which other children inherit.
    QByteArray passwordEntry = PasswordVariable + '=' + m_password.toLatin1();
    std::vector<char *> environment;
    for (char **entry = environ; *entry; ++entry)
        environment.push_back(*entry);
    environment.push_back(passwordEntry.data());
    environment.push_back(nullptr);
    const pid_t parent = getpid();
    m_process = fork();
    if (m_process == 0) {
        // The server ends with this program, even after a crash, and does not receive its Ctrl-C.
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        setpgid(0, 0);
        if (getppid() != parent)
            _exit(1);
        dup2(output[1], STDOUT_FILENO);
        execve(path.constData(), arguments.data(), environment.data());
        _exit(127);
    }
    ::close(output[1]);
    if (m_process < 0) {
        ::close(output[0]);
        return fail(QString::fromLocal8Bit(strerror(errno)), error);
    }
    m_output = output[0];
    return true;
}

bool SampleServerProcess::waitUntilReady(KNError *error)
{
    constexpr int PatienceMilliseconds = 10'000;
    const QByteArray line = readLine(m_output, PatienceMilliseconds).trimmed();
    ::close(m_output);
    const int port = line.mid(line.lastIndexOf(':') + 1).toInt();
    if (!line.startsWith("Listening on ") || port <= 0)
        return fail(line.isEmpty() ? QStringLiteral("it did not become ready.")
                                   : QString::fromLocal8Bit(line),
                    error);
    m_host = KNFormat("127.0.0.1,%d", port);
    return true;
}

SampleServerProcess::~SampleServerProcess()
{
    if (m_process <= 0)
        return;
    kill(m_process, SIGTERM);
    waitpid(m_process, nullptr, 0);
}
