#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLClient.h"
#include "Implementations/MSSQLColumnValue.h"

#include <sybdb.h>

#include <algorithm>
#include <cstring>

namespace {

// Type numbers of the protocol that sybdb.h leaves out.
constexpr int SYBUNIQUE = 36;
constexpr int SYBVARIANT = 98;
constexpr int SYBMSUDT = 240;
constexpr int SYBMSXML = 241;

constexpr qint64 TicksPerMillisecond = 10'000;
constexpr qint64 TicksPerMinute = KNDateTime::TicksPerMinute;
constexpr qint64 TicksPerDay = KNDateTime::TicksPerDay;

template <typename Fixed>
Fixed read(const unsigned char *data)
{
    Fixed value;
    std::memcpy(&value, data, sizeof value);
    return value;
}

/// The first 32-bit word; bytes past the value's end count as zero.
quint32 firstWord(const unsigned char *data, int length)
{
    quint32 word = 0;
    std::memcpy(&word, data, static_cast<std::size_t>(std::clamp(length, 0, 4)));
    return word;
}

/// The minimum size of a type's value, in bytes; a shorter value is null.
int minimumLength(int type)
{
    switch (type) {
    case SYBUNIQUE:
        return 16;
    case SYBINT1:
        return 1;
    case SYBINT2:
        return 2;
    case SYBINT4:
    case SYBREAL:
    case SYBMONEY4:
    case SYBDATETIME4:
        return 4;
    case SYBINT8:
    case SYBFLT8:
    case SYBMONEY:
    case SYBDATETIME:
        return 8;
    case SYBDATETIMN:
        return 4;
    case SYBDECIMAL:
    case SYBNUMERIC:
        return 3;
    case SYBMSDATE:
    case SYBMSTIME:
    case SYBMSDATETIME2:
    case SYBTIME:
    case SYBBIGTIME:
    case SYBMSDATETIMEOFFSET:
        return sizeof(DBDATETIMEALL);
    default:
        return 0;
    }
}

void appendMoney(KNRowStore &rows, const unsigned char *data)
{
    const quint64 amount = static_cast<quint64>(read<quint32>(data)) << 32 | read<quint32>(data + 4);
    const auto signedAmount = static_cast<qint64>(amount);
    const quint64 magnitude = signedAmount < 0 ? 0 - amount : amount;
    unsigned char bytes[8];
    for (int i = 0; i < 8; ++i)
        bytes[i] = static_cast<unsigned char>(magnitude >> (56 - 8 * i));
    rows.appendDecimal(bytes, sizeof bytes, signedAmount < 0, 4);
}

void appendDecimal(KNRowStore &rows, const unsigned char *data, int length)
{
    // precision, scale, then a sign byte and the magnitude in big-endian order
    static constexpr int bytesPerPrecision[] = {1,  2,  2,  3,  3,  4,  4,  4,  5,  5,  6,  6,  6,
                                                7,  7,  8,  8,  9,  9,  9,  10, 10, 11, 11, 11, 12,
                                                12, 13, 13, 14, 14, 14, 15, 15, 16, 16, 16, 17, 17};
    const int precision = std::min<int>(data[0], 38);
    const int used = std::min(bytesPerPrecision[precision], length - 2);
    if (used < 1)
        return rows.appendNull();
    rows.appendDecimal(data + 3, static_cast<std::size_t>(used - 1), data[2] != 0, data[1]);
}

void appendSmallDateTime(KNRowStore &rows, const unsigned char *data)
{
    KNDateTime date;
    date.ticks = read<quint16>(data) * TicksPerDay + read<quint16>(data + 2) * TicksPerMinute;
    date.fractionDigits = 0;
    rows.appendDate(date);
}

/// Whether it is a day from 0001-01-01 to 9999-12-31, counted from 1900-01-01.
bool isDay(qint32 day)
{
    return day >= -693595 && day <= 2958463;
}

void appendDateTime(KNRowStore &rows, const unsigned char *data)
{
    constexpr qint32 StepsPerDay = 24 * 60 * 60 * 300;
    const auto day = read<qint32>(data);
    const auto steps = read<qint32>(data + 4);
    if (!isDay(day) || steps < 0 || steps >= StepsPerDay)
        return rows.appendNull();
    // Days since 1900 and three-hundredths of a second, shown in milliseconds.
    const qint64 milliseconds = (qint64{steps} * 1000 + 150) / 300;
    KNDateTime date;
    date.ticks = day * TicksPerDay + milliseconds * TicksPerMillisecond;
    date.fractionDigits = 3;
    rows.appendDate(date);
}

/// Whether a record is in the range of the server's types (MS-TDS 2.2.5.4.2). A time of day that was rounded
/// up may be the end of the day.
bool isValid(const DBDATETIMEALL &record)
{
    constexpr int LargestOffset = 14 * 60;
    return (!record.has_date || isDay(record.date)) &&
           (!record.has_time || record.time <= static_cast<DBUBIGINT>(TicksPerDay)) &&
           (!record.has_offset || std::abs(record.offset) <= LargestOffset);
}

/// The instant and the digits of db-lib's record for the newer date types, which is in UTC.
KNDateTime dateOf(const DBDATETIMEALL &record)
{
    KNDateTime date;
    if (record.has_date)
        date.ticks += record.date * TicksPerDay;
    if (record.has_time)
        date.ticks += static_cast<qint64>(record.time);
    date.fractionDigits = static_cast<quint8>(record.time_prec);
    return date;
}

void appendDateRecord(KNRowStore &rows, const unsigned char *data)
{
    const auto record = read<DBDATETIMEALL>(data);
    if (!isValid(record))
        return rows.appendNull();
    KNDateTime date = dateOf(record);
    date.parts = !record.has_time   ? KNDateTime::Parts::Date
                 : !record.has_date ? KNDateTime::Parts::Time
                                    : KNDateTime::Parts::DateAndTime;
    rows.appendDate(date);
}

void appendDateTimeOffset(KNRowStore &rows, const unsigned char *data)
{
    const auto record = read<DBDATETIMEALL>(data);
    if (!isValid(record))
        return rows.appendNull();
    KNDateTime date = dateOf(record);
    date.offsetMinutes = record.has_offset ? static_cast<qint16>(record.offset) : qint16{0};
    rows.appendDate(date);
}

/// A byte order mark at the beginning belongs to the encoding of the document, which is UTF-8 here.
void appendXml(KNRowStore &rows, QByteArrayView document)
{
    constexpr QByteArrayView Mark("\xef\xbb\xbf");
    const QByteArrayView text = document.startsWith(Mark) ? document.sliced(Mark.size()) : document;
    rows.appendText(text.data(), static_cast<std::size_t>(text.size()));
}

void appendUnknown(KNRowStore &rows, const MSSQLColumn &column)
{
    const QByteArray text = KNFormat("Unknown type. %d. (Column %s)", column.type, column.name).toUtf8();
    rows.appendText(text.constData(), static_cast<std::size_t>(text.size()));
}

} // namespace

void appendColumnValue(KNRowStore &rows, const MSSQLColumn &column, const unsigned char *data, int length)
{
    if (!data || length < minimumLength(column.type))
        return rows.appendNull();
    const auto size = static_cast<std::size_t>(length);
    switch (column.type) {
    case SYBIMAGE:
    case SYBBINARY:
    case SYBMSUDT:
        return rows.appendBytes(data, size);
    case SYBTEXT:
    case SYBCHAR:
        return rows.appendText(data, size);
    case SYBMSXML:
        return appendXml(rows, {data, length});
    case SYBUNIQUE:
        return rows.appendGuid(data);
    case SYBINT1:
        return rows.appendInt32(data[0]);
    case SYBBIT:
        return rows.appendBool(firstWord(data, length) != 0);
    case SYBVARIANT:
        return rows.appendFlagBytes(data, size);
    case SYBINT2:
        return rows.appendInt32(read<qint16>(data));
    case SYBINT4:
        return rows.appendInt32(read<qint32>(data));
    case SYBINT8:
        return rows.appendInt64(read<qint64>(data));
    case SYBREAL:
        return rows.appendFloat(read<float>(data));
    case SYBFLT8:
        return rows.appendDouble(read<double>(data));
    case SYBMONEY:
        return appendMoney(rows, data);
    case SYBMONEY4:
        return rows.appendFloatMoney(read<qint32>(data));
    case SYBDECIMAL:
    case SYBNUMERIC:
        return appendDecimal(rows, data, length);
    case SYBDATETIME4:
        return appendSmallDateTime(rows, data);
    case SYBDATETIMN:
        if (length < 8)
            return appendSmallDateTime(rows, data);
        return appendDateTime(rows, data);
    case SYBDATETIME:
        return appendDateTime(rows, data);
    case SYBMSDATE:
    case SYBMSTIME:
    case SYBMSDATETIME2:
    case SYBTIME:
    case SYBBIGTIME:
        return appendDateRecord(rows, data);
    case SYBMSDATETIMEOFFSET:
        return appendDateTimeOffset(rows, data);
    default:
        return appendUnknown(rows, column);
    }
}
