#include "Types/Text.h"

#include <algorithm>
#include <iterator>

namespace SampleServer {

namespace {

/// The characters 0x80 to 0x9F of code page 1252; the five unassigned bytes map to the C1 controls.
constexpr char16_t upperControls[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                        0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                        0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                        0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

std::uint8_t codePageByte(char32_t c)
{
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF))
        return static_cast<std::uint8_t>(c);
    const auto *found = std::find(std::begin(upperControls), std::end(upperControls), c);
    return found == std::end(upperControls)
               ? std::uint8_t{'?'}
               : static_cast<std::uint8_t>(0x80 + (found - std::begin(upperControls)));
}

} // namespace

std::vector<std::uint8_t> toCodePage(std::string_view utf8)
{
    std::vector<std::uint8_t> bytes;
    bytes.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) {
        const char32_t c = nextCodePoint(utf8, at);
        bytes.push_back(codePageByte(c));
        if (c >= 0x10000) // a pair of UTF-16 units: two characters are lost
            bytes.push_back('?');
    }
    return bytes;
}

std::string fromCodePage(const std::uint8_t *bytes, std::size_t count)
{
    std::string text;
    text.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        appendUtf8(text, bytes[i] >= 0x80 && bytes[i] < 0xA0 ? upperControls[bytes[i] - 0x80] : bytes[i]);
    return text;
}

std::string reducedToCodePage(std::string_view utf8)
{
    if (isAscii(utf8))
        return std::string(utf8);
    const auto bytes = toCodePage(utf8);
    return fromCodePage(bytes.data(), bytes.size());
}

} // namespace SampleServer
