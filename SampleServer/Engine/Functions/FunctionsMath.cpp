#include "Engine/Errors.h"
#include "Engine/Functions/Conversion.h"
#include "Engine/Functions/FunctionTable.h"
#include "Engine/Functions/Functions.h"
#include "Types/DecimalMath.h"
#include "Types/TypeTraits.h"

#include <cmath>
#include <random>

namespace SampleServer::Functions {

using Bound::Operation;

namespace {

SqlType floatResult(const ArgumentList &)
{
    return {TypeId::Float, 0, 0, 0};
}

/// The first argument's type; the small integers become int, real becomes float.
SqlType likeFirst(const ArgumentList &arguments)
{
    SqlType type = arguments[0]->type;
    if (type.id == TypeId::Bit || type.id == TypeId::TinyInt || type.id == TypeId::SmallInt)
        type.id = TypeId::Int;
    if (type.id == TypeId::Real)
        type.id = TypeId::Float;
    if (type.id == TypeId::SmallMoney)
        type.id = TypeId::Money;
    return type;
}

SqlType wholeLikeFirst(const ArgumentList &arguments)
{
    SqlType type = likeFirst(arguments);
    if (type.id == TypeId::Decimal)
        type.scale = 0;
    return type;
}

SqlType powerResult(const ArgumentList &arguments)
{
    SqlType type = likeFirst(arguments);
    if (type.id == TypeId::Decimal)
        type.precision = Decimal::MaxDigits;
    return type;
}

/// A float computed from floats; error 3623 outside of the function's domain.
template <double (*compute)(double)>
Value floatFunction(EvaluationContext &, const Operation &, Arguments a)
{
    const double result = compute(std::get<double>(a[0]));
    if (!std::isfinite(result))
        throw EngineError(3623, 16, 1, "An invalid floating point operation occurred.");
    return result;
}

double square(double x)
{
    return x * x;
}
double cotangent(double x)
{
    return 1 / std::tan(x);
}
double degrees(double x)
{
    return x * 180 / M_PI;
}
double radians(double x)
{
    return x * M_PI / 180;
}

Value absolute(EvaluationContext &, const Operation &operation, Arguments a)
{
    if (const auto *number = std::get_if<double>(&a[0]))
        return std::fabs(*number);
    if (const auto *decimal = std::get_if<Decimal>(&a[0])) {
        Decimal result = *decimal;
        result.negative = false;
        return result;
    }
    const std::int64_t value = std::get<std::int64_t>(a[0]);
    const SqlType bigint{TypeId::BigInt, 0, 0, 0};
    if (value == std::numeric_limits<std::int64_t>::min())
        throw Errors::overflow("expression", "bigint", 2);
    return convertToInteger(value < 0 ? -value : value, bigint, operation.result);
}

Value sign(EvaluationContext &, const Operation &operation, Arguments a)
{
    if (const auto *number = std::get_if<double>(&a[0]))
        return *number > 0 ? 1.0 : *number < 0 ? -1.0 : 0.0;
    if (const auto *decimal = std::get_if<Decimal>(&a[0])) {
        Decimal result;
        result.magnitude = decimal->magnitude == 0 ? 0 : 1;
        result.negative = decimal->negative;
        return *result.rescaled(isMoney(operation.result.id) ? 4 : operation.result.scale);
    }
    const std::int64_t value = std::get<std::int64_t>(a[0]);
    return std::int64_t{(value > 0) - (value < 0)};
}

/// Rounds a decimal at a position, which may be before the decimal point, and keeps its scale.
Decimal roundedAt(const Decimal &value, std::int64_t place, bool truncate)
{
    if (place >= value.scale)
        return value;
    const std::int64_t dropped = value.scale - place;
    Decimal result = value;
    if (dropped > Decimal::MaxDigits) {
        result.magnitude = 0;
        result.negative = false;
        return result;
    }
    const UInt128 unit = powerOfTen(static_cast<unsigned>(dropped)), rest = value.magnitude % unit;
    result.magnitude -= rest;
    if (!truncate && rest >= unit - rest)
        result.magnitude += unit;
    result.negative = value.negative && result.magnitude != 0;
    return result;
}

Value round(EvaluationContext &, const Operation &operation, Arguments a)
{
    const std::int64_t place = std::get<std::int64_t>(a[1]);
    const bool truncate = a.size() > 2 && std::get<std::int64_t>(a[2]) != 0;
    if (const auto *number = std::get_if<double>(&a[0])) {
        const double factor = std::pow(10.0, static_cast<double>(place));
        const double scaled = *number * factor;
        if (!std::isfinite(scaled) || factor == 0)
            return factor == 0 ? 0.0 : *number;
        return (truncate ? std::trunc(scaled) : std::round(scaled)) / factor;
    }
    if (const auto *decimal = std::get_if<Decimal>(&a[0])) {
        const Decimal result = roundedAt(*decimal, place, truncate);
        if (operation.result.id == TypeId::Decimal &&
            digitCount(result.magnitude) > operation.result.precision)
            throw Errors::overflow("expression", "numeric", 2);
        return result;
    }
    const Decimal result = roundedAt(decimalFromInteger(std::get<std::int64_t>(a[0])), place, truncate);
    return convertToInteger(result, {TypeId::Decimal, 0, 20, 0}, operation.result);
}

enum class Direction { Down, Up };

template <Direction direction>
Value wholeNumber(EvaluationContext &, const Operation &operation, Arguments a)
{
    if (const auto *number = std::get_if<double>(&a[0]))
        return direction == Direction::Down ? std::floor(*number) : std::ceil(*number);
    const auto *decimal = std::get_if<Decimal>(&a[0]);
    if (!decimal)
        return a[0];
    const UInt128 unit = powerOfTen(decimal->scale);
    Decimal result;
    result.magnitude = decimal->magnitude / unit;
    result.negative = decimal->negative;
    if (decimal->magnitude % unit != 0 && decimal->negative == (direction == Direction::Down))
        ++result.magnitude;
    result.negative = result.negative && result.magnitude != 0;
    return *result.rescaled(isMoney(operation.result.id) ? 4 : 0);
}

Value power(EvaluationContext &, const Operation &operation, Arguments a)
{
    const SqlType floatType{TypeId::Float, 0, 0, 0};
    const double base = std::get<double>(convertValue(a[0], operation.arguments[0], floatType));
    const double result = std::pow(base, std::get<double>(a[1]));
    if (!std::isfinite(result))
        throw EngineError(3623, 16, 1, "An invalid floating point operation occurred.");
    return convertValue(result, floatType, operation.result);
}

Value logarithm(EvaluationContext &, const Operation &, Arguments a)
{
    const double value = std::log(std::get<double>(a[0]));
    const double result = a.size() > 1 ? value / std::log(std::get<double>(a[1])) : value;
    if (!std::isfinite(result))
        throw EngineError(3623, 16, 1, "An invalid floating point operation occurred.");
    return result;
}

Value atn2(EvaluationContext &, const Operation &, Arguments a)
{
    return std::atan2(std::get<double>(a[0]), std::get<double>(a[1]));
}

Value pi(EvaluationContext &, const Operation &, Arguments)
{
    return M_PI;
}

Value random(EvaluationContext &, const Operation &, Arguments a)
{
    thread_local std::mt19937_64 generator{std::random_device{}()};
    if (!a.empty() && !isNull(a[0]))
        generator.seed(static_cast<std::uint64_t>(std::get<std::int64_t>(a[0])));
    return std::uniform_real_distribution<double>(0, 1)(generator);
}

constexpr Builtin mathBuiltins[] = {
    {"ABS", 1, 1, "n", likeFirst, absolute},
    {"ACOS", 1, 1, "f", floatResult, floatFunction<std::acos>},
    {"ASIN", 1, 1, "f", floatResult, floatFunction<std::asin>},
    {"ATAN", 1, 1, "f", floatResult, floatFunction<std::atan>},
    {"ATN2", 2, 2, "f", floatResult, atn2},
    {"CEILING", 1, 1, "n", wholeLikeFirst, wholeNumber<Direction::Up>},
    {"COS", 1, 1, "f", floatResult, floatFunction<std::cos>},
    {"COT", 1, 1, "f", floatResult, floatFunction<cotangent>},
    {"DEGREES", 1, 1, "f", floatResult, floatFunction<degrees>},
    {"EXP", 1, 1, "f", floatResult, floatFunction<std::exp>},
    {"FLOOR", 1, 1, "n", wholeLikeFirst, wholeNumber<Direction::Down>},
    {"LOG", 1, 2, "f", floatResult, logarithm},
    {"LOG10", 1, 1, "f", floatResult, floatFunction<std::log10>},
    {"PI", 0, 0, "a", floatResult, pi},
    {"POWER", 2, 2, "nf", powerResult, power},
    {"RADIANS", 1, 1, "f", floatResult, floatFunction<radians>},
    {"RAND", 0, 1, "i", floatResult, random, false},
    {"ROUND", 2, 3, "nii", likeFirst, round},
    {"SIGN", 1, 1, "n", likeFirst, sign},
    {"SIN", 1, 1, "f", floatResult, floatFunction<std::sin>},
    {"SQRT", 1, 1, "f", floatResult, floatFunction<std::sqrt>},
    {"SQUARE", 1, 1, "f", floatResult, floatFunction<square>},
    {"TAN", 1, 1, "f", floatResult, floatFunction<std::tan>},
};

} // namespace

std::span<const Builtin> mathFunctions()
{
    return mathBuiltins;
}

} // namespace SampleServer::Functions
