#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <QCoreApplication>
#include <QFile>
#include <QStringDecoder>
#include <QStringEncoder>

/// A text file of any encoding, read piece by piece as UTF-8. Used by one thread at a time.
class KNSHARED_EXPORT KNImportTextSource
{
    Q_DECLARE_TR_FUNCTIONS(KNImportTextSource)

public:
    enum class Encoding { Detect, UTF8, UTF16LittleEndian, UTF16BigEndian, Windows1252 };

    /// Opens a regular file. Detection takes a byte-order mark, or looks at the first 64 KiB: zero bytes
    /// indicate UTF-16, and text that is no UTF-8 is Windows-1252.
    bool open(const QString &path, Encoding encoding, KNError *error);
    /// The encoding that is used, never Detect.
    Encoding encoding() const { return m_encoding; }
    /// Returns the next piece of at most some 64 KiB, cut anywhere; empty at the end and with an error. UTF-8
    /// is passed on unchecked.
    QByteArray read(KNError *error);
    /// The part that was read, from 0 to 1.
    double progress() const;

private:
    QByteArray convert(const QByteArray &bytes, KNError *error);
    static Encoding detected(const QByteArray &beginning);

    QFile m_file;
    QByteArray m_beginning; ///< was read for the detection
    Encoding m_encoding = Encoding::UTF8;
    QStringDecoder m_decoder;
    QStringEncoder m_encoder;
};
