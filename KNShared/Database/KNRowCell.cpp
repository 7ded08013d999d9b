#include "Database/KNRowCell.h"

#include "Database/KNReadFixed.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNUtf8.h"

#include <algorithm>
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

KNValue textValue(QByteArrayView utf8)
{
    bool isValid = false;
    const QString text = KNTextFromUtf8(utf8, &isValid);
    return isValid ? KNValue(text) : KNValue();
}

QByteArray bytesOf(const unsigned char *data, std::size_t length)
{
    return QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(length));
}

/// "2020-01-02 05:04:05:1234567 +02:00": connectors expect a colon before the fraction, "000" for no fraction
/// and for the first second of a day in UTC, and a minus sign from an hour on.
QString offsetDateText(const KNDateTime &date)
{
    const int offset = date.offsetMinutes;
    const KNDateTime local = {.ticks = date.ticks + offset * KNDateTime::TicksPerMinute, .fractionDigits = 0};
    const qint64 remainder = date.ticks % KNDateTime::TicksPerDay;
    const qint64 ticksOfDay = remainder < 0 ? remainder + KNDateTime::TicksPerDay : remainder;
    QString fraction = QStringLiteral("000");
    if (date.fractionDigits > 0 && ticksOfDay >= KNDateTime::TicksPerSecond)
        fraction = QString::number(ticksOfDay).right(7).left(date.fractionDigits);
    return KNFormat("%@:%@ %@%02ld:%02ld", local.toString(), fraction, offset < -59 ? "-" : "+",
                    std::abs(offset) / 60, std::abs(offset) % 60);
}

bool isFlagSet(const unsigned char *data, std::size_t length)
{
    return std::any_of(data, data + std::min<std::size_t>(length, 4), [](unsigned char b) { return b != 0; });
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
    case FloatMoney:
        return {tag, position, 4};
    case Int64:
    case Double:
        return {tag, position, 8};
    case Guid:
        return {tag, position, 16};
    case Date:
        return {tag, position, 9};
    case OffsetDate:
        return {tag, position, 11};
    case Decimal:
    case NegativeDecimal:
        return {tag, position, 2 + std::size_t{position[1]}};
    case Text:
    case Bytes:
    case FlagBytes: {
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
        return KNValue(KNReadFixed<qint32>(data));
    case Int64:
        return KNValue(KNReadFixed<qint64>(data));
    case Float:
        return KNValue(KNReadFixed<float>(data));
    case Double:
        return KNValue(KNReadFixed<double>(data));
    case Text:
        return textValue(QByteArrayView(data, static_cast<qsizetype>(length)));
    case Bytes:
        return KNValue(bytesOf(data, length));
    case FlagBytes:
        return KNValue(isFlagSet(data, length));
    case FloatMoney:
        return KNValue(static_cast<float>(KNReadFixed<qint32>(data) / 10000.0));
    case OffsetDate:
        return KNValue(offsetDateText(dateTime()));
    case Guid:
        return KNValue(guidText(data));
    case Date:
        return KNValue(dateTime());
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
    return limitedTo(limit).value();
}

KNValue KNRowCell::storedValue() const
{
    switch (tag) {
    case Text:
        return KNValue(KNTextFromUtf8(QByteArrayView(data, static_cast<qsizetype>(length))));
    case FlagBytes:
        return KNValue(bytesOf(data, length));
    case OffsetDate:
        return KNValue(dateTime());
    case FloatMoney:
        return KNValue(*KNDecimal(KNReadFixed<qint32>(data)).multipliedByPowerOf10(-4));
    default:
        return value();
    }
}

KNValue KNRowCell::storedValue(std::size_t limit) const
{
    return limitedTo(limit).storedValue();
}

bool KNRowCell::isNumber() const
{
    return (tag >= False && tag <= Double) || tag == Decimal || tag == NegativeDecimal || tag == FloatMoney;
}

KNDateTime KNRowCell::dateTime() const
{
    KNDateTime date;
    if (tag != Date && tag != OffsetDate)
        return date;
    date.parts = static_cast<KNDateTime::Parts>(data[0] >> 4);
    date.fractionDigits = data[0] & 15;
    date.ticks = KNReadFixed<qint64>(data + 1);
    if (tag == OffsetDate)
        date.offsetMinutes = KNReadFixed<qint16>(data + 9);
    return date;
}

KNRowCell KNRowCell::limitedTo(std::size_t limit) const
{
    KNRowCell cut = *this;
    if ((tag == Text || tag == Bytes || tag == FlagBytes) && length > limit) {
        cut.length = limit;
        // A byte of the form 10xxxxxx continues a UTF-8 character.
        while (tag == Text && cut.length > 0 && (data[cut.length] & 0xC0) == 0x80)
            --cut.length;
    }
    return cut;
}
