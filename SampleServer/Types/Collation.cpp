#include "Types/Collation.h"
#include "Types/Text.h"

#include <algorithm>
#include <cwctype>
#include <vector>

namespace SampleServer {

namespace {

/// The base letters of U+00C0 to U+017F; a blank for characters that are not accented letters.
constexpr std::string_view baseLetters = "AAAAAA CEEEEIIII NOOOOO OUUUUY  AAAAAA CEEEEIIII NOOOOO  UUUUY Y"
                                         "AAAAAACCCCCCCCDDD EEEEEEEEEEGGGGGGGGHHH IIIIIIIIII  JJKK LLLLLL "
                                         " L NNNNNN   OOOOOO  RRRRRRSSSSSSSSTTTTT UUUUUUUUUUUUWWYYYZZZZZZ ";

struct Weight
{
    char32_t primary = 0; ///< class and base letter
    char32_t accent = 0;  ///< the upper-case character itself, compared if the base letters are equal
};

char32_t upper(char32_t c)
{
    if (c < 0x80)
        return c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c;
    std::string text;
    appendUtf8(text, c);
    const std::string result = toUpper(text);
    std::size_t at = 0;
    return nextCodePoint(result, at);
}

Weight weightOf(char32_t c)
{
    const char32_t letter = upper(c);
    char32_t base = letter;
    if (letter >= 0xC0 && letter < 0xC0 + baseLetters.size() && baseLetters[letter - 0xC0] != ' ')
        base = static_cast<unsigned char>(baseLetters[letter - 0xC0]);
    constexpr char32_t classSize = 0x200000; // punctuation, then digits, then letters
    if (base >= '0' && base <= '9')
        return {classSize + base, letter};
    if ((base >= 'A' && base <= 'Z') || base >= 0xC0)
        return {2 * classSize + base, letter};
    return {base, letter};
}

int compareCodePoints(char32_t left, char32_t right)
{
    const Weight a = weightOf(left), b = weightOf(right);
    if (a.primary != b.primary)
        return a.primary < b.primary ? -1 : 1;
    return a.accent == b.accent ? 0 : a.accent < b.accent ? -1 : 1;
}

std::u32string decoded(std::string_view text)
{
    std::u32string result;
    for (std::size_t at = 0; at < text.size();)
        result += nextCodePoint(text, at);
    return result;
}

/// Matches one LIKE pattern against texts.
class LikeMatcher
{
public:
    LikeMatcher(std::u32string_view pattern, char32_t escape)
        : m_pattern(pattern)
        , m_escape(escape)
    {
    }

    /// `prefix` if the pattern may match only the beginning of the text.
    bool matches(std::u32string_view text, bool prefix = false) const
    {
        std::size_t p = 0, t = 0, starPattern = std::u32string_view::npos, starText = 0;
        while (true) {
            if (p < m_pattern.size() && m_pattern[p] == '%' && m_escape != '%') {
                starPattern = ++p;
                starText = t;
                continue;
            }
            if (p == m_pattern.size() && (t == text.size() || prefix))
                return true;
            if (t < text.size() && p < m_pattern.size()) {
                const std::size_t next = matchOne(p, text[t]);
                if (next != 0) {
                    p = next;
                    ++t;
                    continue;
                }
            }
            if (starPattern == std::u32string_view::npos || starText >= text.size())
                return false;
            p = starPattern;
            t = ++starText;
        }
    }

private:
    /// The position in the pattern after the element that matches `c`; 0 if it does not match.
    std::size_t matchOne(std::size_t p, char32_t c) const
    {
        if (m_escape != 0 && m_pattern[p] == m_escape && p + 1 < m_pattern.size())
            return compareCodePoints(m_pattern[p + 1], c) == 0 ? p + 2 : 0;
        if (m_pattern[p] == '_')
            return p + 1;
        if (m_pattern[p] == '[')
            return matchSet(p + 1, c);
        return compareCodePoints(m_pattern[p], c) == 0 ? p + 1 : 0;
    }

    std::size_t matchSet(std::size_t p, char32_t c) const
    {
        const bool negated = p < m_pattern.size() && m_pattern[p] == '^';
        if (negated)
            ++p;
        bool found = false;
        for (const std::size_t first = p; p < m_pattern.size() && (m_pattern[p] != ']' || p == first); ++p) {
            if (m_escape != 0 && m_pattern[p] == m_escape && p + 1 < m_pattern.size())
                ++p;
            if (p + 2 < m_pattern.size() && m_pattern[p + 1] == '-' && m_pattern[p + 2] != ']') {
                found = found || (compareCodePoints(m_pattern[p], c) <= 0 &&
                                  compareCodePoints(c, m_pattern[p + 2]) <= 0);
                p += 2;
            } else {
                found = found || compareCodePoints(m_pattern[p], c) == 0;
            }
        }
        return p < m_pattern.size() && found != negated ? p + 1 : 0;
    }

    std::u32string_view m_pattern;
    char32_t m_escape;
};

} // namespace

int compareText(std::string_view left, std::string_view right)
{
    left = trimmedRight(left);
    right = trimmedRight(right);
    int accents = 0;
    std::size_t l = 0, r = 0;
    while (l < left.size() && r < right.size()) {
        if (left[l] == right[r] && static_cast<unsigned char>(left[l]) < 0x80) {
            ++l;
            ++r;
            continue;
        }
        const Weight a = weightOf(nextCodePoint(left, l)), b = weightOf(nextCodePoint(right, r));
        if (a.primary != b.primary)
            return a.primary < b.primary ? -1 : 1;
        if (accents == 0 && a.accent != b.accent)
            accents = a.accent < b.accent ? -1 : 1;
    }
    if (l < left.size() || r < right.size())
        return l < left.size() ? 1 : -1;
    return accents;
}

bool matchesLike(std::string_view text, std::string_view pattern, char32_t escape)
{
    const std::u32string wideText = decoded(text), widePattern = decoded(pattern);
    const LikeMatcher matcher(widePattern, escape);
    return matcher.matches(wideText) || (text.ends_with(' ') && matcher.matches(decoded(trimmedRight(text))));
}

int patternIndex(std::string_view text, std::string_view pattern)
{
    const std::u32string wideText = decoded(text), widePattern = decoded(pattern);
    std::u32string_view inner = widePattern;
    const bool leading = inner.starts_with('%');
    if (leading)
        inner.remove_prefix(1);
    const bool trailing = inner.ends_with('%');
    if (trailing)
        inner.remove_suffix(1);
    const LikeMatcher matcher(inner, 0);
    int position = 1;
    for (std::size_t start = 0; start <= wideText.size(); ++start) {
        if (matcher.matches(std::u32string_view(wideText).substr(start), trailing))
            return position;
        if (!leading || start == wideText.size())
            break;
        position += wideText[start] < 0x10000 ? 1 : 2;
    }
    return 0;
}

std::size_t findText(std::u16string_view text, std::u16string_view part, std::size_t start)
{
    if (part.empty() || start > text.size())
        return std::u16string_view::npos;
    const auto found =
        std::search(text.begin() + static_cast<std::ptrdiff_t>(start), text.end(), part.begin(), part.end(),
                    [](char16_t a, char16_t b) { return a == b || compareCodePoints(a, b) == 0; });
    return found == text.end() ? std::u16string_view::npos : static_cast<std::size_t>(found - text.begin());
}

std::string foldedName(std::string_view name)
{
    return toUpper(name);
}

} // namespace SampleServer
