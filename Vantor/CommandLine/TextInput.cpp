#include "CommandLine/TextInput.h"

#include "Foundation/KNFormat.h"

#include <QFile>
#include <QStringDecoder>

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
    const auto encoding = QStringConverter::encodingForData(bytes).value_or(QStringConverter::Utf8);
    QStringDecoder decoder(encoding, QStringDecoder::Flag::Stateless);
    const QString text = decoder(bytes);
    if (decoder.hasError()) {
        *error = KNError(domain, 0, KNFormat("%@ is not text in UTF-8 or UTF-16.", name));
        return std::nullopt;
    }
    return text.isNull() ? QStringLiteral("") : text;
}
