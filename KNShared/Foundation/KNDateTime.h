#pragma once

#include "KNSharedExport.h"

#include <QDateTime>

/// A date value as servers keep it: an instant in steps of 100 ns and what of it was declared (date, time,
/// digits), so that it can be shown as stored. As a date it is a QDateTime in UTC with milliseconds.
struct KNSHARED_EXPORT KNDateTime
{
    enum class Parts : quint8 { Date, Time, DateAndTime };

    static constexpr qint64 TicksPerSecond = 10'000'000;

    qint64 ticks = 0; ///< 100 ns steps since 1900-01-01 00:00:00 UTC, negative before
    Parts parts = Parts::DateAndTime;
    quint8 fractionDigits = 3; ///< digits after the second that the declaration keeps, 0 to 7

    /// With date, time and milliseconds; 1900-01-01 for an invalid one, the nearest instant for one out of
    /// reach.
    static KNDateTime fromQDateTime(const QDateTime &dateTime);
    QDateTime toQDateTime() const;
    /// "2020-01-02", "03:04:05.1234567" or "2020-01-02 03:04:05.123": the declared parts and digits, no
    /// locale.
    QString toString() const;

    friend bool operator==(const KNDateTime &left, const KNDateTime &right)
    {
        return left.ticks == right.ticks;
    }
};
