#pragma once

#include "Foundation/KNError.h"

#include <QIODevice>
#include <QString>

#include <memory>

struct zip;
struct zip_file;

/// A part of a zip file, unpacked while it is read. An archive can name any size for a part, and unpack to
/// something a thousand times as large: the part fails to read behind the size that it is allowed.
class KNZipPart : public QIODevice
{
public:
    /// Takes the open part over.
    KNZipPart(zip_file *part, qint64 size, qint64 most);
    ~KNZipPart() override;

    bool isSequential() const override { return true; }
    qint64 unpackedSize() const { return m_size; }
    qint64 bytesRead() const { return m_read; }
    /// Whether the part was damaged or too large.
    bool hasFailed() const { return m_hasFailed; }
    /// Fails when the next `most` bytes are read before the next call.
    void allowMore(qint64 most) { m_limit = m_read + most; }

protected:
    qint64 readData(char *data, qint64 size) override;
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    zip_file *const m_part;
    const qint64 m_size; ///< as the archive says
    const qint64 m_most;
    qint64 m_limit;
    qint64 m_read = 0;
    bool m_hasFailed = false;
};

/// A zip file. Used by one thread at a time.
class KNZipFile
{
public:
    /// Null, with an error, if it cannot be read.
    static std::unique_ptr<KNZipFile> open(const QString &path, KNError *error);
    ~KNZipFile();
    KNZipFile(const KNZipFile &) = delete;
    KNZipFile &operator=(const KNZipFile &) = delete;

    /// The part of this name with at most `most` bytes; null if there is none or it is encrypted.
    std::unique_ptr<KNZipPart> part(const QString &name, qint64 most) const;

private:
    explicit KNZipFile(zip *archive);

    zip *const m_archive;
};
