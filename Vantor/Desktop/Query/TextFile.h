#pragma once

#include "Foundation/KNError.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDateTime>
#include <QString>

/// A text file that keeps its encoding and byte order mark when it is written again. Line ends are not
/// converted.
class TextFile
{
    Q_DECLARE_TR_FUNCTIONS(TextFile)

public:
    enum class Encoding { UTF8, UTF8WithMark, UTF16LittleEndian, UTF16BigEndian, Latin1 };

    /// Larger files are refused, in bytes.
    static constexpr qint64 LargestSize = qint64(256) * 1024 * 1024;

    QString path() const { return m_path; }
    void setPath(const QString &path) { m_path = path; }
    Encoding encoding() const { return m_encoding; }
    /// The name of the encoding for users, such as "UTF-8 with BOM".
    QString encodingName() const;

    /// Reads the file into `text`; false, with an error and without changes, on failure. Text that is not
    /// valid UTF-8 is decoded as Latin-1.
    bool read(const QString &path, QString *text, KNError *error);
    /// Writes the text to path() atomically. Characters that the file's encoding lacks change it to UTF-8.
    bool write(const QString &text, KNError *error);
    /// Whether another program has changed the file since it was last read or written here.
    bool hasChangedOnDisk() const;

private:
    QByteArray encoded(const QString &text);
    void rememberState();

    QString m_path;
    Encoding m_encoding = Encoding::UTF8;
    QDateTime m_time;
    qint64 m_size = -1;
};
