#include "Engine/Bind/Binder.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Conversion.h"
#include "Engine/Functions/FunctionTable.h"
#include "Engine/Functions/Functions.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <algorithm>

namespace SampleServer::Functions {

using namespace Bound;

namespace {

enum class DatePart {
    Year,
    Quarter,
    Month,
    DayOfYear,
    Day,
    Week,
    Weekday,
    Hour,
    Minute,
    Second,
    Millisecond,
    Microsecond,
    Nanosecond,
    OffsetMinutes,
    IsoWeek,
};

struct DatePartName
{
    std::string_view name;
    DatePart part;
};

constexpr DatePartName partNames[] = {
    {"YEAR", DatePart::Year},
    {"YY", DatePart::Year},
    {"YYYY", DatePart::Year},
    {"QUARTER", DatePart::Quarter},
    {"QQ", DatePart::Quarter},
    {"Q", DatePart::Quarter},
    {"MONTH", DatePart::Month},
    {"MM", DatePart::Month},
    {"M", DatePart::Month},
    {"DAYOFYEAR", DatePart::DayOfYear},
    {"DY", DatePart::DayOfYear},
    {"Y", DatePart::DayOfYear},
    {"DAY", DatePart::Day},
    {"DD", DatePart::Day},
    {"D", DatePart::Day},
    {"WEEK", DatePart::Week},
    {"WK", DatePart::Week},
    {"WW", DatePart::Week},
    {"WEEKDAY", DatePart::Weekday},
    {"DW", DatePart::Weekday},
    {"W", DatePart::Weekday},
    {"HOUR", DatePart::Hour},
    {"HH", DatePart::Hour},
    {"MINUTE", DatePart::Minute},
    {"MI", DatePart::Minute},
    {"N", DatePart::Minute},
    {"SECOND", DatePart::Second},
    {"SS", DatePart::Second},
    {"S", DatePart::Second},
    {"MILLISECOND", DatePart::Millisecond},
    {"MS", DatePart::Millisecond},
    {"MICROSECOND", DatePart::Microsecond},
    {"MCS", DatePart::Microsecond},
    {"NANOSECOND", DatePart::Nanosecond},
    {"NS", DatePart::Nanosecond},
    {"TZOFFSET", DatePart::OffsetMinutes},
    {"TZ", DatePart::OffsetMinutes},
    {"ISO_WEEK", DatePart::IsoWeek},
    {"ISOWK", DatePart::IsoWeek},
    {"ISOWW", DatePart::IsoWeek},
};

constexpr std::int64_t ticksOf(DatePart part)
{
    switch (part) {
    case DatePart::Hour:
        return 3600 * TicksPerSecond;
    case DatePart::Minute:
        return 60 * TicksPerSecond;
    case DatePart::Second:
        return TicksPerSecond;
    case DatePart::Millisecond:
        return 10'000;
    case DatePart::Microsecond:
        return 10;
    default:
        return 0;
    }
}

const DateTimeValue &time(const Value &value)
{
    return std::get<DateTimeValue>(value);
}

/// 0 for Monday to 6 for Sunday; 0001-01-01 was a Monday.
int weekday(std::int32_t days)
{
    return static_cast<int>(days % 7);
}

int isoWeek(const DateTimeParts &parts, std::int32_t days)
{
    // A week belongs to the year of its Thursday.
    const DateTimeParts thursday = toParts({days - weekday(days) + 3, 0, 0});
    (void)parts;
    return (days - weekday(days) + 3 - daysFromDate(thursday.year, 1, 1)) / 7 + 1;
}

std::int64_t partOf(const DateTimeValue &value, DatePart part, int firstWeekday)
{
    const DateTimeParts p = toParts(value);
    const std::int32_t days = daysFromDate(p.year, p.month, p.day);
    switch (part) {
    case DatePart::Year:
        return p.year;
    case DatePart::Quarter:
        return (p.month - 1) / 3 + 1;
    case DatePart::Month:
        return p.month;
    case DatePart::DayOfYear:
        return days - daysFromDate(p.year, 1, 1) + 1;
    case DatePart::Day:
        return p.day;
    case DatePart::Week: {
        const std::int32_t first = daysFromDate(p.year, 1, 1);
        const int shift = (weekday(first) - (firstWeekday - 1) + 7) % 7;
        return (days - first + shift) / 7 + 1;
    }
    case DatePart::Weekday:
        return (weekday(days) - (firstWeekday - 1) + 7) % 7 + 1;
    case DatePart::Hour:
        return p.hour;
    case DatePart::Minute:
        return p.minute;
    case DatePart::Second:
        return p.second;
    case DatePart::Millisecond:
        return (p.ticks + 5) / 10'000 % 1000;
    case DatePart::Microsecond:
        return p.ticks / 10;
    case DatePart::Nanosecond:
        return std::int64_t{p.ticks} * 100;
    case DatePart::OffsetMinutes:
        return value.offsetMinutes;
    case DatePart::IsoWeek:
        return isoWeek(p, days);
    }
    return 0;
}

EngineError dateOverflow(const SqlType &type)
{
    return {517, 16, 1,
            std::string("Adding a value to a '") + baseTypeName(type.id) + "' column caused an overflow."};
}

DateTimeValue plusMonths(const DateTimeValue &value, std::int64_t months, const SqlType &type)
{
    DateTimeParts parts = toParts({value.days, value.ticks, 0});
    const std::int64_t total = parts.year * 12LL + parts.month - 1 + months;
    if (total < 12 || total >= 10'000 * 12LL)
        throw dateOverflow(type);
    parts.year = static_cast<int>(total / 12);
    parts.month = static_cast<int>(total % 12) + 1;
    parts.day = std::min(parts.day, daysInMonth(parts.year, parts.month));
    DateTimeValue result = fromParts(parts);
    result.offsetMinutes = value.offsetMinutes;
    return result;
}

Value dateAdd(EvaluationContext &, const Operation &operation, Arguments a)
{
    const std::int64_t count = std::get<std::int64_t>(a[0]);
    DateTimeValue result = time(a[1]);
    const auto part = static_cast<DatePart>(operation.selector);
    switch (part) {
    case DatePart::Year:
        result = plusMonths(result, count * 12, operation.result);
        break;
    case DatePart::Quarter:
        result = plusMonths(result, count * 3, operation.result);
        break;
    case DatePart::Month:
        result = plusMonths(result, count, operation.result);
        break;
    case DatePart::Week:
    case DatePart::DayOfYear:
    case DatePart::Day:
    case DatePart::Weekday: {
        const std::int64_t days = result.days + count * (part == DatePart::Week ? 7 : 1);
        if (days < 0 || days >= DaysEnd)
            throw dateOverflow(operation.result);
        result.days = static_cast<std::int32_t>(days);
        break;
    }
    case DatePart::Nanosecond:
        result = plusTicks(result, count / 100);
        break;
    default:
        result = plusTicks(result, count * ticksOf(part));
    }
    const auto rounded = roundedTo(operation.result, result);
    if (!rounded)
        throw dateOverflow(operation.result);
    return *rounded;
}

/// The number of boundaries of the date part between the two values.
std::int64_t borders(DatePart part, const DateTimeValue &from, const DateTimeValue &to)
{
    // Offsets are ignored: the UTC times are compared.
    const DateTimeParts a = toParts({from.days, from.ticks, 0}), b = toParts({to.days, to.ticks, 0});
    const std::int64_t firstDay = daysFromDate(a.year, a.month, a.day),
                       lastDay = daysFromDate(b.year, b.month, b.day);
    switch (part) {
    case DatePart::Year:
        return b.year - a.year;
    case DatePart::Quarter:
        return (b.year - a.year) * 4 + (b.month - 1) / 3 - (a.month - 1) / 3;
    case DatePart::Month:
        return (b.year - a.year) * 12 + b.month - a.month;
    case DatePart::Week:
        return (lastDay + 1) / 7 - (firstDay + 1) / 7; // weeks start on Sunday
    case DatePart::Day:
    case DatePart::DayOfYear:
    case DatePart::Weekday:
        return lastDay - firstDay;
    case DatePart::Nanosecond:
        return ((to.days - from.days) * TicksPerDay + to.ticks - from.ticks) * 100;
    default: {
        const std::int64_t unit = ticksOf(part), perDay = TicksPerDay / unit;
        return (to.days - from.days) * perDay + to.ticks / unit - from.ticks / unit;
    }
    }
}

Value dateDifference(EvaluationContext &, const Operation &operation, Arguments a)
{
    const auto part = static_cast<DatePart>(operation.selector);
    const std::int64_t count = borders(part, time(a[0]), time(a[1]));
    if (operation.result.id == TypeId::Int && (count > 2147483647 || count < -2147483648LL))
        throw EngineError(
            535, 16, 0,
            "The datediff function resulted in an overflow. The number of dateparts separating two "
            "date/time instances is too large. Try to use datediff with a less precise datepart.");
    return count;
}

Value datePart(EvaluationContext &context, const Operation &operation, Arguments a)
{
    return partOf(time(a[0]), static_cast<DatePart>(operation.selector), context.firstWeekday);
}

Value dateName(EvaluationContext &context, const Operation &operation, Arguments a)
{
    const auto part = static_cast<DatePart>(operation.selector);
    const DateTimeParts parts = toParts(time(a[0]));
    if (part == DatePart::Month)
        return std::string(monthName(parts.month));
    if (part == DatePart::Weekday)
        return std::string(weekdayName(weekday(daysFromDate(parts.year, parts.month, parts.day))));
    const std::int64_t number = partOf(time(a[0]), part, context.firstWeekday);
    if (part != DatePart::OffsetMinutes)
        return std::to_string(number);
    char text[16];
    const auto minutes = static_cast<int>(std::abs(number));
    std::snprintf(text, sizeof text, "%c%02d:%02d", number < 0 ? '-' : '+', minutes / 60, minutes % 60);
    return std::string(text);
}

template <DatePart part>
Value partFunction(EvaluationContext &context, const Operation &, Arguments a)
{
    return partOf(time(a[0]), part, context.firstWeekday);
}

Value localTime(EvaluationContext &context, const Operation &operation, Arguments)
{
    return *roundedTo(operation.result, context.statementTime);
}

Value utcTime(EvaluationContext &context, const Operation &operation, Arguments)
{
    return *roundedTo(operation.result, context.statementTimeUtc);
}

Value offsetTime(EvaluationContext &context, const Operation &, Arguments)
{
    DateTimeValue value = context.statementTimeUtc;
    value.offsetMinutes = static_cast<std::int16_t>(localOffsetMinutes());
    return value;
}

Value endOfMonth(EvaluationContext &, const Operation &operation, Arguments a)
{
    const std::int64_t months = a.size() > 1 ? std::get<std::int64_t>(a[1]) : 0;
    DateTimeParts parts = toParts(plusMonths(time(a[0]), months, operation.result));
    return DateTimeValue{daysFromDate(parts.year, parts.month, daysInMonth(parts.year, parts.month)), 0, 0};
}

Value dateFromParts(EvaluationContext &, const Operation &, Arguments a)
{
    const auto part = [&a](std::size_t i) {
        return static_cast<int>(std::clamp<std::int64_t>(std::get<std::int64_t>(a[i]), 0, 10'000));
    };
    if (!isRealDate(part(0), part(1), part(2)))
        throw EngineError(
            289, 16, 1,
            "Cannot construct data type date, some of the arguments have values which are not valid.");
    return DateTimeValue{daysFromDate(part(0), part(1), part(2)), 0, 0};
}

Value isDate(EvaluationContext &context, const Operation &, Arguments a)
{
    if (isNull(a[0]))
        return std::int64_t{0};
    const auto parsed = parseDateTime(std::get<std::string>(a[0]), context.dateOrder);
    return std::int64_t{parsed && !parsed->outOfRange && !std::get<std::string>(a[0]).empty() &&
                        parsed->value.days >= Days1753};
}

template <TypeId id, int scale = 0>
SqlType fixedResult(const ArgumentList &)
{
    return {id, 0, 0, static_cast<std::uint8_t>(scale)};
}

constexpr Builtin dateBuiltins[] = {
    {"CURRENT_DATE", 0, 0, "a", fixedResult<TypeId::Date>, localTime},
    {"CURRENT_TIMESTAMP", 0, 0, "a", fixedResult<TypeId::DateTime>, localTime},
    {"DATEFROMPARTS", 3, 3, "i", fixedResult<TypeId::Date>, dateFromParts},
    {"DAY", 1, 1, "d", fixedResult<TypeId::Int>, partFunction<DatePart::Day>},
    {"EOMONTH", 1, 2, "di", fixedResult<TypeId::Date>, endOfMonth},
    {"GETDATE", 0, 0, "a", fixedResult<TypeId::DateTime>, localTime},
    {"GETUTCDATE", 0, 0, "a", fixedResult<TypeId::DateTime>, utcTime},
    {"ISDATE", 1, 1, "t", fixedResult<TypeId::Int>, isDate, false},
    {"MONTH", 1, 1, "d", fixedResult<TypeId::Int>, partFunction<DatePart::Month>},
    {"SYSDATETIME", 0, 0, "a", fixedResult<TypeId::DateTime2, 7>, localTime},
    {"SYSDATETIMEOFFSET", 0, 0, "a", fixedResult<TypeId::DateTimeOffset, 7>, offsetTime},
    {"SYSUTCDATETIME", 0, 0, "a", fixedResult<TypeId::DateTime2, 7>, utcTime},
    {"YEAR", 1, 1, "d", fixedResult<TypeId::Int>, partFunction<DatePart::Year>},
};

/// Whether values of the type have the part.
bool hasPart(TypeId type, DatePart part, bool isAdding)
{
    const bool isClock = part >= DatePart::Hour && part <= DatePart::Nanosecond;
    if (part == DatePart::OffsetMinutes)
        return !isAdding && (type == TypeId::DateTimeOffset || type == TypeId::DateTime2);
    if (part == DatePart::IsoWeek)
        return !isAdding && type != TypeId::Time;
    if (type == TypeId::Date)
        return !isClock;
    if (type == TypeId::Time)
        return isClock;
    const bool isFine = part == DatePart::Microsecond || part == DatePart::Nanosecond;
    return !isAdding || !isFine || !isLegacyDateTime(type);
}

/// Throws 9810 for a part that the type does not have.
void requirePart(const DatePartName &part, const std::string &function, const SqlType &type)
{
    static constexpr std::pair<DatePart, std::string_view> names[] = {{DatePart::Year, "year"},
                                                                      {DatePart::Quarter, "quarter"},
                                                                      {DatePart::Month, "month"},
                                                                      {DatePart::DayOfYear, "dayofyear"},
                                                                      {DatePart::Day, "day"},
                                                                      {DatePart::Week, "week"},
                                                                      {DatePart::Weekday, "weekday"},
                                                                      {DatePart::Hour, "hour"},
                                                                      {DatePart::Minute, "minute"},
                                                                      {DatePart::Second, "second"},
                                                                      {DatePart::Millisecond, "millisecond"},
                                                                      {DatePart::Microsecond, "microsecond"},
                                                                      {DatePart::Nanosecond, "nanosecond"},
                                                                      {DatePart::OffsetMinutes, "tzoffset"},
                                                                      {DatePart::IsoWeek, "iso_week"}};
    if (hasPart(type.id, part.part, function == "dateadd"))
        return;
    const auto *name = std::find_if(std::begin(names), std::end(names),
                                    [&part](const auto &entry) { return entry.first == part.part; });
    throw EngineError(9810, 16, 1,
                      "The datepart " + std::string(name->second) + " is not supported by date function " +
                          function + " for data type " + baseTypeName(type.id) + '.',
                      ErrorEffect::EndsBatch);
}

/// Converts a date argument to the type used by DATEADD and DATEDIFF: text is parsed as datetime, or as a
/// more precise type if necessary.
ExpressionPtr dateArgument(Binder &binder, const ExpressionPtr &argument, bool forAdding)
{
    if (isDateTime(argument->type.id))
        return argument;
    if (isText(argument->type.id) && !forAdding)
        return binder.converted(argument, {TypeId::DateTimeOffset, 0, 0, 7});
    return binder.converted(argument, {TypeId::DateTime, 0, 0, 0});
}

} // namespace

std::span<const Builtin> dateFunctions()
{
    return dateBuiltins;
}

bool takesDatePart(const std::string &name)
{
    return name == "DATEADD" || name == "DATEDIFF" || name == "DATEDIFF_BIG" || name == "DATEPART" ||
           name == "DATENAME";
}

ExpressionPtr bindDatePartFunction(Binder &binder, const std::string &name, const std::string &part,
                                   ArgumentList arguments)
{
    const std::string upper = asciiUpper(part);
    const auto *found = std::find_if(std::begin(partNames), std::end(partNames),
                                     [&upper](const DatePartName &entry) { return entry.name == upper; });
    std::string lowerName = toLower(name);
    if (found == std::end(partNames))
        throw EngineError(155, 15, 1, '\'' + part + "' is not a recognized " + lowerName + " option.",
                          ErrorEffect::EndsBatch);
    const std::size_t wanted = name == "DATEPART" || name == "DATENAME" ? 1 : 2;
    if (arguments.size() != wanted)
        throw Errors::argumentCount(lowerName, static_cast<int>(wanted) + 1);
    Operation operation;
    operation.selector = static_cast<int>(found->part);
    if (name == "DATEADD") {
        arguments[0] = binder.converted(arguments[0], {TypeId::Int, 0, 0, 0});
        arguments[1] = dateArgument(binder, arguments[1], true);
        requirePart(*found, lowerName, arguments[1]->type);
        operation.function = dateAdd;
        operation.result = arguments[1]->type;
    } else {
        for (ExpressionPtr &argument : arguments)
            argument = dateArgument(binder, argument, false);
        if (wanted == 1)
            requirePart(*found, lowerName, arguments[0]->type);
        operation.function = name == "DATEPART" ? datePart : name == "DATENAME" ? dateName : dateDifference;
        operation.result = {name == "DATEDIFF_BIG" ? TypeId::BigInt : TypeId::Int, 0, 0, 0};
        if (name == "DATENAME")
            operation.result = {TypeId::NVarChar, 30, 0, 0};
    }
    return binder.call(std::move(operation), std::move(arguments));
}

} // namespace SampleServer::Functions
