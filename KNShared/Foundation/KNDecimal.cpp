#include "Foundation/KNDecimal.h"

#include <QtEndian>

#include <boost/multiprecision/cpp_int.hpp>

#include <algorithm>

namespace {

using boost::multiprecision::uint128_t;
/// Two numbers of 38 digits at a common scale have at most 76 digits, which fit into 256 bits.
using boost::multiprecision::uint256_t;

template <typename Wide>
Wide powerOf10(int exponent)
{
    Wide power = 1;
    for (int digit = 0; digit < exponent; ++digit)
        power *= 10;
    return power;
}

const uint128_t &magnitudeLimit()
{
    static const auto limit = powerOf10<uint128_t>(KNDecimal::MaximumDigits);
    return limit;
}

uint128_t joined(quint64 high, quint64 low)
{
    return (uint128_t(high) << 64) | low;
}

/// A number whose scale may be out of range.
struct Unbounded
{
    uint128_t magnitude = 0;
    qint64 scale = 0;
};

/// Brings the scale into 0 to 38 without changing the number; false if that takes too many digits.
bool fitScale(Unbounded *number)
{
    if (number->magnitude == 0) {
        number->scale = std::clamp<qint64>(number->scale, 0, KNDecimal::MaximumDigits);
        return true;
    }
    for (; number->scale < 0; ++number->scale) {
        number->magnitude *= 10;
        if (number->magnitude >= magnitudeLimit())
            return false;
    }
    for (; number->scale > KNDecimal::MaximumDigits; --number->scale) {
        if (number->magnitude % 10 != 0)
            return false;
        number->magnitude /= 10;
    }
    return true;
}

bool isDigit(QStringView text, qsizetype index)
{
    return index < text.size() && text[index] >= u'0' && text[index] <= u'9';
}

bool skipSign(QStringView text, qsizetype *index)
{
    if (*index >= text.size() || (text[*index] != u'-' && text[*index] != u'+'))
        return false;
    return text[(*index)++] == u'-';
}

/// Reads digits from `index` on into the number; digits after the point increase its scale. Returns their
/// count, or -1 if they exceed 38.
qsizetype readDigits(QStringView text, qsizetype *index, bool afterPoint, Unbounded *number)
{
    const qsizetype first = *index;
    for (; isDigit(text, *index); ++*index) {
        number->magnitude = number->magnitude * 10 + unsigned(text[*index].unicode() - u'0');
        if (number->magnitude >= magnitudeLimit())
            return -1;
        number->scale += afterPoint ? 1 : 0;
    }
    return *index - first;
}

/// Reads "e-4" up to the end of the text. Exponents far beyond the usable range are not read exactly.
std::optional<qint64> readExponent(QStringView text, qsizetype index)
{
    constexpr qint64 FarBeyond = qint64(1) << 40;
    const bool negative = skipSign(text, &index);
    if (!isDigit(text, index))
        return std::nullopt;
    qint64 exponent = 0;
    for (; isDigit(text, index); ++index)
        exponent = std::min(exponent * 10 + (text[index].unicode() - u'0'), FarBeyond);
    if (index != text.size())
        return std::nullopt;
    return negative ? -exponent : exponent;
}

} // namespace

KNDecimal::KNDecimal(qint64 value)
    : m_low(value < 0 ? 0 - static_cast<quint64>(value) : static_cast<quint64>(value))
    , m_negative(value < 0)
{
}

std::optional<KNDecimal> KNDecimal::fromMagnitude(quint64 high, quint64 low, bool negative, qint64 scale)
{
    Unbounded number{joined(high, low), scale};
    if (number.magnitude >= magnitudeLimit() || !fitScale(&number))
        return std::nullopt;
    KNDecimal decimal;
    decimal.m_high = static_cast<quint64>(number.magnitude >> 64);
    decimal.m_low = static_cast<quint64>(number.magnitude & ~quint64(0));
    decimal.m_scale = static_cast<quint8>(number.scale);
    decimal.m_negative = negative && !decimal.isZero();
    return decimal;
}

std::optional<KNDecimal> KNDecimal::fromString(QStringView text)
{
    qsizetype index = 0;
    const bool negative = skipSign(text, &index);

    Unbounded number;
    const qsizetype wholeDigits = readDigits(text, &index, false, &number);
    qsizetype fractionDigits = 0;
    if (wholeDigits >= 0 && index < text.size() && text[index] == u'.')
        fractionDigits = readDigits(text, &++index, true, &number);
    if (wholeDigits < 0 || fractionDigits < 0 || wholeDigits + fractionDigits == 0)
        return std::nullopt;

    if (index < text.size()) {
        if (text[index] != u'e' && text[index] != u'E')
            return std::nullopt;
        const auto exponent = readExponent(text, index + 1);
        if (!exponent)
            return std::nullopt;
        number.scale -= *exponent;
    }
    return fromMagnitude(static_cast<quint64>(number.magnitude >> 64),
                         static_cast<quint64>(number.magnitude & ~quint64(0)), negative, number.scale);
}

std::optional<KNDecimal> KNDecimal::fromBigEndian(const unsigned char *magnitude, std::size_t length,
                                                  bool negative, int scale)
{
    const unsigned char *const end = magnitude + length;
    const unsigned char *byte = std::find_if(magnitude, end, [](unsigned char b) { return b != 0; });
    if (end - byte > 16 || scale < 0 || scale > MaximumDigits)
        return std::nullopt;
    quint64 high = 0;
    quint64 low = 0;
    for (; byte != end; ++byte) {
        high = (high << 8) | (low >> 56);
        low = (low << 8) | *byte;
    }
    return fromMagnitude(high, low, negative, scale);
}

void KNDecimal::toBigEndian(unsigned char magnitude[16]) const
{
    qToBigEndian(m_high, magnitude);
    qToBigEndian(m_low, magnitude + 8);
}

QString KNDecimal::toString() const
{
    // The sign, 38 digits, a zero before the decimal point, and the point itself.
    char16_t buffer[MaximumDigits + 4];
    char16_t *const end = std::end(buffer);
    char16_t *first = end;
    uint128_t rest = joined(m_high, m_low);
    for (int digits = 0; digits <= m_scale || rest != 0; ++digits) {
        if (digits == m_scale && m_scale > 0)
            *--first = u'.';
        *--first = static_cast<char16_t>(u'0' + static_cast<unsigned>(rest % 10));
        rest /= 10;
    }
    if (m_negative)
        *--first = u'-';
    return QString(reinterpret_cast<const QChar *>(first), end - first);
}

double KNDecimal::toDouble() const
{
    // Convert through text: parsing in the C locale rounds correctly, converting two halves would not.
    return toString().toDouble();
}

std::optional<KNDecimal> KNDecimal::multipliedByPowerOf10(int power) const
{
    return fromMagnitude(m_high, m_low, m_negative, qint64(m_scale) - power);
}

std::strong_ordering operator<=>(const KNDecimal &left, const KNDecimal &right)
{
    if (left.m_negative != right.m_negative)
        return left.m_negative ? std::strong_ordering::less : std::strong_ordering::greater;

    const int scale = std::max(left.m_scale, right.m_scale);
    const uint256_t leftMagnitude =
        uint256_t(joined(left.m_high, left.m_low)) * powerOf10<uint256_t>(scale - left.m_scale);
    const uint256_t rightMagnitude =
        uint256_t(joined(right.m_high, right.m_low)) * powerOf10<uint256_t>(scale - right.m_scale);
    if (leftMagnitude == rightMagnitude)
        return std::strong_ordering::equal;
    return (leftMagnitude < rightMagnitude) != left.m_negative ? std::strong_ordering::less
                                                               : std::strong_ordering::greater;
}
