#include "Types/DateTime.h"

#include <cstdio>

namespace SampleServer {

namespace {

std::string print(const char *format, auto... arguments)
{
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, format, arguments...);
    return buffer;
}

/// The decimal point and `digits` digits of the fraction; nothing for no digits.
std::string fraction(const DateTimeParts &parts, int digits)
{
    return digits == 0 ? std::string()
                       : '.' + print("%07d", parts.ticks).substr(0, static_cast<std::size_t>(digits));
}

std::string offsetText(int minutes)
{
    const int size = minutes < 0 ? -minutes : minutes;
    return print("%c%02d:%02d", minutes < 0 ? '-' : '+', size / 60, size % 60);
}

int hour12(int hour)
{
    return hour % 12 == 0 ? 12 : hour % 12;
}

const char *amPm(int hour)
{
    return hour < 12 ? "AM" : "PM";
}

std::string shortMonth(int month)
{
    return std::string(monthName(month)).substr(0, 3);
}

std::string withYear(const std::string &start, int year, bool century, const char *separator)
{
    return start + separator + (century ? print("%04d", year) : print("%02d", year % 100));
}

/// The date part of a style, empty if the style has no date; nothing for an unknown style.
std::optional<std::string> datePart(const DateTimeParts &p, int style)
{
    const bool century = style >= 100 || style == 0 || style == 9 || style == 13 ||
                         (style >= 20 && style <= 25 && style != 22);
    const std::string year = century ? print("%04d", p.year) : print("%02d", p.year % 100);
    switch (style % 100) {
    case 0:
    case 9:
        return shortMonth(p.month) + print(" %2d ", p.day) + print("%04d", p.year);
    case 1:
    case 22:
        return withYear(print("%02d/%02d", p.month, p.day), p.year, century, "/");
    case 2:
        return year + print(".%02d.%02d", p.month, p.day);
    case 3:
        return withYear(print("%02d/%02d", p.day, p.month), p.year, century, "/");
    case 4:
        return withYear(print("%02d.%02d", p.day, p.month), p.year, century, ".");
    case 5:
        return withYear(print("%02d-%02d", p.day, p.month), p.year, century, "-");
    case 6:
        return withYear(print("%02d ", p.day) + shortMonth(p.month), p.year, century, " ");
    case 7:
        return shortMonth(p.month) + print(" %02d, ", p.day) + year;
    case 8:
    case 14:
    case 24:
        return std::string();
    case 10:
        return withYear(print("%02d-%02d", p.month, p.day), p.year, century, "-");
    case 11:
        return year + print("/%02d/%02d", p.month, p.day);
    case 12:
        return year + print("%02d%02d", p.month, p.day);
    case 13:
        return print("%02d ", p.day) + shortMonth(p.month) + print(" %04d", p.year);
    case 20:
    case 21:
    case 23:
    case 25:
    case 26:
    case 27:
        return print("%04d-%02d-%02d", p.year, p.month, p.day);
    default:
        return {};
    }
}

/// The time part of a style, empty if the style has no time.
std::string timePart(const DateTimeParts &p, int style, int digits, bool isIsoT)
{
    const std::string clock = print("%02d:%02d:%02d", p.hour, p.minute, p.second);
    switch (style % 100) {
    case 0:
        return print("%2d:%02d%s", hour12(p.hour), p.minute, amPm(p.hour));
    case 9: {
        std::string part = fraction(p, digits);
        if (digits == 3 && !part.empty())
            part[0] = ':';
        return print("%2d:%02d:%02d", hour12(p.hour), p.minute, p.second) + part + amPm(p.hour);
    }
    case 22:
        return print("%2d:%02d:%02d %s", hour12(p.hour), p.minute, p.second, amPm(p.hour));
    case 8:
    case 20:
    case 24:
        return clock;
    case 13:
    case 14: {
        std::string part = fraction(p, digits);
        if (digits == 3 && !part.empty())
            part[0] = ':';
        return clock + part;
    }
    case 21:
    case 25:
        return clock + fraction(p, digits);
    case 26:
    case 27:
        return clock + (isIsoT && p.ticks == 0 && digits == 3 ? std::string() : fraction(p, digits));
    default:
        return {};
    }
}

/// datetime counts 1/300 s but shows milliseconds: rounded, not truncated.
DateTimeParts displayParts(const SqlType &type, const DateTimeValue &value)
{
    DateTimeParts parts = toParts(value);
    if (type.id == TypeId::DateTime)
        parts.ticks = (parts.ticks + 5'000) / 10'000 * 10'000;
    return parts;
}

} // namespace

std::optional<std::string> formatDateTime(const SqlType &type, const DateTimeValue &value, int style)
{
    const bool legacy = type.id == TypeId::DateTime || type.id == TypeId::SmallDateTime;
    const bool hasDate = type.id != TypeId::Time;
    const bool hasTime = type.id != TypeId::Date;
    if (style == 0 && !legacy)
        style = 121;
    const DateTimeParts parts = displayParts(type, value);
    const int digits = legacy ? 3 : type.scale;
    const bool isIsoT = style == 126 || style == 127;
    auto date = datePart(parts, style);
    if (!date || style < 0 || (style > 27 && style < 100) || style > 127 || (style >= 26 && style <= 27))
        return {};
    std::string text = hasDate ? *date : std::string();
    if (hasTime) {
        const std::string time = timePart(parts, style, digits, isIsoT);
        if (!text.empty() && !time.empty())
            text += isIsoT ? "T" : " ";
        text += time;
        if (!time.empty() && type.id == TypeId::DateTimeOffset)
            text += isIsoT ? offsetText(value.offsetMinutes) : ' ' + offsetText(value.offsetMinutes);
    }
    if (text.empty()) // a time style for a date, or a date style for a time
        return {};
    return text;
}

} // namespace SampleServer
