#pragma once

#include "Foundation/KNError.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDateTime>
#include <QString>

/// A file of text, as it is read and as it is to be written again: its encoding and its byte order mark stay
/// what they were. The text is taken as it is, with its line ends.
class TextFile
{
    Q_DECLARE_TR_FUNCTIONS(TextFile)

public:
    enum class Encoding { UTF8, UTF8WithMark, UTF16LittleEndian, UTF16BigEndian, Latin1 };

    /// Larger files are not for an editor.
    static constexpr qint64 LargestSize = qint64(256) * 1024 * 1024;

    QString path() const { return m_path; }
    void setPath(const QString &path) { m_path = path; }
    Encoding encoding() const { return m_encoding; }

    /// Reads the file into `text`; false with an error, and nothing changed, when that fails. Bytes that are
    /// no UTF-8 are taken for Latin-1.
    bool read(const QString &path, QString *text, KNError *error);
    /// Writes the text to path(), whole or not at all. What the file's encoding does not have makes it UTF-8.
    bool write(const QString &text, KNError *error);
    /// Whether somebody else has written the file since it was read or written here.
    bool hasChangedOnDisk() const;

private:
    QByteArray encoded(const QString &text);
    void rememberState();

    QString m_path;
    Encoding m_encoding = Encoding::UTF8;
    QDateTime m_time;
    qint64 m_size = -1;
};
