#include "Engine/Bind/Binder.h"
#include "Engine/Errors.h"
#include "Engine/Functions/FunctionTable.h"
#include "Engine/Functions/Functions.h"
#include "Types/DateTime.h"
#include "Types/TypeTraits.h"

#include <algorithm>

// Dates and times from their parts, and offsets.
namespace SampleServer::Functions {

using namespace Bound;

namespace {

/// The literal precision in the last argument; 7 for other arguments, which the function rejects.
std::uint8_t precisionOf(const ArgumentList &arguments)
{
    const auto *constant = std::get_if<Constant>(&arguments.back()->node);
    const auto *number = constant ? std::get_if<std::int64_t>(&constant->value) : nullptr;
    return number && *number >= 0 && *number <= 7 ? static_cast<std::uint8_t>(*number) : std::uint8_t{7};
}

template <TypeId id>
SqlType plainResult(const ArgumentList &)
{
    return {id, 0, 0, 0};
}

template <TypeId id>
SqlType preciseResult(const ArgumentList &arguments)
{
    return {id, 0, 0, precisionOf(arguments)};
}

/// datetimeoffset with the precision of the first argument.
SqlType offsetLikeFirst(const ArgumentList &arguments)
{
    const SqlType &type = arguments[0]->type;
    const bool hasScale = type.id == TypeId::DateTime2 || type.id == TypeId::DateTimeOffset;
    return {TypeId::DateTimeOffset, 0, 0, hasScale ? type.scale : std::uint8_t{7}};
}

int part(const Value &value)
{
    return static_cast<int>(std::clamp<std::int64_t>(std::get<std::int64_t>(value), -1, 100'000'000));
}

EngineError cannotConstruct(TypeId id, int state)
{
    return {289, 16, state,
            std::string("Cannot construct data type ") + baseTypeName(id) +
                ", some of the arguments have values which are not valid."};
}

/// The ticks of a clock whose fraction counts units of 10 to the minus `scale`; none for impossible parts.
std::optional<std::int64_t> clockTicks(int hour, int minute, int second, int fraction, int scale)
{
    std::int64_t units = 1;
    for (int i = 0; i < scale; ++i)
        units *= 10;
    const bool isTime = hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60;
    if (!isTime || fraction < 0 || fraction >= units)
        return {};
    return ((hour * 60LL + minute) * 60 + second) * TicksPerSecond + fraction * (TicksPerSecond / units);
}

/// The first three arguments are the date, the clock starts at `clock`.
DateTimeValue moment(const SqlType &type, Arguments a, bool hasDate, std::size_t clock, int scale, int state)
{
    const auto at = [&](std::size_t i) { return i < a.size() ? part(a[i]) : 0; };
    const bool hasSeconds = type.id != TypeId::SmallDateTime;
    const auto ticks = clockTicks(at(clock), at(clock + 1), hasSeconds ? at(clock + 2) : 0,
                                  hasSeconds ? at(clock + 3) : 0, scale);
    if (!ticks || (hasDate && !isRealDate(at(0), at(1), at(2))))
        throw cannotConstruct(type.id, state);
    const std::int32_t days = hasDate ? daysFromDate(at(0), at(1), at(2)) : Days1900;
    return {days, *ticks, 0};
}

Value dateTimeFromParts(EvaluationContext &, const Operation &operation, Arguments a)
{
    const auto rounded = roundedTo(operation.result, moment(operation.result, a, true, 3, 3, 3));
    if (!rounded)
        throw cannotConstruct(operation.result.id, 3);
    return *rounded;
}

Value dateTime2FromParts(EvaluationContext &, const Operation &operation, Arguments a)
{
    return moment(operation.result, a, true, 3, operation.result.scale, 5);
}

Value timeFromParts(EvaluationContext &, const Operation &operation, Arguments a)
{
    return moment(operation.result, a, false, 0, operation.result.scale, 2);
}

Value offsetFromParts(EvaluationContext &, const Operation &operation, Arguments a)
{
    DateTimeValue value = moment(operation.result, a, true, 3, operation.result.scale, 6);
    const std::int64_t hours = std::get<std::int64_t>(a[7]), minutes = std::get<std::int64_t>(a[8]);
    const bool sameSign = (hours <= 0 && minutes <= 0) || (hours >= 0 && minutes >= 0);
    const std::int64_t offset = hours * 60 + minutes;
    if (!sameSign || std::abs(minutes) > 59 || std::abs(offset) > 14 * 60)
        throw cannotConstruct(operation.result.id, 6);
    value = plusTicks(value, -offset * 60 * TicksPerSecond);
    value.offsetMinutes = static_cast<std::int16_t>(offset);
    return value;
}

/// "+05:30" or a number of minutes.
std::int16_t offsetOf(const Value &value, const char *function)
{
    const EngineError invalid(
        9812, 16, 0, std::string("The timezone provided to builtin function ") + function + " is invalid.");
    if (const auto *minutes = std::get_if<std::int64_t>(&value)) {
        if (std::abs(*minutes) > 14 * 60)
            throw invalid;
        return static_cast<std::int16_t>(*minutes);
    }
    const auto *text = std::get_if<std::string>(&value);
    const auto parsed =
        text ? parseDateTime("00:00 " + *text, DateOrder::MonthDayYear) : std::optional<ParsedDateTime>();
    if (!parsed)
        throw invalid;
    return parsed->value.offsetMinutes;
}

Value switchOffset(EvaluationContext &, const Operation &, Arguments a)
{
    DateTimeValue value = std::get<DateTimeValue>(a[0]);
    value.offsetMinutes = offsetOf(a[1], "switchoffset");
    return value;
}

Value toDateTimeOffset(EvaluationContext &, const Operation &operation, Arguments a)
{
    DateTimeValue value = std::get<DateTimeValue>(a[0]);
    const std::int16_t offset = offsetOf(a[1], "todatetimeoffset");
    if (operation.arguments[0].id == TypeId::DateTimeOffset) // its own offset is replaced
        value = plusTicks(value, value.offsetMinutes * 60LL * TicksPerSecond);
    value = plusTicks(value, -offset * 60LL * TicksPerSecond);
    value.offsetMinutes = offset;
    return value;
}

constexpr Builtin datePartsBuiltins[] = {
    {"DATETIME2FROMPARTS", 8, 8, "i", preciseResult<TypeId::DateTime2>, dateTime2FromParts},
    {"DATETIMEFROMPARTS", 7, 7, "i", plainResult<TypeId::DateTime>, dateTimeFromParts},
    {"DATETIMEOFFSETFROMPARTS", 10, 10, "i", preciseResult<TypeId::DateTimeOffset>, offsetFromParts},
    {"SMALLDATETIMEFROMPARTS", 5, 5, "i", plainResult<TypeId::SmallDateTime>, dateTimeFromParts},
    {"SWITCHOFFSET", 2, 2, "da", offsetLikeFirst, switchOffset},
    {"TIMEFROMPARTS", 5, 5, "i", preciseResult<TypeId::Time>, timeFromParts},
    {"TODATETIMEOFFSET", 2, 2, "da", offsetLikeFirst, toDateTimeOffset},
};

} // namespace

std::span<const Builtin> datePartFunctions()
{
    return datePartsBuiltins;
}

} // namespace SampleServer::Functions
