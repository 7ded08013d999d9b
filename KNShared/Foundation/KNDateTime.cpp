#include "Foundation/KNDateTime.h"

#include <QTimeZone>

#include <algorithm>
#include <limits>

namespace {

constexpr qint64 TicksPerMillisecond = KNDateTime::TicksPerSecond / 1000;
constexpr qint64 TicksPerDay = KNDateTime::TicksPerSecond * 24 * 60 * 60;
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

/// Rounds towards the past, so that times of day before 1900 stay positive.
qint64 flooredQuotient(qint64 dividend, qint64 divisor)
{
    return dividend / divisor - (dividend % divisor < 0 ? 1 : 0);
}

QString paddedNumber(qint64 number, int width)
{
    return QString::number(number).rightJustified(width, u'0');
}

QString dateText(qint64 day)
{
    const QDate date = baseDate().addDays(day);
    return paddedNumber(date.year(), 4) + u'-' + paddedNumber(date.month(), 2) + u'-' +
           paddedNumber(date.day(), 2);
}

QString timeText(qint64 ticksOfDay, int fractionDigits)
{
    const qint64 seconds = ticksOfDay / KNDateTime::TicksPerSecond;
    QString text = paddedNumber(seconds / 3600, 2) + u':' + paddedNumber(seconds / 60 % 60, 2) + u':' +
                   paddedNumber(seconds % 60, 2);
    if (fractionDigits > 0) {
        const QString fraction = paddedNumber(ticksOfDay % KNDateTime::TicksPerSecond, MaximumFractionDigits);
        text += u'.' + fraction.left(fractionDigits);
    }
    return text;
}

} // namespace

KNDateTime KNDateTime::fromQDateTime(const QDateTime &dateTime)
{
    constexpr qint64 Bound = std::numeric_limits<qint64>::max() / TicksPerMillisecond - 1;
    const qint64 base = baseMilliseconds();
    const qint64 milliseconds = dateTime.isValid() ? dateTime.toMSecsSinceEpoch() : base;
    // A QDateTime reaches further than the ticks do; what lies beyond becomes the nearest instant.
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
    const qint64 day = flooredQuotient(ticks, TicksPerDay);
    const qint64 ticksOfDay = ticks - day * TicksPerDay;
    switch (parts) {
    case Parts::Date:
        return dateText(day);
    case Parts::Time:
        return timeText(ticksOfDay, fractionDigits);
    case Parts::DateAndTime:
        break;
    }
    return dateText(day) + u' ' + timeText(ticksOfDay, fractionDigits);
}
