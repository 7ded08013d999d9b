#include "Database/KNRowCell.h"

#include <QStringDecoder>

#include <cstring>

namespace {

std::size_t readVarint(const unsigned char *&position)
{
    std::size_t number = 0;
    int shift = 0;
    while (*position & 0x80) {
        number |= static_cast<std::size_t>(*position++ & 0x7F) << shift;
        shift += 7;
    }
    return number | static_cast<std::size_t>(*position++) << shift;
}

template <typename Fixed>
Fixed readFixed(const unsigned char *position)
{
    Fixed value;
    std::memcpy(&value, position, sizeof value);
    return value;
}

QString guidText(const unsigned char *b)
{
    static constexpr int order[16] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    static constexpr char digits[] = "0123456789ABCDEF";
    QString text;
    text.reserve(36);
    for (int i = 0; i < 16; ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10)
            text += QLatin1Char('-');
        text += QLatin1Char(digits[b[order[i]] >> 4]);
        text += QLatin1Char(digits[b[order[i]] & 15]);
    }
    return text;
}

KNValue textValue(const unsigned char *data, std::size_t length)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(QByteArrayView(data, static_cast<qsizetype>(length)));
    if (decoder.hasError())
        return KNValue();
    return KNValue(text.isNull() ? QStringLiteral("") : text);
}

} // namespace

KNRowCell KNRowCell::at(const unsigned char *position)
{
    const auto tag = static_cast<Tag>(*position++);
    switch (tag) {
    case Null:
    case False:
    case True:
        return {tag, position, 0};
    case Int32:
    case Float:
        return {tag, position, 4};
    case Int64:
    case Double:
        return {tag, position, 8};
    case Guid:
        return {tag, position, 16};
    case Date:
        return {tag, position, 9};
    case Decimal:
    case NegativeDecimal:
        return {tag, position, 2 + std::size_t{position[1]}};
    case Text:
    case Bytes: {
        const std::size_t length = readVarint(position);
        return {tag, position, length};
    }
    }
    return {Null, position, 0};
}

KNValue KNRowCell::value() const
{
    switch (tag) {
    case Null:
        return KNValue();
    case False:
        return KNValue(false);
    case True:
        return KNValue(true);
    case Int32:
        return KNValue(readFixed<qint32>(data));
    case Int64:
        return KNValue(readFixed<qint64>(data));
    case Float:
        return KNValue(readFixed<float>(data));
    case Double:
        return KNValue(readFixed<double>(data));
    case Text:
        return textValue(data, length);
    case Bytes:
        return KNValue(QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(length)));
    case Guid:
        return KNValue(guidText(data));
    case Date: {
        KNDateTime date;
        date.parts = static_cast<KNDateTime::Parts>(data[0] >> 4);
        date.fractionDigits = data[0] & 15;
        date.ticks = readFixed<qint64>(data + 1);
        return KNValue(date);
    }
    case Decimal:
    case NegativeDecimal: {
        const auto decimal = KNDecimal::fromBigEndian(data + 2, data[1], tag == NegativeDecimal, data[0]);
        return decimal ? KNValue(*decimal) : KNValue();
    }
    }
    return KNValue();
}

KNValue KNRowCell::value(std::size_t limit) const
{
    KNRowCell cut = *this;
    if ((tag == Text || tag == Bytes) && length > limit) {
        cut.length = limit;
        // A byte of the form 10xxxxxx goes on with a character.
        while (tag == Text && cut.length > 0 && (data[cut.length] & 0xC0) == 0x80)
            --cut.length;
    }
    return cut.value();
}
