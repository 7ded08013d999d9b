#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace SampleServer {

// Text is UTF-8 in memory, but T-SQL counts UTF-16 units: lengths and positions below do as well.
// A lone surrogate is kept as its three-byte form, so that text cut inside a pair can be joined again.

std::u16string toUtf16(std::string_view utf8);
std::string toUtf8(std::u16string_view utf16);
void appendUtf8(std::string &text, char32_t codePoint);
/// Decodes the code point at `at` and moves past it; bytes that are no UTF-8 count as U+FFFD each.
char32_t nextCodePoint(std::string_view text, std::size_t &at);

bool isAscii(std::string_view text);
std::size_t utf16Length(std::string_view text);
/// Up to `count` UTF-16 units from `start` (from 0).
std::string utf16Substring(std::string_view text, std::size_t start, std::size_t count);

std::string toUpper(std::string_view text);
std::string toLower(std::string_view text);
/// Upper case of the 26 ASCII letters only, as keywords and function names need it.
std::string asciiUpper(std::string_view text);
bool equalsIgnoringAsciiCase(std::string_view left, std::string_view right);

/// Code page 1252, the code page of the server's collation. Characters it lacks become '?'.
std::vector<std::uint8_t> toCodePage(std::string_view utf8);
std::string fromCodePage(const std::uint8_t *bytes, std::size_t count);
/// The text with what code page 1252 lacks replaced by '?': what is left when it becomes varchar.
std::string reducedToCodePage(std::string_view utf8);

std::string_view trimmedRight(std::string_view text);
std::string_view trimmed(std::string_view text);

/// "0x" is not written; upper case digits.
std::string toHex(const std::uint8_t *bytes, std::size_t count);
/// The value of a hexadecimal digit, -1 for another character.
int hexDigit(char c);

} // namespace SampleServer
