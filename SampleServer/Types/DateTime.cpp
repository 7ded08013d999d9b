#include "Types/DateTime.h"

#include <ctime>

namespace SampleServer {

namespace {

constexpr int TicksPerMinute = 60 * static_cast<int>(TicksPerSecond);

bool isLeapYear(int year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

std::int64_t ticksPerUnit(int scale)
{
    std::int64_t ticks = 1;
    for (; scale < 7; ++scale)
        ticks *= 10;
    return ticks;
}

DateTimeValue now(bool local)
{
    timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    tm parts{};
    if (local)
        localtime_r(&time.tv_sec, &parts);
    else
        gmtime_r(&time.tv_sec, &parts);
    return fromParts({parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min,
                      std::min(parts.tm_sec, 59), static_cast<int>(time.tv_nsec / 100)});
}

} // namespace

int daysInMonth(int year, int month)
{
    static constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeapYear(year) ? 29 : days[month - 1];
}

bool isRealDate(int year, int month, int day)
{
    return year >= 1 && year <= 9999 && month >= 1 && month <= 12 && day >= 1 &&
           day <= daysInMonth(year, month);
}

std::int32_t daysFromDate(int year, int month, int day)
{
    const int y = year - 1;
    std::int32_t days = 365 * y + y / 4 - y / 100 + y / 400;
    for (int m = 1; m < month; ++m)
        days += daysInMonth(year, m);
    return days + day - 1;
}

DateTimeValue plusTicks(const DateTimeValue &value, std::int64_t ticks)
{
    DateTimeValue result = value;
    result.ticks += ticks % TicksPerDay;
    result.days += static_cast<std::int32_t>(ticks / TicksPerDay);
    if (result.ticks < 0) {
        result.ticks += TicksPerDay;
        --result.days;
    } else if (result.ticks >= TicksPerDay) {
        result.ticks -= TicksPerDay;
        ++result.days;
    }
    return result;
}

DateTimeParts toParts(const DateTimeValue &value)
{
    const DateTimeValue local =
        plusTicks(value, static_cast<std::int64_t>(value.offsetMinutes) * TicksPerMinute);
    DateTimeParts parts;
    // The average year is slightly longer than 365.2425 / 366 days, so the first estimate is never too late.
    parts.year = std::max(1, local.days / 366);
    while (parts.year < 9999 && daysFromDate(parts.year + 1, 1, 1) <= local.days)
        ++parts.year;
    std::int32_t rest = local.days - daysFromDate(parts.year, 1, 1);
    parts.month = 1;
    while (parts.month < 12 && rest >= daysInMonth(parts.year, parts.month))
        rest -= daysInMonth(parts.year, parts.month++);
    parts.day = rest + 1;
    const std::int64_t seconds = local.ticks / TicksPerSecond;
    parts.hour = static_cast<int>(seconds / 3600);
    parts.minute = static_cast<int>(seconds / 60 % 60);
    parts.second = static_cast<int>(seconds % 60);
    parts.ticks = static_cast<int>(local.ticks % TicksPerSecond);
    return parts;
}

DateTimeValue fromParts(const DateTimeParts &parts)
{
    const std::int64_t seconds = (parts.hour * 60LL + parts.minute) * 60 + parts.second;
    return {daysFromDate(parts.year, parts.month, parts.day), seconds * TicksPerSecond + parts.ticks, 0};
}

std::optional<DateTimeValue> roundedTo(const SqlType &type, const DateTimeValue &value)
{
    DateTimeValue result = value;
    std::int32_t first = 0, end = DaysEnd;
    switch (type.id) {
    case TypeId::Date:
        result.ticks = 0;
        break;
    case TypeId::Time:
    case TypeId::DateTime2:
    case TypeId::DateTimeOffset: {
        const std::int64_t unit = ticksPerUnit(type.scale);
        result = plusTicks(result, (value.ticks + unit / 2) / unit * unit - value.ticks);
        if (type.id == TypeId::Time)
            result.days = Days1900;
        break;
    }
    case TypeId::DateTime: {
        // Ticks of 1/300 s, kept in 100 ns units.
        const std::int64_t units = (value.ticks * 3 + 50'000) / 100'000;
        result.ticks = 0;
        result = plusTicks(result, (units * 100'000 + 1) / 3);
        first = Days1753;
        break;
    }
    case TypeId::SmallDateTime: {
        // 29.998 s and less round down, 29.999 s and more round up.
        const std::int64_t minutes = (value.ticks + TicksPerMinute - 299'990'000) / TicksPerMinute;
        result.ticks = 0;
        result = plusTicks(result, minutes * TicksPerMinute);
        first = Days1900;
        end = Days1900 + 65536;
        break;
    }
    default:
        break;
    }
    if (type.id != TypeId::DateTimeOffset)
        result.offsetMinutes = 0;
    if (result.days < first || result.days >= end)
        return {};
    return result;
}

DateTimeValue currentLocalTime()
{
    return now(true);
}

DateTimeValue currentUtcTime()
{
    return now(false);
}

int localOffsetMinutes()
{
    const time_t time = std::time(nullptr);
    tm parts{};
    localtime_r(&time, &parts);
    return static_cast<int>(parts.tm_gmtoff / 60);
}

const char *monthName(int month)
{
    static constexpr const char *names[] = {"January",   "February", "March",    "April",
                                            "May",       "June",     "July",     "August",
                                            "September", "October",  "November", "December"};
    return names[month - 1];
}

const char *weekdayName(int weekday)
{
    static constexpr const char *names[] = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                            "Friday", "Saturday", "Sunday"};
    return names[weekday];
}

} // namespace SampleServer
