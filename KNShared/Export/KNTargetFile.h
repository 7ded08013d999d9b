#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <QIODevice>
#include <QString>

#include <memory>

class QFileDevice;

/// The file that an export makes. An existing file stays as it is until commit(), which replaces it by the
/// whole new one; without commit() nothing is left of the new one. A device or pipe is written directly.
/// Used by one thread at a time.
class KNSHARED_EXPORT KNTargetFile
{
public:
    /// A null path is standard output.
    explicit KNTargetFile(const QString &path);
    ~KNTargetFile();
    KNTargetFile(const KNTargetFile &) = delete;
    KNTargetFile &operator=(const KNTargetFile &) = delete;

    /// False, with an error that names the file, if it cannot be written.
    bool open(KNError *error);
    /// To write to, once open() has succeeded.
    QIODevice &device();
    /// Completes the file; false, with an error, if any of it could not be written.
    bool commit(KNError *error);
    /// The error of a failed write.
    KNError writeError() const;

private:
    const QString m_path;
    std::unique_ptr<QFileDevice> m_file;
};
