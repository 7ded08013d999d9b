#include "Types/Decimal.h"
#include "Types/DecimalMath.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace SampleServer {

UInt128 powerOfTen(unsigned exponent)
{
    static const auto powers = [] {
        std::array<UInt128, Decimal::MaxDigits + 1> table{};
        table[0] = 1;
        for (std::size_t i = 1; i < table.size(); ++i)
            table[i] = table[i - 1] * 10;
        return table;
    }();
    return powers[exponent];
}

int digitCount(UInt128 magnitude)
{
    int digits = 1;
    while (digits < Decimal::MaxDigits && magnitude >= powerOfTen(static_cast<unsigned>(digits)))
        ++digits;
    return digits;
}

std::string Decimal::toString() const
{
    std::string text;
    UInt128 rest = magnitude;
    while (rest != 0 || text.size() <= scale) {
        text += static_cast<char>('0' + static_cast<int>(rest % 10));
        rest /= 10;
    }
    if (scale > 0)
        text.insert(scale, 1, '.');
    if (negative && magnitude != 0)
        text += '-';
    std::reverse(text.begin(), text.end());
    return text;
}

std::optional<Decimal> Decimal::fromString(std::string_view text)
{
    Decimal result;
    std::size_t at = 0;
    if (at < text.size() && (text[at] == '-' || text[at] == '+'))
        result.negative = text[at++] == '-';
    bool point = false;
    int digits = 0;
    int significant = 0;
    for (; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '.' && !point) {
            point = true;
            continue;
        }
        if (c < '0' || c > '9')
            return {};
        ++digits;
        if (significant > 0 || c != '0')
            ++significant;
        if (significant > MaxDigits || (point && result.scale == MaxDigits))
            return {};
        result.magnitude = result.magnitude * 10 + static_cast<unsigned>(c - '0');
        if (point)
            ++result.scale;
    }
    if (digits == 0)
        return {};
    if (result.magnitude == 0)
        result.negative = false;
    return result;
}

std::optional<Decimal> Decimal::rescaled(std::uint8_t newScale) const
{
    Decimal result = *this;
    result.scale = newScale;
    if (newScale > scale) {
        const unsigned shift = newScale - scale;
        if (shift > MaxDigits ||
            (magnitude != 0 && digitCount(magnitude) + static_cast<int>(shift) > MaxDigits))
            return {};
        result.magnitude = magnitude * powerOfTen(shift);
    } else if (newScale < scale) {
        const UInt128 divisor = powerOfTen(static_cast<unsigned>(scale - newScale));
        result.magnitude = magnitude / divisor;
        if (magnitude % divisor >= divisor - magnitude % divisor)
            ++result.magnitude;
        if (result.magnitude == 0)
            result.negative = false;
    }
    return result;
}

double Decimal::toDouble() const
{
    // Convert through text to get the nearest double: dividing two rounded doubles would round twice.
    const std::string text = toString();
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

std::strong_ordering operator<=>(const Decimal &left, const Decimal &right)
{
    return compareDecimals(left, right);
}

} // namespace SampleServer
