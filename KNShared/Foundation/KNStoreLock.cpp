#include "Foundation/KNStoreLock.h"

#include "Foundation/KNKeyValueStore.h"
#include "Foundation/KNPrivateFolder.h"

#include <QFileInfo>

KNStoreLock::KNStoreLock(const QString &path, std::chrono::milliseconds longestWait)
    : m_file(path)
{
    KNMakePrivateFolder(QFileInfo(path).path());
    m_file.setStaleLockTime(0); // held as long as the program runs
    m_isHeld =
        m_file.tryLock(static_cast<int>(longestWait.count())) || m_file.error() != QLockFile::LockFailedError;
}

KNError KNStoreLock::error() const
{
    if (m_isHeld)
        return {};
    return KNError(
        KNKeyValueStore::ErrorDomain, KNKeyValueStore::NotWritten,
        QStringLiteral("Another program is changing the remembered connections. Try again when it has "
                       "finished."));
}
