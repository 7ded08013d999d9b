#include "CommandLine/TextInput.h"

#include "Foundation/KNFormat.h"

#include <QFile>
#include <QStringDecoder>

namespace {

/// Detects the encoding by the byte-order mark. Without one, text with a NUL in every other byte of its
/// beginning is UTF-16: SQL contains ASCII letters, and UTF-8 text has no NULs.
QStringConverter::Encoding encodingOf(const QByteArray &bytes)
{
    constexpr qsizetype Beginning = 4096;
    if (const auto encoding = QStringConverter::encodingForData(bytes))
        return *encoding;
    qsizetype nuls[2] = {};
    const qsizetype looked = std::min(bytes.size(), Beginning);
    for (qsizetype i = 0; i < looked; ++i)
        nuls[i % 2] += bytes[i] == '\0';
    if (nuls[0] == nuls[1])
        return QStringConverter::Utf8;
    return nuls[0] > nuls[1] ? QStringConverter::Utf16BE : QStringConverter::Utf16LE;
}

} // namespace

std::optional<QString> readTextInput(const QString &file, KNError *error)
{
    const QString domain = QStringLiteral("com.quorvex.vantor.cli");
    const bool isStandardInput = file.isNull() || file == QLatin1String("-");
    QFile input(file);
    const bool isOpen =
        isStandardInput ? input.open(stdin, QIODevice::ReadOnly) : input.open(QIODevice::ReadOnly);
    const QByteArray bytes = isOpen ? input.readAll() : QByteArray();
    const QString name = isStandardInput ? QStringLiteral("standard input") : file;
    if (!isOpen || input.error() != QFileDevice::NoError) {
        *error = KNError(domain, 0, KNFormat("%@ could not be read: %@", name, input.errorString()));
        return std::nullopt;
    }
    const auto encoding = encodingOf(bytes);
    QStringDecoder decoder(encoding, QStringDecoder::Flag::Stateless);
    const QString text = decoder(bytes);
    // The decoder keeps the bytes of an incomplete character.
    const bool isCut = encoding != QStringConverter::Utf8 &&
                       (bytes.size() % 2 != 0 || (!text.isEmpty() && text.back().isHighSurrogate()));
    if (decoder.hasError() || isCut) {
        *error = KNError(domain, 0, KNFormat("%@ is not text in UTF-8 or UTF-16.", name));
        return std::nullopt;
    }
    return text.isNull() ? QStringLiteral("") : text;
}
