#pragma once

#include "KNSharedExport.h"

#include <QDateTime>

#include <limits>

/// A date value as servers store it: a point in time in steps of 100 ns and its declared parts (date, time,
/// digits, offset), so that it can be displayed as stored. Converts to a QDateTime in UTC with milliseconds.
struct KNSHARED_EXPORT KNDateTime
{
    enum class Parts : quint8 { Date, Time, DateAndTime };

    static constexpr qint64 TicksPerSecond = 10'000'000;
    static constexpr qint64 TicksPerMinute = 60 * TicksPerSecond;
    static constexpr qint64 TicksPerDay = 24 * 60 * TicksPerMinute;
    static constexpr qint16 NoOffset = std::numeric_limits<qint16>::min();
    static constexpr int LongestText = 48; ///< size in bytes of the buffer for write()

    /// 100 ns steps since 1900-01-01 00:00:00 UTC, negative before. A time of day is 0 up to and including
    /// TicksPerDay, which is 24:00:00.
    qint64 ticks = 0;
    Parts parts = Parts::DateAndTime;
    quint8 fractionDigits = 3;       ///< declared digits after the decimal point of seconds, 0 to 7
    qint16 offsetMinutes = NoOffset; ///< local time minus UTC; the text shows local time with its offset

    /// Converts date, time and milliseconds; 1900-01-01 for an invalid value, the nearest representable time
    /// for one out of range.
    static KNDateTime fromQDateTime(const QDateTime &dateTime);
    QDateTime toQDateTime() const;
    /// "2020-01-02", "03:04:05.1234567", "2020-01-02 03:04:05.123" or "2020-01-02 05:04:05.1234567 +02:00":
    /// the declared parts and digits, independent of the locale.
    QString toString() const;
    /// Writes the same text in ASCII, without a NUL, to a buffer of LongestText bytes. Returns the end of the
    /// text.
    char *write(char *to) const;

    friend bool operator==(const KNDateTime &left, const KNDateTime &right)
    {
        return left.ticks == right.ticks;
    }
};
