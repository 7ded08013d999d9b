#include "Export/KNTargetFile.h"

#include "Foundation/KNFormat.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSaveFile>

namespace {

/// Whether the path names something that a new file must not replace, such as /dev/stdout or a pipe.
bool isSpecialFile(const QString &path)
{
    const QFileInfo file(path);
    return file.exists() && !file.isFile() && !file.isDir();
}

std::unique_ptr<QFileDevice> fileAt(const QString &path)
{
    if (path.isNull() || isSpecialFile(path))
        return std::make_unique<QFile>(path);
    return std::make_unique<QSaveFile>(path);
}

} // namespace

KNTargetFile::KNTargetFile(const QString &path)
    : m_path(path)
    , m_file(fileAt(path))
{
}

KNTargetFile::~KNTargetFile() = default;

bool KNTargetFile::open(KNError *error)
{
    auto *const direct = qobject_cast<QFile *>(m_file.get());
    const bool isOpen = m_path.isNull() && direct ? direct->open(stdout, QIODevice::WriteOnly)
                                                  : m_file->open(QIODevice::WriteOnly);
    *error = isOpen ? KNError() : writeError();
    return isOpen;
}

QIODevice &KNTargetFile::device()
{
    return *m_file;
}

bool KNTargetFile::commit(KNError *error)
{
    // QSaveFile does not notice that its last bytes could not be written.
    const bool isFlushed = m_file->flush() && m_file->error() == QFileDevice::NoError;
    auto *const replacing = qobject_cast<QSaveFile *>(m_file.get());
    const bool isWritten = isFlushed && (!replacing || replacing->commit());
    *error = isWritten ? KNError() : writeError();
    return isWritten;
}

KNError KNTargetFile::writeError() const
{
    return KNError(QStringLiteral("com.quorvex.vantor.export"), 0,
                   KNFormat(QCoreApplication::translate(
                                "KNTargetFile", "The file %@ could not be written. Is the disk full? %@"),
                            m_path.isNull() ? QStringLiteral("-") : m_path, m_file->errorString()));
}
