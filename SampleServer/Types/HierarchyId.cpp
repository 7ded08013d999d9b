#include "Types/HierarchyId.h"

#include <algorithm>
#include <charconv>

namespace SampleServer {

namespace {

/// The encoding of labels in a range: fixed bits, x for the bits of (label - first), T for the terminator,
/// which is 1 at the end of a level and 0 before a dot.
struct LabelPattern
{
    std::int64_t first;
    std::int64_t last;
    std::string_view bits;
};

constexpr LabelPattern patterns[] = {
    {-4294971464, -4169, "000101xxxxxxxxxxxxxxxxxxx0xxxxxx0xxx0x1xxxT"},
    {-4168, -73, "000110xxxxx0xxx0x1xxxT"},
    {-72, -9, "0010xx0x1xxxT"},
    {-8, -1, "00111xxxT"},
    {0, 3, "01xxT"},
    {4, 7, "100xxT"},
    {8, 15, "101xxxT"},
    {16, 79, "110xx0x1xxxT"},
    {80, 1103, "1110xxx0xxx0x1xxxT"},
    {1104, 5199, "11110xxxxx0xxx0x1xxxT"},
    {5200, 4294972495, "111110xxxxxxxxxxxxxxxxxxx0xxxxxx0xxx0x1xxxT"},
};

bool appendLabel(std::string &bits, std::int64_t label, bool endsLevel)
{
    // A label before a dot is written as its successor, so that it sorts behind the label itself.
    const std::int64_t written = endsLevel ? label : label + 1;
    const auto *pattern =
        std::find_if(std::begin(patterns), std::end(patterns),
                     [written](const LabelPattern &p) { return p.first <= written && written <= p.last; });
    if (pattern == std::end(patterns))
        return false;
    auto rest = std::count(pattern->bits.begin(), pattern->bits.end(), 'x');
    for (const char c : pattern->bits) {
        if (c == 'x')
            bits += static_cast<char>('0' + ((written - pattern->first) >> --rest & 1));
        else
            bits += c == 'T' ? (endsLevel ? '1' : '0') : c;
    }
    return true;
}

bool fits(const LabelPattern &pattern, std::string_view bits)
{
    if (bits.size() < pattern.bits.size())
        return false;
    return std::equal(pattern.bits.begin(), pattern.bits.end(), bits.begin(),
                      [](char p, char bit) { return p == 'x' || p == 'T' || p == bit; });
}

} // namespace

std::optional<Bytes> hierarchyIdFromString(std::string_view text)
{
    if (text.empty() || text.front() != '/' || text.back() != '/')
        return {};
    std::string bits;
    const char *at = text.data() + 1, *const end = text.data() + text.size();
    while (at < end) {
        std::int64_t label = 0;
        const auto [next, error] = std::from_chars(at, end, label);
        if (error != std::errc() || (*next != '/' && *next != '.') || !appendLabel(bits, label, *next == '/'))
            return {};
        at = next + 1;
    }
    Bytes bytes((bits.size() + 7) / 8, 0);
    for (std::size_t i = 0; i < bits.size(); ++i)
        bytes[i / 8] |= static_cast<std::uint8_t>((bits[i] - '0') << (7 - i % 8));
    return bytes;
}

std::string hierarchyIdToString(const Bytes &bytes)
{
    std::string allBits;
    for (const std::uint8_t byte : bytes)
        for (int bit = 7; bit >= 0; --bit)
            allBits += static_cast<char>('0' + (byte >> bit & 1));
    std::string text = "/";
    std::string_view bits = allBits;
    while (bits.find('1') != std::string_view::npos) {
        const auto *pattern = std::find_if(std::begin(patterns), std::end(patterns),
                                           [bits](const LabelPattern &p) { return fits(p, bits); });
        if (pattern == std::end(patterns))
            break;
        std::int64_t label = 0;
        for (std::size_t i = 0; i < pattern->bits.size(); ++i)
            if (pattern->bits[i] == 'x')
                label = label * 2 + (bits[i] - '0');
        const bool endsLevel = bits[pattern->bits.size() - 1] == '1';
        text += std::to_string(pattern->first + label - (endsLevel ? 0 : 1)) + (endsLevel ? '/' : '.');
        bits.remove_prefix(pattern->bits.size());
    }
    return text;
}

} // namespace SampleServer
