#include "Engine/Errors.h"
#include "Engine/Functions/Conversion.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <cmath>

namespace SampleServer {

namespace {

EngineError outOfRange(const SqlType &from, const SqlType &to)
{
    return {242, 16, 3,
            std::string("The conversion of a ") + baseTypeName(from.id) + " data type to a " +
                baseTypeName(to.id) + " data type resulted in an out-of-range value."};
}

EngineError badText(const SqlType &to)
{
    if (to.id == TypeId::SmallDateTime)
        return {295, 16, 3, "Conversion failed when converting character string to smalldatetime data type.",
                ErrorEffect::RollsBack};
    return {241, 16, 1, "Conversion failed when converting date and/or time from character string.",
            ErrorEffect::RollsBack};
}

/// The order of day, month and year when a style parses a date.
DateOrder orderOfStyle(int style, DateOrder otherwise)
{
    switch (style % 100) {
    case 1:
    case 10:
        return DateOrder::MonthDayYear;
    case 3:
    case 4:
    case 5:
        return DateOrder::DayMonthYear;
    case 2:
    case 11:
        return DateOrder::YearMonthDay;
    default:
        return otherwise;
    }
}

/// Converts local time with an offset to a UTC value.
DateTimeValue withOffset(const DateTimeValue &local, std::int16_t offsetMinutes)
{
    DateTimeValue value = plusTicks(local, -static_cast<std::int64_t>(offsetMinutes) * 60 * TicksPerSecond);
    value.offsetMinutes = offsetMinutes;
    return value;
}

DateTimeValue toLocal(const DateTimeValue &value)
{
    DateTimeValue local =
        plusTicks(value, static_cast<std::int64_t>(value.offsetMinutes) * 60 * TicksPerSecond);
    local.offsetMinutes = 0;
    return local;
}

/// If days precede months, datetime reads 2024-04-03 as the fourth of March; newer types do not, and a T
/// between date and time avoids it. Returns the text with both parts in ISO 8601 order.
std::string withMonthFirst(const std::string &text)
{
    const std::size_t first = text.find_first_not_of(' '), one = text.find_first_of("-/.", first);
    const std::size_t two = one == std::string::npos ? one : text.find_first_of("-/.", one + 1);
    if (two == std::string::npos || one - first != 4 || text.find('T', two) != std::string::npos)
        return text;
    const std::size_t end = std::min(text.find(' ', two), text.size());
    return text.substr(0, one + 1) + text.substr(two + 1, end - two - 1) + text[one] +
           text.substr(one + 1, two - one - 1) + text.substr(end);
}

DateTimeValue dateTimeFromText(const std::string &text, const SqlType &from, const SqlType &to,
                               const ConversionOptions &options)
{
    const DateOrder order = orderOfStyle(options.style, options.dateOrder);
    const bool daysFirst = order == DateOrder::DayMonthYear || order == DateOrder::YearDayMonth;
    const bool swaps = daysFirst && isLegacyDateTime(to.id);
    const auto parsed = parseDateTime(swaps ? withMonthFirst(text) : text, order);
    if (!parsed)
        throw badText(to);
    if (parsed->outOfRange) {
        if (isLegacyDateTime(to.id))
            throw outOfRange(from, to);
        throw badText(to);
    }
    DateTimeValue value = parsed->value;
    if (to.id == TypeId::DateTimeOffset) {
        const std::int16_t offset = value.offsetMinutes;
        value.offsetMinutes = 0;
        return withOffset(value, offset);
    }
    value.offsetMinutes = 0;
    return value;
}

/// The inverse of the binary forms that conversion to binary writes.
std::optional<DateTimeValue> dateTimeFromBytes(const Bytes &bytes, const SqlType &to)
{
    const auto bigEndian = [&bytes](std::size_t fromEnd, std::size_t count) {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < count; ++i)
            value = value << 8 | (bytes.size() + i >= fromEnd ? bytes[bytes.size() - fromEnd + i] : 0);
        return value;
    };
    const auto littleEndian = [&bytes](std::size_t at, std::size_t count) {
        std::uint64_t value = 0;
        for (std::size_t i = count; i > 0; --i)
            value = value << 8 | (at + i - 1 < bytes.size() ? bytes[at + i - 1] : 0);
        return value;
    };
    DateTimeValue value{Days1900, 0, 0};
    switch (to.id) {
    case TypeId::DateTime:
        value.days += static_cast<std::int32_t>(bigEndian(8, 4));
        value.ticks = (static_cast<std::int64_t>(bigEndian(4, 4)) * 100'000 + 1) / 3;
        break;
    case TypeId::SmallDateTime:
        value.days += static_cast<std::int32_t>(bigEndian(4, 2));
        value.ticks = static_cast<std::int64_t>(bigEndian(2, 2)) * 60 * TicksPerSecond;
        break;
    case TypeId::Date:
        value.days = static_cast<std::int32_t>(littleEndian(0, 3));
        break;
    default: {
        if (bytes.empty() || bytes[0] > 7)
            return {};
        const std::size_t size = bytes[0] <= 2 ? 3 : bytes[0] <= 4 ? 4 : 5;
        value.ticks = static_cast<std::int64_t>(littleEndian(1, size));
        for (int scale = bytes[0]; scale < 7; ++scale)
            value.ticks *= 10;
        if (to.id != TypeId::Time)
            value.days = static_cast<std::int32_t>(littleEndian(1 + size, 3));
        if (to.id == TypeId::DateTimeOffset)
            value.offsetMinutes = static_cast<std::int16_t>(littleEndian(4 + size, 2));
    }
    }
    if (value.ticks < 0 || value.ticks >= TicksPerDay || value.days < 0 || value.days >= DaysEnd)
        return {};
    return value;
}

} // namespace

double toDayNumber(const DateTimeValue &value)
{
    return static_cast<double>(value.days - Days1900) +
           static_cast<double>(value.ticks) / static_cast<double>(TicksPerDay);
}

DateTimeValue fromDayNumber(double days)
{
    const double whole = std::floor(days);
    const auto ticks = static_cast<std::int64_t>(std::llround((days - whole) * 86400.0 * 300.0));
    return plusTicks({Days1900 + static_cast<std::int32_t>(whole), 0, 0}, (ticks * 100'000 + 1) / 3);
}

Value convertToDateTime(const Value &value, const SqlType &from, const SqlType &to,
                        const ConversionOptions &options)
{
    std::optional<DateTimeValue> source;
    if (const auto *text = std::get_if<std::string>(&value)) {
        source = dateTimeFromText(*text, from, to, options);
    } else if (const auto *bytes = std::get_if<Bytes>(&value)) {
        source = dateTimeFromBytes(*bytes, to);
        if (!source)
            throw badText(to);
    } else if (const auto *time = std::get_if<DateTimeValue>(&value)) {
        if (to.id == TypeId::DateTimeOffset)
            source = from.id == TypeId::DateTimeOffset ? *time : withOffset(*time, 0);
        else
            source = from.id == TypeId::DateTimeOffset ? toLocal(*time) : *time;
    } else {
        const double days = std::get<double>(convertToFloat(value, from, {TypeId::Float, 0, 0, 0}));
        if (days < Days1753 - Days1900 || days >= DaysEnd - Days1900)
            throw Errors::overflow(isInteger(from.id) ? "expression" : messageTypeName(from.id),
                                   baseTypeName(to.id), 2);
        source = fromDayNumber(days);
    }
    if (const auto rounded = roundedTo(to, *source))
        return *rounded;
    throw outOfRange(from, to);
}

} // namespace SampleServer
