#include "Types/Text.h"

#include <algorithm>
#include <clocale>
#include <cwctype>
#include <locale.h>

namespace SampleServer {

namespace {

/// A locale in which the wide character functions support all of Unicode, independent of the process's
/// locale.
locale_t unicodeLocale()
{
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return locale;
}

template <typename Convert>
std::string mapped(std::string_view text, Convert convert)
{
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();)
        appendUtf8(result, convert(nextCodePoint(text, at)));
    return result;
}

} // namespace

void appendUtf8(std::string &text, char32_t c)
{
    if (c < 0x80) {
        text += static_cast<char>(c);
    } else if (c < 0x800) {
        text += static_cast<char>(0xC0 | (c >> 6));
        text += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        text += static_cast<char>(0xE0 | (c >> 12));
        text += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        text += static_cast<char>(0xF0 | (c >> 18));
        text += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        text += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (c & 0x3F));
    }
}

char32_t nextCodePoint(std::string_view text, std::size_t &at)
{
    const auto first = static_cast<unsigned char>(text[at++]);
    if (first < 0x80)
        return first;
    const int following = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : first >= 0xC0 ? 1 : 0;
    if (following == 0 || first > 0xF4 || at + static_cast<std::size_t>(following) > text.size())
        return 0xFFFD;
    char32_t c = first & (0x3Fu >> following);
    for (int i = 0; i < following; ++i) {
        const auto next = static_cast<unsigned char>(text[at + static_cast<std::size_t>(i)]);
        if ((next & 0xC0) != 0x80)
            return 0xFFFD;
        c = (c << 6) | (next & 0x3F);
    }
    at += static_cast<std::size_t>(following);
    return c;
}

std::u16string toUtf16(std::string_view utf8)
{
    std::u16string result;
    result.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) {
        const char32_t c = nextCodePoint(utf8, at);
        if (c < 0x10000) {
            result += static_cast<char16_t>(c);
        } else {
            result += static_cast<char16_t>(0xD7C0 + (c >> 10));
            result += static_cast<char16_t>(0xDC00 + (c & 0x3FF));
        }
    }
    return result;
}

std::string toUtf8(std::u16string_view utf16)
{
    std::string result;
    result.reserve(utf16.size());
    for (std::size_t i = 0; i < utf16.size(); ++i) {
        char32_t c = utf16[i];
        if ((c & 0xFC00) == 0xD800 && i + 1 < utf16.size() && (utf16[i + 1] & 0xFC00) == 0xDC00)
            c = 0x10000 + ((c & 0x3FF) << 10) + (utf16[++i] & 0x3FFu);
        appendUtf8(result, c);
    }
    return result;
}

bool isAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::size_t utf16Length(std::string_view text)
{
    if (isAscii(text))
        return text.size();
    std::size_t length = 0;
    for (std::size_t at = 0; at < text.size();)
        length += nextCodePoint(text, at) < 0x10000 ? 1 : 2;
    return length;
}

std::string utf16Substring(std::string_view text, std::size_t start, std::size_t count)
{
    if (isAscii(text))
        return start < text.size() ? std::string(text.substr(start, count)) : std::string();
    const std::u16string units = toUtf16(text);
    return start < units.size() ? toUtf8(std::u16string_view(units).substr(start, count)) : std::string();
}

std::string toUpper(std::string_view text)
{
    if (isAscii(text))
        return asciiUpper(text);
    return mapped(text, [](char32_t c) {
        return static_cast<char32_t>(towupper_l(static_cast<wint_t>(c), unicodeLocale()));
    });
}

std::string toLower(std::string_view text)
{
    return mapped(text, [](char32_t c) {
        return static_cast<char32_t>(towlower_l(static_cast<wint_t>(c), unicodeLocale()));
    });
}

std::string asciiUpper(std::string_view text)
{
    std::string result(text);
    for (char &c : result)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return result;
}

bool equalsIgnoringAsciiCase(std::string_view left, std::string_view right)
{
    return left.size() == right.size() && asciiUpper(left) == asciiUpper(right);
}

std::string_view trimmedRight(std::string_view text)
{
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

std::string_view trimmed(std::string_view text)
{
    text = trimmedRight(text);
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    return text;
}

std::string toHex(const std::uint8_t *bytes, std::size_t count)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(count * 2);
    for (std::size_t i = 0; i < count; ++i) {
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 15];
    }
    return text;
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

} // namespace SampleServer
