#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace SampleServer {

__extension__ typedef unsigned __int128 UInt128;

/// An exact decimal number of at most 38 digits: magnitude / 10^scale, with a sign. Also used for money and
/// smallmoney (scale 4).
struct Decimal
{
    static constexpr int MaxDigits = 38;

    UInt128 magnitude = 0;
    std::uint8_t scale = 0;
    bool negative = false;

    /// The number in plain notation with exactly `scale` digits after the decimal point.
    std::string toString() const;
    /// Parses "-12.50" (sign, digits, one point); empty if the text is not a number or exceeds 38 digits.
    static std::optional<Decimal> fromString(std::string_view text);
    /// The same number at another scale, rounded half away from zero; empty if it exceeds 38 digits.
    std::optional<Decimal> rescaled(std::uint8_t newScale) const;
    double toDouble() const;
};

/// Compares by value, independent of the scales.
std::strong_ordering operator<=>(const Decimal &left, const Decimal &right);
inline bool operator==(const Decimal &left, const Decimal &right)
{
    return (left <=> right) == std::strong_ordering::equal;
}

} // namespace SampleServer
