#include "Desktop/Query/TextFile.h"

#include "Foundation/KNFormat.h"
#include "Foundation/KNReplaceFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringConverter>

namespace {

using Encoding = TextFile::Encoding;

/// `text` has placeholders for the file and the reason.
KNError fileError(const QString &text, const QString &path, const QString &reason)
{
    return KNError(QStringLiteral("com.quorvex.vantor.file"), 0,
                   KNFormat(text, QDir::toNativeSeparators(path), reason));
}

QByteArray markOf(Encoding encoding)
{
    switch (encoding) {
    case Encoding::UTF8WithMark:
        return QByteArrayLiteral("\xef\xbb\xbf");
    case Encoding::UTF16LittleEndian:
        return QByteArrayLiteral("\xff\xfe");
    case Encoding::UTF16BigEndian:
        return QByteArrayLiteral("\xfe\xff");
    case Encoding::UTF8:
    case Encoding::Latin1:
        break;
    }
    return {};
}

QStringConverter::Encoding converterFor(Encoding encoding)
{
    switch (encoding) {
    case Encoding::UTF16LittleEndian:
        return QStringConverter::Utf16LE;
    case Encoding::UTF16BigEndian:
        return QStringConverter::Utf16BE;
    case Encoding::Latin1:
        return QStringConverter::Latin1;
    case Encoding::UTF8:
    case Encoding::UTF8WithMark:
        break;
    }
    return QStringConverter::Utf8;
}

/// Devices cannot be replaced by a new file.
bool isDevice(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() && !info.isFile();
}

bool writeToDevice(const QString &path, const QByteArray &bytes, QString *why)
{
    QFile device(path);
    if (device.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && device.write(bytes) == bytes.size())
        return true;
    *why = device.errorString();
    return false;
}

bool decode(const QByteArray &bytes, Encoding encoding, QString *text)
{
    if (markOf(encoding).size() == 2 ? bytes.size() % 2 != 0
                                     : encoding != Encoding::Latin1 && !QByteArrayView(bytes).isValidUtf8())
        return false;
    QStringDecoder decoder(converterFor(encoding), QStringConverter::Flag::ConvertInitialBom);
    *text = decoder.decode(bytes.mid(markOf(encoding).size()));
    return !decoder.hasError();
}

} // namespace

bool TextFile::read(const QString &path, QString *text, KNError *error)
{
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) {
        *error = fileError(tr("%@ could not be opened. %@"), path, tr("It is not a file."));
        return false;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = fileError(tr("%@ could not be opened. %@"), path, file.errorString());
        return false;
    }
    if (file.size() > LargestSize) {
        *error = fileError(tr("%@ could not be opened. %@"), path, tr("It is too large for the editor."));
        return false;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        *error = fileError(tr("%@ could not be read. %@"), path, file.errorString());
        return false;
    }
    Encoding encoding = Encoding::UTF8;
    for (const Encoding marked :
         {Encoding::UTF8WithMark, Encoding::UTF16LittleEndian, Encoding::UTF16BigEndian}) {
        if (bytes.startsWith(markOf(marked)))
            encoding = marked;
    }
    if (!decode(bytes, encoding, text)) {
        encoding = Encoding::Latin1;
        decode(bytes, encoding, text);
    }
    m_path = info.absoluteFilePath();
    m_encoding = encoding;
    rememberState();
    return true;
}

QString TextFile::encodingName() const
{
    switch (m_encoding) {
    case Encoding::UTF8WithMark:
        return tr("UTF-8 with BOM");
    case Encoding::UTF16LittleEndian:
        return QStringLiteral("UTF-16 LE");
    case Encoding::UTF16BigEndian:
        return QStringLiteral("UTF-16 BE");
    case Encoding::Latin1:
        return QStringLiteral("ISO 8859-1");
    case Encoding::UTF8:
        break;
    }
    return QStringLiteral("UTF-8");
}

QByteArray TextFile::encoded(const QString &text)
{
    QStringEncoder encoder(converterFor(m_encoding));
    const QByteArray bytes = encoder.encode(text);
    if (encoder.hasError() && m_encoding == Encoding::Latin1) {
        m_encoding = Encoding::UTF8;
        return text.toUtf8();
    }
    return markOf(m_encoding) + bytes;
}

bool TextFile::write(const QString &text, KNError *error)
{
    const QByteArray bytes = encoded(text);
    QString why;
    if (isDevice(m_path) ? !writeToDevice(m_path, bytes, &why) : !KNReplaceFile(m_path, bytes, &why)) {
        *error = fileError(tr("%@ could not be saved. %@"), m_path, why);
        return false;
    }
    rememberState();
    return true;
}

bool TextFile::hasChangedOnDisk() const
{
    const QFileInfo info(m_path);
    return m_size >= 0 && info.isFile() && (info.lastModified() != m_time || info.size() != m_size);
}

void TextFile::rememberState()
{
    const QFileInfo info(m_path);
    m_time = info.lastModified();
    m_size = info.isFile() ? info.size() : -1;
}
