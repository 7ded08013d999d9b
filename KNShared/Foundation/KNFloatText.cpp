#include "Foundation/KNFloatText.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace {

template <typename Float>
QString shortestText(Float value)
{
    // Below this bound every digit that plain notation prints before the point is significant.
    static const Float plainLimit = std::pow(Float(10), Float(std::numeric_limits<Float>::digits10));
    const Float magnitude = std::abs(value);
    const bool plain = magnitude == 0 || (magnitude >= Float(1e-5) && magnitude < plainLimit);

    char buffer[64];
    const auto result = std::to_chars(std::begin(buffer), std::end(buffer), value,
                                      plain ? std::chars_format::fixed : std::chars_format::scientific);
    return QString::fromLatin1(buffer, result.ptr - buffer);
}

} // namespace

QString KNFloatText(double value)
{
    return shortestText(value);
}

QString KNFloatText(float value)
{
    return shortestText(value);
}
