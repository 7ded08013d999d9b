#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <QLockFile>

#include <chrono>

/// The right to change a store that several programs share, until the object is destroyed. The system's
/// process list shows whether the program that holds it still runs.
class KNSHARED_EXPORT KNStoreLock
{
public:
    /// Waits for other programs, not longer than `longestWait`. `path` is the lock file, whose folder is
    /// created.
    explicit KNStoreLock(const QString &path,
                         std::chrono::milliseconds longestWait = std::chrono::seconds(10));

    /// Also true where no lock file can be written: the store then cannot be written either, and says why.
    bool isHeld() const { return m_isHeld; }
    /// A KNKeyValueStore::NotWritten error if another program holds the lock.
    KNError error() const;

private:
    QLockFile m_file;
    bool m_isHeld = false;
};
