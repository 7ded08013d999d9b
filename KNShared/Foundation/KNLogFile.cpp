#include "Foundation/KNLogFile.h"

#include "Foundation/KNPrivateFolder.h"

#include <QFile>

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int OlderGenerations = 4;

void writeAll(int descriptor, const QByteArray &bytes)
{
    qsizetype written = 0;
    while (written < bytes.size()) {
        const ssize_t count =
            ::write(descriptor, bytes.constData() + written, size_t(bytes.size() - written));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return;
        written += count;
    }
}

/// A FIFO or a device at the file's path could block the program at every line.
bool isRegularFile(int descriptor)
{
    struct stat status
    {
    };
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

qint64 sizeOf(int descriptor)
{
    struct stat status
    {
    };
    return fstat(descriptor, &status) == 0 ? status.st_size : 0;
}

} // namespace

KNLogFile::KNLogFile(QString folder, qint64 maximumBytes)
    : m_folder(std::move(folder))
    , m_maximumBytes(maximumBytes)
{
    open();
}

KNLogFile::~KNLogFile()
{
    close();
}

QString KNLogFile::path() const
{
    return m_descriptor >= 0 ? pathOfGeneration(0) : QString();
}

QString KNLogFile::pathOfGeneration(int generation) const
{
    if (generation == 0)
        return m_folder + QStringLiteral("/vantor.log");
    return m_folder + QStringLiteral("/vantor.") + QString::number(generation) + QStringLiteral(".log");
}

bool KNLogFile::open()
{
    if (m_descriptor >= 0)
        return true;
    if (!KNMakePrivateFolder(m_folder))
        return false;
    const QByteArray name = QFile::encodeName(pathOfGeneration(0));
    // O_NONBLOCK: opening a FIFO would wait for its reader. It has no effect on a regular file.
    m_descriptor = ::open(name.constData(),
                          O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY,
                          S_IRUSR | S_IWUSR);
    // An existing file may be readable by others; it is not used if its mode cannot be restricted.
    if (m_descriptor >= 0 && (!isRegularFile(m_descriptor) || fchmod(m_descriptor, S_IRUSR | S_IWUSR) != 0))
        close();
    return m_descriptor >= 0;
}

void KNLogFile::close()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
}

void KNLogFile::rotate()
{
    close();
    for (int generation = OlderGenerations; generation > 0; --generation)
        std::rename(QFile::encodeName(pathOfGeneration(generation - 1)).constData(),
                    QFile::encodeName(pathOfGeneration(generation)).constData());
}

void KNLogFile::append(const QByteArray &lines)
{
    if (open()) {
        const qint64 size = sizeOf(m_descriptor);
        if (size > 0 && size + lines.size() > m_maximumBytes)
            rotate();
    }
    if (open())
        writeAll(m_descriptor, lines);
}
