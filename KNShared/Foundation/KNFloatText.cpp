#include "Foundation/KNFloatText.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace {

template <typename Float>
char *writeShortest(char *to, Float value)
{
    // Below this bound every digit that plain notation prints before the decimal point is significant.
    static const Float plainLimit = std::pow(Float(10), Float(std::numeric_limits<Float>::digits10));
    const Float magnitude = std::abs(value);
    const bool plain = magnitude == 0 || (magnitude >= Float(1e-5) && magnitude < plainLimit);

    return std::to_chars(to, to + KNLongestFloatText, value,
                         plain ? std::chars_format::fixed : std::chars_format::scientific)
        .ptr;
}

} // namespace

char *KNWriteFloat(char *to, double value)
{
    return writeShortest(to, value);
}

char *KNWriteFloat(char *to, float value)
{
    return writeShortest(to, value);
}

QString KNFloatText(double value)
{
    char text[KNLongestFloatText];
    return QString::fromLatin1(text, KNWriteFloat(text, value) - text);
}

QString KNFloatText(float value)
{
    char text[KNLongestFloatText];
    return QString::fromLatin1(text, KNWriteFloat(text, value) - text);
}
