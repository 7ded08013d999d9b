#pragma once

#include "KNSharedExport.h"

#include <QString>

#include <compare>
#include <cstddef>
#include <optional>

/// An exact decimal number of at most 38 digits: magnitude / 10^scale with a sign. A value type, usable on
/// any thread.
class KNSHARED_EXPORT KNDecimal
{
public:
    static constexpr int MaximumDigits = 38;

    KNDecimal() = default;
    KNDecimal(qint64 value);

    /// Parses "-12.50", with an optional exponent ("1e-4"); empty if the text is not a number or exceeds 38
    /// digits.
    static std::optional<KNDecimal> fromString(QStringView text);
    /// Converts a magnitude of up to 16 big-endian bytes, the format that servers send. Leading zero bytes
    /// may exceed the 16; empty if the number exceeds 38 digits or the scale is outside 0 to 38.
    static std::optional<KNDecimal> fromBigEndian(const unsigned char *magnitude, std::size_t length,
                                                  bool negative, int scale);

    /// Writes the magnitude into sixteen bytes in big-endian order.
    void toBigEndian(unsigned char magnitude[16]) const;

    /// Plain notation with exactly scale() digits after the point: "-12.50".
    QString toString() const;
    double toDouble() const;
    int scale() const { return m_scale; }
    bool isNegative() const { return m_negative; }
    bool isZero() const { return m_high == 0 && m_low == 0; }
    /// This number times 10^power, exactly; empty when scale or digits leave the range.
    std::optional<KNDecimal> multipliedByPowerOf10(int power) const;

    /// Compares by number: 1.0 equals 1.00.
    KNSHARED_EXPORT friend std::strong_ordering operator<=>(const KNDecimal &left, const KNDecimal &right);
    friend bool operator==(const KNDecimal &left, const KNDecimal &right)
    {
        return std::is_eq(left <=> right);
    }

private:
    /// Accepts any scale whose value 0 to 38 digits after the decimal point can represent exactly.
    static std::optional<KNDecimal> fromMagnitude(quint64 high, quint64 low, bool negative, qint64 scale);

    quint64 m_high = 0; ///< upper half of the magnitude
    quint64 m_low = 0;
    quint8 m_scale = 0;
    bool m_negative = false;
};
