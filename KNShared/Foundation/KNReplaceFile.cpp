#include "Foundation/KNReplaceFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace {

/// Makes a folder's entries survive a loss of power. Errors of file systems that do not support this are
/// ignored.
void syncFolder(const QString &folder)
{
    const int descriptor = open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    fsync(descriptor);
    close(descriptor);
}

/// Returns the error text; empty if everything is on disk. QSaveFile buffers, and its commit() succeeds
/// although the buffer could not be written (Qt 6.4). Files that cannot be synchronised return EINVAL.
QString writeThrough(QSaveFile &file, const QByteArray &content)
{
    if (file.write(content) != content.size() || !file.flush())
        return file.errorString();
    return fsync(file.handle()) == 0 || errno == EINVAL ? QString() : qt_error_string(errno);
}

} // namespace

bool KNReplaceFile(const QString &path, const QByteArray &content, QString *why,
                   std::optional<QFileDevice::Permissions> permissions)
{
    QSaveFile file(path);
    bool isOpen = file.open(QIODevice::WriteOnly);
    if (isOpen && permissions)
        isOpen = file.setPermissions(*permissions);
    QString reason = isOpen ? writeThrough(file, content) : file.errorString();
    if (reason.isEmpty() && !file.commit())
        reason = file.errorString();
    if (reason.isEmpty())
        syncFolder(QFileInfo(path).absolutePath());
    else if (why)
        *why = reason;
    return reason.isEmpty();
}
