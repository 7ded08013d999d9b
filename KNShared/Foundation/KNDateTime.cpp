#include "Foundation/KNDateTime.h"

#include <QTimeZone>

#include <algorithm>
#include <limits>

namespace {

constexpr qint64 TicksPerMillisecond = KNDateTime::TicksPerSecond / 1000;
constexpr int MaximumFractionDigits = 7;

const QDate &baseDate()
{
    static const QDate date(1900, 1, 1);
    return date;
}

qint64 baseMilliseconds()
{
    static const qint64 milliseconds = QDateTime(baseDate(), QTime(0, 0), Qt::UTC).toMSecsSinceEpoch();
    return milliseconds;
}

/// Rounds down, so that times of day before 1900 stay positive.
qint64 flooredQuotient(qint64 dividend, qint64 divisor)
{
    return dividend / divisor - (dividend % divisor < 0 ? 1 : 0);
}

/// Writes a non-negative number with at least `width` digits.
char *writePadded(char *to, qint64 number, int width)
{
    char digits[20];
    int count = 0;
    for (; number > 0 || count < width; number /= 10)
        digits[count++] = static_cast<char>('0' + number % 10);
    while (count > 0)
        *to++ = digits[--count];
    return to;
}

char *writeDate(char *to, qint64 day)
{
    int year = 0;
    int month = 0;
    int dayOfMonth = 0;
    baseDate().addDays(day).getDate(&year, &month, &dayOfMonth);
    if (year < 0)
        *to++ = '-';
    to = writePadded(to, std::abs(year), 4);
    *to++ = '-';
    to = writePadded(to, month, 2);
    *to++ = '-';
    return writePadded(to, dayOfMonth, 2);
}

char *writeTime(char *to, qint64 ticksOfDay, int fractionDigits)
{
    const qint64 seconds = ticksOfDay / KNDateTime::TicksPerSecond;
    to = writePadded(to, seconds / 3600, 2);
    *to++ = ':';
    to = writePadded(to, seconds / 60 % 60, 2);
    *to++ = ':';
    to = writePadded(to, seconds % 60, 2);
    if (fractionDigits <= 0)
        return to;
    *to++ = '.';
    writePadded(to, ticksOfDay % KNDateTime::TicksPerSecond, MaximumFractionDigits);
    return to + std::min(fractionDigits, MaximumFractionDigits);
}

char *writeOffset(char *to, int minutes)
{
    *to++ = ' ';
    *to++ = minutes < 0 ? '-' : '+';
    to = writePadded(to, std::abs(minutes) / 60, 2);
    *to++ = ':';
    return writePadded(to, std::abs(minutes) % 60, 2);
}

} // namespace

KNDateTime KNDateTime::fromQDateTime(const QDateTime &dateTime)
{
    constexpr qint64 Bound = std::numeric_limits<qint64>::max() / TicksPerMillisecond - 1;
    const qint64 base = baseMilliseconds();
    const qint64 milliseconds = dateTime.isValid() ? dateTime.toMSecsSinceEpoch() : base;
    // A QDateTime has a larger range than the ticks; values out of range become the nearest representable
    // time.
    const qint64 sinceBase = milliseconds > Bound + base ? Bound : std::max(milliseconds, -Bound) - base;
    return {.ticks = std::clamp(sinceBase, -Bound, Bound) * TicksPerMillisecond};
}

QDateTime KNDateTime::toQDateTime() const
{
    return QDateTime::fromMSecsSinceEpoch(baseMilliseconds() + flooredQuotient(ticks, TicksPerMillisecond),
                                          Qt::UTC);
}

QString KNDateTime::toString() const
{
    char text[LongestText];
    return QString::fromLatin1(text, write(text) - text);
}

char *KNDateTime::write(char *to) const
{
    const bool hasOffset = offsetMinutes != NoOffset;
    const qint64 local = ticks + (hasOffset ? offsetMinutes * TicksPerMinute : 0);
    // Servers that round up a time of day send the end of the day, which is not the beginning of the next
    // one.
    if (parts == Parts::Time && local == TicksPerDay)
        return writeTime(to, local, fractionDigits);
    const qint64 day = flooredQuotient(local, TicksPerDay);
    const qint64 ticksOfDay = local - day * TicksPerDay;
    if (parts == Parts::Time)
        return writeTime(to, ticksOfDay, fractionDigits);
    to = writeDate(to, day);
    if (parts == Parts::Date)
        return to;
    *to++ = ' ';
    to = writeTime(to, ticksOfDay, fractionDigits);
    return hasOffset ? writeOffset(to, offsetMinutes) : to;
}
