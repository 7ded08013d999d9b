#include "Engine/Errors.h"
#include "Engine/Functions/Conversion.h"
#include "Types/DecimalMath.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace SampleServer {

namespace {

struct IntegerRange
{
    std::int64_t least;
    std::int64_t greatest;
};

IntegerRange rangeOf(TypeId id)
{
    switch (id) {
    case TypeId::TinyInt:
        return {0, 255};
    case TypeId::SmallInt:
        return {-32768, 32767};
    case TypeId::Int:
        return {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()};
    default:
        return {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()};
    }
}

/// The name of the source type in error texts: decimal is "numeric", an integer "expression".
std::string sourceName(TypeId id)
{
    return isInteger(id) ? "expression" : messageTypeName(id);
}

EngineError integerOverflow(std::int64_t value, const SqlType &from, const SqlType &to)
{
    if (isInteger(from.id) && (to.id == TypeId::TinyInt || to.id == TypeId::SmallInt))
        return {220, 16, to.id == TypeId::TinyInt ? 2 : 1,
                std::string("Arithmetic overflow error for data type ") + baseTypeName(to.id) +
                    ", value = " + std::to_string(value) + '.'};
    return Errors::overflow("expression", baseTypeName(to.id), 2);
}

EngineError textOverflow(const std::string &text, const SqlType &from, const SqlType &to)
{
    const bool isInt = to.id == TypeId::Int;
    const char *column = isInt                       ? "int column."
                         : to.id == TypeId::SmallInt ? "INT2 column. Use a larger integer column."
                                                     : "INT1 column. Use a larger integer column.";
    return {isInt ? 248 : 244, 16, 1,
            std::string("The conversion of the ") + baseTypeName(from.id) + " value '" + text +
                "' overflowed an " + column,
            ErrorEffect::RollsBack};
}

Value integerFromText(const std::string &text, const SqlType &from, const SqlType &to)
{
    std::string_view digits = trimmed(text);
    if (to.id == TypeId::Bit &&
        (equalsIgnoringAsciiCase(digits, "true") || equalsIgnoringAsciiCase(digits, "false")))
        return std::int64_t{digits.size() == 4};
    if (digits.starts_with('+') && digits.size() > 1 && digits[1] != '-')
        digits.remove_prefix(1);
    if (digits.empty())
        return std::int64_t{0};
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    const bool wholeNumber = end == digits.data() + digits.size();
    if (to.id == TypeId::BigInt && (!wholeNumber || error != std::errc()))
        throw wholeNumber && error == std::errc::result_out_of_range
            ? Errors::overflow("expression", "bigint", 2)
            : Errors::dataTypeConversion(baseTypeName(from.id), "bigint");
    if (!wholeNumber || error == std::errc::invalid_argument)
        throw Errors::conversionFailed(baseTypeName(from.id), text, baseTypeName(to.id));
    if (to.id == TypeId::Bit)
        return std::int64_t{value != 0 || error != std::errc()};
    const IntegerRange range = rangeOf(to.id);
    if (error != std::errc() || value < range.least || value > range.greatest)
        throw textOverflow(text, from, to);
    return value;
}

std::int64_t integerFromBytes(const Bytes &bytes, TypeId to)
{
    const std::size_t size = to == TypeId::BigInt     ? 8
                             : to == TypeId::Int      ? 4
                             : to == TypeId::SmallInt ? 2
                                                      : 1;
    std::uint64_t value = 0;
    for (std::size_t i = bytes.size() > size ? bytes.size() - size : 0; i < bytes.size(); ++i)
        value = value << 8 | bytes[i];
    switch (to) {
    case TypeId::Int:
        return static_cast<std::int32_t>(value);
    case TypeId::SmallInt:
        return static_cast<std::int16_t>(value);
    default:
        return static_cast<std::int64_t>(value);
    }
}

EngineError floatOverflow(double value, const SqlType &to)
{
    char text[400];
    std::snprintf(text, sizeof text, "%f", value);
    return {232, 16, 3,
            std::string("Arithmetic overflow error for type ") + baseTypeName(to.id) + ", value = " + text +
                '.'};
}

Decimal fitted(const std::optional<Decimal> &value, const SqlType &from, const SqlType &to)
{
    const auto result = value ? value->rescaled(to.scale) : value;
    if (!result || digitCount(result->magnitude) > to.precision)
        throw Errors::overflow(isInteger(from.id) ? baseTypeName(from.id) : messageTypeName(from.id),
                               messageTypeName(to.id), isFloat(from.id) ? 6 : 8);
    return *result;
}

std::optional<Decimal> decimalFromBytes(const Bytes &bytes)
{
    if (bytes.size() < 5 || bytes.size() > 20 || bytes[1] > bytes[0] || bytes[0] > Decimal::MaxDigits)
        return {};
    Decimal value;
    value.scale = bytes[1];
    value.negative = bytes[3] == 0;
    for (std::size_t i = bytes.size(); i > 4; --i)
        value.magnitude = value.magnitude << 8 | bytes[i - 1];
    return value;
}

Decimal moneyFromScaled(std::int64_t scaled)
{
    Decimal value = decimalFromInteger(scaled);
    value.scale = 4;
    return value;
}

} // namespace

Value convertToInteger(const Value &value, const SqlType &from, const SqlType &to)
{
    if (const auto *text = std::get_if<std::string>(&value))
        return integerFromText(*text, from, to);
    std::int64_t result = 0;
    if (const auto *integer = std::get_if<std::int64_t>(&value)) {
        result = *integer;
    } else if (const auto *number = std::get_if<double>(&value)) {
        if (to.id == TypeId::Bit)
            return std::int64_t{*number != 0};
        if (!(std::fabs(*number) < 9.2233720368547748e18))
            throw floatOverflow(*number, to);
        result = static_cast<std::int64_t>(*number);
        if (result < rangeOf(to.id).least || result > rangeOf(to.id).greatest)
            throw floatOverflow(*number, to);
    } else if (const auto *decimal = std::get_if<Decimal>(&value)) {
        if (to.id == TypeId::Bit)
            return std::int64_t{decimal->magnitude != 0};
        // Money is rounded, decimal is truncated.
        const auto whole = isMoney(from.id) ? decimal->rescaled(0) : *decimal;
        const auto integer2 = whole ? SampleServer::toInteger(*whole) : std::nullopt;
        if (!integer2)
            throw Errors::overflow("expression", baseTypeName(to.id), 2);
        result = *integer2;
    } else if (const auto *bytes = std::get_if<Bytes>(&value)) {
        result = integerFromBytes(*bytes, to.id);
    } else if (const auto *time = std::get_if<DateTimeValue>(&value)) {
        result = static_cast<std::int64_t>(std::floor(toDayNumber(*time) + 0.5));
    }
    if (to.id == TypeId::Bit)
        return std::int64_t{result != 0};
    if (result < rangeOf(to.id).least || result > rangeOf(to.id).greatest)
        throw integerOverflow(result, from, to);
    return result;
}

Value convertToFloat(const Value &value, const SqlType &from, const SqlType &to)
{
    double result = 0;
    if (const auto *integer = std::get_if<std::int64_t>(&value)) {
        result = static_cast<double>(*integer);
    } else if (const auto *number = std::get_if<double>(&value)) {
        result = *number;
    } else if (const auto *decimal = std::get_if<Decimal>(&value)) {
        result = decimal->toDouble();
    } else if (const auto *time = std::get_if<DateTimeValue>(&value)) {
        result = toDayNumber(*time);
    } else if (const auto *text = std::get_if<std::string>(&value)) {
        std::string_view digits = trimmed(*text);
        if (digits.starts_with('+') && digits.size() > 1 && digits[1] != '-')
            digits.remove_prefix(1);
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), result);
        if (!digits.empty() &&
            (error != std::errc() || end != digits.data() + digits.size() || !std::isfinite(result)))
            throw Errors::dataTypeConversion(baseTypeName(from.id), baseTypeName(to.id));
    }
    if (to.id == TypeId::Real) {
        if (std::fabs(result) > std::numeric_limits<float>::max())
            throw floatOverflow(result, to);
        result = static_cast<double>(static_cast<float>(result));
    }
    return result;
}

Value convertToDecimal(const Value &value, const SqlType &from, const SqlType &to)
{
    if (const auto *integer = std::get_if<std::int64_t>(&value))
        return fitted(decimalFromInteger(*integer), from, to);
    if (const auto *number = std::get_if<double>(&value))
        return fitted(decimalFromDouble(*number, to.scale), from, to);
    if (const auto *decimal = std::get_if<Decimal>(&value))
        return fitted(*decimal, from, to);
    if (const auto *time = std::get_if<DateTimeValue>(&value))
        return fitted(decimalFromDouble(toDayNumber(*time), to.scale), from, to);
    if (const auto *bytes = std::get_if<Bytes>(&value)) {
        if (const auto decimal2 = decimalFromBytes(*bytes))
            return fitted(*decimal2, from, to);
        throw Errors::dataTypeConversion(baseTypeName(from.id), "numeric");
    }
    const std::string &text = std::get<std::string>(value);
    const std::string_view digits = trimmed(text);
    if (const auto decimal = Decimal::fromString(digits))
        return fitted(*decimal, from, to);
    const bool onlyDigits =
        digits.find_first_not_of("+-.0123456789") == std::string_view::npos && !digits.empty();
    if (onlyDigits && digits.size() > Decimal::MaxDigits)
        throw Errors::overflow(baseTypeName(from.id), "numeric", 8);
    throw Errors::dataTypeConversion(baseTypeName(from.id), "numeric");
}

Value convertToMoney(const Value &value, const SqlType &from, const SqlType &to)
{
    std::optional<Decimal> result;
    if (const auto *bytes = std::get_if<Bytes>(&value)) {
        result =
            moneyFromScaled(integerFromBytes(*bytes, to.id == TypeId::Money ? TypeId::BigInt : TypeId::Int));
    } else if (const auto *text = std::get_if<std::string>(&value)) {
        std::string digits;
        for (std::size_t at = 0; at < text->size();) {
            const char32_t c = nextCodePoint(*text, at);
            if (c != ' ' && c != ',' && c != '$' && c != 0x20AC && c != 0xA3 && c != 0xA5)
                appendUtf8(digits, c);
        }
        result = Decimal::fromString(digits.empty() ? "0" : digits);
        if (!result)
            throw EngineError(235, 16, 0,
                              "Cannot convert a char value to money. The char value has incorrect syntax.",
                              ErrorEffect::RollsBack);
    } else {
        result =
            std::get<Decimal>(convertToDecimal(value, from, {TypeId::Decimal, 0, Decimal::MaxDigits, 4}));
    }
    const auto scaled = result->rescaled(4);
    const UInt128 limit = to.id == TypeId::Money ? UInt128(std::numeric_limits<std::int64_t>::max())
                                                 : UInt128(std::numeric_limits<std::int32_t>::max());
    if (!scaled || scaled->magnitude > limit + (scaled->negative ? 1 : 0))
        throw Errors::overflow(sourceName(from.id), baseTypeName(to.id), 3);
    return *scaled;
}

} // namespace SampleServer
