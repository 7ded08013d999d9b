#include "Types/Guid.h"
#include "Types/Text.h"

#include <random>

namespace SampleServer {

namespace {

/// The wire byte at each position of the text form.
constexpr std::size_t textOrder[16] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
constexpr std::size_t comparisonOrder[16] = {10, 11, 12, 13, 14, 15, 8, 9, 6, 7, 4, 5, 0, 1, 2, 3};

bool hyphenBefore(std::size_t byte)
{
    return byte == 4 || byte == 6 || byte == 8 || byte == 10;
}

} // namespace

std::string toString(const Guid &guid)
{
    std::string text;
    for (std::size_t i = 0; i < 16; ++i) {
        if (hyphenBefore(i))
            text += '-';
        text += toHex(&guid.bytes[textOrder[i]], 1);
    }
    return text;
}

std::optional<Guid> guidFromString(std::string_view text)
{
    const bool braces = !text.empty() && text.front() == '{';
    if (braces)
        text.remove_prefix(1);
    Guid guid;
    std::size_t at = 0;
    for (std::size_t i = 0; i < 16; ++i) {
        if (hyphenBefore(i) && (at >= text.size() || text[at++] != '-'))
            return {};
        if (at + 1 >= text.size())
            return {};
        const int high = hexDigit(text[at]), low = hexDigit(text[at + 1]);
        if (high < 0 || low < 0)
            return {};
        guid.bytes[textOrder[i]] = static_cast<std::uint8_t>(high * 16 + low);
        at += 2;
    }
    if (braces && (at >= text.size() || text[at] != '}'))
        return {};
    return guid;
}

Guid newGuid()
{
    thread_local std::mt19937_64 generator{std::random_device{}()};
    Guid guid;
    for (std::size_t i = 0; i < 16; i += 8) {
        const std::uint64_t bits = generator();
        for (std::size_t j = 0; j < 8; ++j)
            guid.bytes[i + j] = static_cast<std::uint8_t>(bits >> (8 * j));
    }
    guid.bytes[7] = static_cast<std::uint8_t>((guid.bytes[7] & 0x0F) | 0x40);
    guid.bytes[8] = static_cast<std::uint8_t>((guid.bytes[8] & 0x3F) | 0x80);
    return guid;
}

std::array<std::uint8_t, 16> sortableBytes(const Guid &guid)
{
    std::array<std::uint8_t, 16> bytes{};
    for (std::size_t i = 0; i < 16; ++i)
        bytes[i] = guid.bytes[comparisonOrder[i]];
    return bytes;
}

Guid guidFromSortableBytes(const std::uint8_t *bytes)
{
    Guid guid;
    for (std::size_t i = 0; i < 16; ++i)
        guid.bytes[comparisonOrder[i]] = bytes[i];
    return guid;
}

} // namespace SampleServer
