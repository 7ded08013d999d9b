#include "CommandLine/StandardOutput.h"

#include "CommandLine/Terminal.h"
#include "Foundation/KNTerminalText.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>

StandardOutput::StandardOutput()
    : m_abandoned(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    , m_isTerminal(Terminal::isOutputTerminal())
{
    struct stat status = {};
    m_mayBlock = fstat(STDOUT_FILENO, &status) != 0 || !S_ISREG(status.st_mode);
    open(QIODevice::WriteOnly | QIODevice::Unbuffered);
}

StandardOutput::~StandardOutput()
{
    ::close(m_abandoned);
}

void StandardOutput::abandon()
{
    eventfd_write(m_abandoned, 1);
}

qint64 StandardOutput::readData(char *, qint64)
{
    return -1;
}

qint64 StandardOutput::writeData(const char *data, qint64 size)
{
    if (m_hasFailed)
        return -1;
    if (!m_isTerminal) {
        m_hasFailed = !writeAll(data, size);
        return m_hasFailed ? -1 : size;
    }
    const QByteArray escaped =
        KNTerminalText::escaped(QString::fromUtf8(QByteArrayView(data, static_cast<qsizetype>(size))))
            .toUtf8();
    m_hasFailed = !writeAll(escaped.constData(), escaped.size());
    return m_hasFailed ? -1 : size;
}

bool StandardOutput::writeAll(const char *data, qint64 size)
{
    while (size > 0) {
        // A writable pipe accepts this number of bytes without blocking.
        const qint64 piece = m_mayBlock ? std::min<qint64>(size, PIPE_BUF) : size;
        if (m_mayBlock && !waitUntilWritable())
            return false;
        const ssize_t written = ::write(STDOUT_FILENO, data, static_cast<std::size_t>(piece));
        if (written < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (written <= 0)
            return false;
        data += written;
        size -= written;
    }
    return true;
}

/// False if the output was abandoned and is not read. A slow reader still receives the rest of the current
/// write, so that the last line is complete.
bool StandardOutput::waitUntilWritable() const
{
    constexpr int PatienceMilliseconds = 200;
    pollfd descriptors[] = {{STDOUT_FILENO, POLLOUT, 0}, {m_abandoned, POLLIN, 0}};
    while (poll(descriptors, 2, -1) < 0 && errno == EINTR) {
    }
    if (descriptors[0].revents != 0)
        return true;
    return poll(descriptors, 1, PatienceMilliseconds) > 0;
}
