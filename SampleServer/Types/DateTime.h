#pragma once

#include "Types/SqlType.h"
#include "Types/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace SampleServer {

constexpr std::int64_t TicksPerSecond = 10'000'000;
constexpr std::int64_t TicksPerDay = 86400 * TicksPerSecond;
constexpr std::int32_t Days1753 = 639905; ///< 1753-01-01, where datetime starts
constexpr std::int32_t Days1900 = 693595; ///< 1900-01-01, day 0 of datetime
constexpr std::int32_t DaysEnd = 3652059; ///< the day after 9999-12-31

/// A point in time split into its parts, as a calendar and a clock show them.
struct DateTimeParts
{
    int year = 1900, month = 1, day = 1;
    int hour = 0, minute = 0, second = 0;
    int ticks = 0; ///< 100 ns units within the second
};

/// Days since 0001-01-01 of a date of the Gregorian calendar; the parts must name a real date.
std::int32_t daysFromDate(int year, int month, int day);
bool isRealDate(int year, int month, int day);
int daysInMonth(int year, int month);
/// The parts of the local time, that is with the offset added.
DateTimeParts toParts(const DateTimeValue &value);
DateTimeValue fromParts(const DateTimeParts &parts);
/// The value with `ticks` 100 ns units added, normalised to a day and a time within it.
DateTimeValue plusTicks(const DateTimeValue &value, std::int64_t ticks);

/// The value as a column of the type stores it: rounded to its precision, without the parts it lacks.
/// `value` is local time (offset 0) unless the type is datetimeoffset. Empty when it is out of the type's
/// range.
std::optional<DateTimeValue> roundedTo(const SqlType &type, const DateTimeValue &value);

/// In which order a date of three numbers names month, day and year (SET DATEFORMAT).
enum class DateOrder { MonthDayYear, DayMonthYear, YearMonthDay, YearDayMonth, MonthYearDay, DayYearMonth };

/// A date, a time or both, read from text.
struct ParsedDateTime
{
    DateTimeValue value;     ///< local time; offsetMinutes says how far it is ahead of UTC
    bool outOfRange = false; ///< the form is right but there is no such date, "2023-02-30"
};

/// Reads the forms that conversion from text knows (ISO 8601, numeric with / - ., names of months, times with
/// AM/PM, offsets). A missing date is 1900-01-01, a missing time midnight. Empty when the text has no such
/// form.
std::optional<ParsedDateTime> parseDateTime(std::string_view text, DateOrder order);

/// The text of a date of the type in a style of CONVERT; 0 is the type's own default. Empty for an unknown
/// style.
std::optional<std::string> formatDateTime(const SqlType &type, const DateTimeValue &value, int style);

/// The time now on the server's clock: local (offset 0) or UTC.
DateTimeValue currentLocalTime();
DateTimeValue currentUtcTime();
/// How many minutes local time is ahead of UTC now.
int localOffsetMinutes();

/// "January" to "December" and "Monday" to "Sunday"; `month` from 1, `weekday` from 0 for Monday.
const char *monthName(int month);
const char *weekdayName(int weekday);

} // namespace SampleServer
