#include "Types/DecimalMath.h"

#include <algorithm>
#include <boost/multiprecision/cpp_int.hpp>
#include <cmath>
#include <cstdio>
#include <limits>

namespace SampleServer {

namespace {

using Wide = boost::multiprecision::number<boost::multiprecision::cpp_int_backend<
    512, 512, boost::multiprecision::signed_magnitude, boost::multiprecision::unchecked, void>>;

Wide wide(UInt128 value)
{
    Wide result = static_cast<std::uint64_t>(value >> 64);
    result <<= 64;
    result += static_cast<std::uint64_t>(value);
    return result;
}

Wide wide(const Decimal &value)
{
    Wide result = wide(value.magnitude);
    return value.negative ? Wide(-result) : result;
}

Wide shifted(const Wide &value, int digits)
{
    Wide result = value;
    const bool grows = digits > 0;
    for (int rest = grows ? digits : -digits; rest > 0; rest -= Decimal::MaxDigits) {
        const Wide power = wide(powerOfTen(static_cast<unsigned>(std::min(rest, Decimal::MaxDigits))));
        result = grows ? Wide(result * power) : Wide(result / power);
    }
    return result;
}

/// Like shifted(), but rounds half away from zero when digits are lost.
Wide shiftedAndRounded(const Wide &value, int digits)
{
    if (digits >= 0)
        return shifted(value, digits);
    const Wide half = shifted(5, -digits - 1);
    return shifted(value < 0 ? Wide(value - half) : Wide(value + half), digits);
}

std::optional<Decimal> narrow(const Wide &value, const SqlType &type)
{
    const Wide magnitude = boost::multiprecision::abs(value);
    if (magnitude >= wide(powerOfTen(type.precision)))
        return {};
    Decimal result;
    result.magnitude = static_cast<UInt128>(static_cast<std::uint64_t>(magnitude >> 64)) << 64;
    result.magnitude |= static_cast<std::uint64_t>(magnitude & std::numeric_limits<std::uint64_t>::max());
    result.scale = type.scale;
    result.negative = value < 0;
    return result;
}

SqlType decimalType(int precision, int scale)
{
    return {TypeId::Decimal, 0, static_cast<std::uint8_t>(precision), static_cast<std::uint8_t>(scale)};
}

} // namespace

std::strong_ordering compareDecimals(const Decimal &left, const Decimal &right)
{
    const int scale = std::max(left.scale, right.scale);
    const Wide a = shifted(wide(left), scale - left.scale);
    const Wide b = shifted(wide(right), scale - right.scale);
    const int order = a.compare(b);
    return order < 0   ? std::strong_ordering::less
           : order > 0 ? std::strong_ordering::greater
                       : std::strong_ordering::equal;
}

SqlType decimalResultType(ArithmeticOperator op, const SqlType &left, const SqlType &right)
{
    const int p1 = left.precision, s1 = left.scale, p2 = right.precision, s2 = right.scale;
    int precision = 0, scale = 0;
    switch (op) {
    case ArithmeticOperator::Add:
    case ArithmeticOperator::Subtract:
        scale = std::max(s1, s2);
        precision = scale + std::max(p1 - s1, p2 - s2) + 1;
        if (precision > Decimal::MaxDigits) {
            scale = std::max(std::min(scale, Decimal::MaxDigits - std::max(p1 - s1, p2 - s2)), 0);
            precision = Decimal::MaxDigits;
        }
        return decimalType(precision, scale);
    case ArithmeticOperator::Modulo:
        scale = std::max(s1, s2);
        precision = std::min(p1 - s1, p2 - s2) + scale;
        return decimalType(std::clamp(precision, 1, Decimal::MaxDigits), scale);
    case ArithmeticOperator::Multiply:
        scale = s1 + s2;
        precision = p1 + p2 + 1;
        break;
    case ArithmeticOperator::Divide:
        scale = std::max(6, s1 + p2 + 1);
        precision = p1 - s1 + s2 + scale;
        break;
    }
    if (precision > Decimal::MaxDigits) {
        // The integral part is kept if possible; at least six digits (or the scale) remain after the decimal
        // point.
        const int integral = precision - scale;
        scale = std::max(std::min(scale, Decimal::MaxDigits - integral), std::min(scale, 6));
        precision = Decimal::MaxDigits;
    }
    return decimalType(precision, scale);
}

std::optional<Decimal> calculate(ArithmeticOperator op, const Decimal &left, const Decimal &right,
                                 const SqlType &result)
{
    const Wide a = wide(left), b = wide(right);
    const int common = std::max(left.scale, right.scale);
    switch (op) {
    case ArithmeticOperator::Add:
    case ArithmeticOperator::Subtract: {
        const Wide first = shifted(a, common - left.scale), second = shifted(b, common - right.scale);
        const Wide sum = op == ArithmeticOperator::Add ? Wide(first + second) : Wide(first - second);
        return narrow(shiftedAndRounded(sum, result.scale - common), result);
    }
    case ArithmeticOperator::Multiply:
        return narrow(shiftedAndRounded(a * b, result.scale - left.scale - right.scale), result);
    case ArithmeticOperator::Divide: {
        const int shift = result.scale - left.scale + right.scale;
        // A negative shift cannot be moved to the divisor's side before dividing without losing digits.
        return narrow(shift >= 0 ? Wide(shifted(a, shift) / b) : Wide(a / shifted(b, -shift)), result);
    }
    case ArithmeticOperator::Modulo: {
        const Wide remainder = shifted(a, common - left.scale) % shifted(b, common - right.scale);
        return narrow(shiftedAndRounded(remainder, result.scale - common), result);
    }
    }
    return {};
}

std::optional<Decimal> decimalFromDouble(double value, std::uint8_t scale)
{
    if (!std::isfinite(value) || std::fabs(value) >= 1e38)
        return {};
    // Seventeen significant digits identify a double; further digits only reflect its binary form.
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.16e", value);
    std::string mantissa(buffer, static_cast<std::size_t>(std::find(buffer, buffer + 63, 'e') - buffer));
    const int exponent = std::atoi(buffer + mantissa.size() + 1);
    const auto digits = Decimal::fromString(mantissa);
    const int shift = scale - digits->scale + exponent;
    return narrow(shiftedAndRounded(wide(*digits), shift), {TypeId::Decimal, 0, Decimal::MaxDigits, scale});
}

Decimal decimalFromInteger(std::int64_t value)
{
    Decimal result;
    result.negative = value < 0;
    result.magnitude =
        result.negative ? UInt128(0) - static_cast<UInt128>(value) : static_cast<UInt128>(value);
    return result;
}

std::optional<std::int64_t> toInteger(const Decimal &value)
{
    const UInt128 integral = value.magnitude / powerOfTen(value.scale);
    const UInt128 limit = UInt128(1) << 63;
    if (integral > limit || (integral == limit && !value.negative))
        return {};
    if (integral == limit)
        return std::numeric_limits<std::int64_t>::min();
    const auto result = static_cast<std::int64_t>(integral);
    return value.negative ? -result : result;
}

} // namespace SampleServer
