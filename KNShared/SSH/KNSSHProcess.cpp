#include "SSH/KNSSHProcess.h"

#include <QFile>
#include <QProcessEnvironment>
#include <QStandardPaths>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <ctime>
#include <mutex>

namespace {

struct Program
{
    std::mutex mutex;
    QString name = QStringLiteral("ssh"); ///< guarded by mutex
};

Program &program()
{
    static Program instance;
    return instance;
}

QByteArray programPath()
{
    const std::lock_guard lock(program().mutex);
    const QString &name = program().name;
    return QFile::encodeName(name.contains(QLatin1Char('/')) ? name : QStandardPaths::findExecutable(name));
}

QList<QByteArray> encoded(const QStringList &texts)
{
    QList<QByteArray> bytes;
    for (const QString &text : texts)
        bytes.append(QFile::encodeName(text));
    return bytes;
}

/// With null at the end, for exec.
std::vector<char *> pointersTo(QList<QByteArray> &texts)
{
    std::vector<char *> pointers;
    for (QByteArray &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

void KNSSHProcess::setProgram(const QString &name)
{
    const std::lock_guard lock(program().mutex);
    program().name = name;
}

KNSSHProcess::KNSSHProcess(const QStringList &arguments, const QStringList &variables)
{
    // Prepared before the fork: after it, a multi-threaded process must not allocate memory.
    const QByteArray path = programPath();
    QList<QByteArray> texts = encoded(QStringList(QFile::decodeName(path)) + arguments);
    std::vector<char *> pointers = pointersTo(texts);
    QProcessEnvironment all = QProcessEnvironment::systemEnvironment();
    for (const QString &variable : variables)
        all.insert(variable.section(QLatin1Char('='), 0, 0), variable.section(QLatin1Char('='), 1));
    QList<QByteArray> environment = encoded(all.toStringList());
    std::vector<char *> environmentPointers = pointersTo(environment);

    int output[2] = {-1, -1};
    int errors[2] = {-1, -1};
    const int null = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (path.isEmpty() || null < 0 || pipe2(output, O_CLOEXEC) != 0 || pipe2(errors, O_CLOEXEC) != 0) {
        m_complaints = path.isEmpty() ? "The program ssh is not installed." : "ssh cannot be started.";
        for (const int descriptor : {null, output[0], output[1], errors[0], errors[1]})
            close(descriptor);
        return;
    }
    const pid_t parent = getpid();
    m_pid = fork();
    if (m_pid == 0) {
        setsid();
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        dup2(null, STDIN_FILENO);
        dup2(output[1], STDOUT_FILENO);
        dup2(errors[1], STDERR_FILENO);
        // Not every library marks its descriptors close-on-exec: ssh must not keep a connection open by
        // inheriting it.
        syscall(SYS_close_range, 3U, ~0U, 0U);
        if (getppid() == parent)
            execve(pointers[0], pointers.data(), environmentPointers.data());
        _exit(127);
    }
    close(null);
    close(output[1]);
    close(errors[1]);
    m_output = output[0];
    m_errors = errors[0];
}

KNSSHProcess::~KNSSHProcess()
{
    if (m_pid > 0) {
        kill(m_pid, SIGTERM);
        if (!waitForEnd(std::chrono::seconds(1))) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
    }
    close(m_output);
    close(m_errors);
}

KNSSHProcess::Event KNSSHProcess::wait(int stopDescriptor, const QDeadlineTimer &deadline)
{
    if (m_pid <= 0)
        return Event::Ended;
    for (;;) {
        // poll() ignores negative descriptors.
        pollfd descriptors[] = {{m_output, POLLIN, 0}, {m_errors, POLLIN, 0}, {stopDescriptor, POLLIN, 0}};
        const auto left = deadline.isForever() ? -1 : static_cast<int>(deadline.remainingTime());
        const int ready = poll(descriptors, std::size(descriptors), left);
        if (ready == 0)
            return Event::TimedOut;
        if (ready < 0)
            continue;
        if (descriptors[2].revents != 0)
            return Event::Stopped;
        if (descriptors[1].revents != 0)
            return readErrors() ? Event::Complaint : Event::Ended;
        if (descriptors[0].revents == 0)
            continue;
        char buffer[256];
        if (read(m_output, buffer, sizeof buffer) > 0)
            return Event::Output;
        close(m_output);
        m_output = -1;
    }
}

/// Returns false at the end of the stream.
bool KNSSHProcess::readErrors()
{
    constexpr qsizetype Most = 16384; // if there are many, only the last ones are kept
    char buffer[1024];
    const ssize_t size = read(m_errors, buffer, sizeof buffer);
    const std::lock_guard lock(m_mutex);
    m_complaints.append(buffer, std::max<ssize_t>(0, size));
    m_complaints = m_complaints.right(Most);
    return size > 0;
}

QString KNSSHProcess::complaints() const
{
    const std::lock_guard lock(m_mutex);
    return QString::fromLocal8Bit(m_complaints).trimmed();
}

bool KNSSHProcess::waitForEnd(std::chrono::milliseconds bound)
{
    const QDeadlineTimer deadline(bound);
    while (waitpid(m_pid, nullptr, WNOHANG) != m_pid) {
        if (deadline.hasExpired())
            return false;
        const timespec moment = {0, 1000000};
        nanosleep(&moment, nullptr);
    }
    m_pid = -1;
    return true;
}
