#pragma once

#include <QString>
#include <QStringDecoder>

/// Decodes UTF-8 without loss; never null. Qt's own functions drop U+FEFF at the beginning of a text as its
/// signature, but in a value it is a character. U+FFFD replaces undecodable bytes and `isValid` receives
/// whether there were none.
inline QString KNTextFromUtf8(QByteArrayView utf8, bool *isValid = nullptr)
{
    using Flag = QStringDecoder::Flag;
    QStringDecoder decoder(QStringDecoder::Utf8, Flag::Stateless | Flag::ConvertInitialBom);
    const QString text = decoder(utf8);
    if (isValid)
        *isValid = !decoder.hasError();
    return text.isNull() ? QStringLiteral("") : text;
}
