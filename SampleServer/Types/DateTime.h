#pragma once

#include "Types/SqlType.h"
#include "Types/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace SampleServer {

constexpr std::int64_t TicksPerSecond = 10'000'000;
constexpr std::int64_t TicksPerDay = 86400 * TicksPerSecond;
constexpr std::int32_t Days1753 = 639905; ///< 1753-01-01, the minimum of datetime
constexpr std::int32_t Days1900 = 693595; ///< 1900-01-01, day 0 of datetime
constexpr std::int32_t DaysEnd = 3652059; ///< the day after 9999-12-31

/// The calendar and clock parts of a point in time.
struct DateTimeParts
{
    int year = 1900, month = 1, day = 1;
    int hour = 0, minute = 0, second = 0;
    int ticks = 0; ///< 100 ns units within the second
};

/// Days since 0001-01-01 of a Gregorian date; the parts must form a valid date.
std::int32_t daysFromDate(int year, int month, int day);
bool isRealDate(int year, int month, int day);
int daysInMonth(int year, int month);
/// Returns the parts of the local time, with the offset added.
DateTimeParts toParts(const DateTimeValue &value);
DateTimeValue fromParts(const DateTimeParts &parts);
/// Adds `ticks` units of 100 ns and normalises the result to a day and a time within it.
DateTimeValue plusTicks(const DateTimeValue &value, std::int64_t ticks);

/// Returns the value as a column of the type stores it: rounded to its precision, without missing parts.
/// `value` is local time (offset 0) unless the type is datetimeoffset. Empty if it is out of the type's
/// range.
std::optional<DateTimeValue> roundedTo(const SqlType &type, const DateTimeValue &value);

/// The order of month, day and year in a date of three numbers (SET DATEFORMAT).
enum class DateOrder { MonthDayYear, DayMonthYear, YearMonthDay, YearDayMonth, MonthYearDay, DayYearMonth };

/// A date, a time or both, parsed from text.
struct ParsedDateTime
{
    DateTimeValue value;     ///< local time; offsetMinutes is its offset from UTC
    bool outOfRange = false; ///< the format is valid but the date does not exist, "2023-02-30"
};

/// Parses the formats allowed for conversion from text (ISO 8601, numeric with / - ., month names, times with
/// AM/PM, offsets). A missing date is 1900-01-01, a missing time midnight. Empty if the text has none of
/// these formats.
std::optional<ParsedDateTime> parseDateTime(std::string_view text, DateOrder order);

/// Formats a date of the type in a style of CONVERT; 0 is the type's default. Empty for an unknown style.
std::optional<std::string> formatDateTime(const SqlType &type, const DateTimeValue &value, int style);

/// The current time of the server's clock: local (offset 0) or UTC.
DateTimeValue currentLocalTime();
DateTimeValue currentUtcTime();
/// The current offset of local time from UTC, in minutes.
int localOffsetMinutes();

/// "January" to "December" and "Monday" to "Sunday"; `month` from 1, `weekday` from 0 for Monday.
const char *monthName(int month);
const char *weekdayName(int weekday);

} // namespace SampleServer
