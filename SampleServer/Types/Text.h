#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace SampleServer {

// Text is UTF-8 in memory, but lengths and positions below count UTF-16 units, as T-SQL does. A lone
// surrogate is stored in its three-byte form, so that text split inside a pair can be joined again.

std::u16string toUtf16(std::string_view utf8);
std::string toUtf8(std::u16string_view utf16);
void appendUtf8(std::string &text, char32_t codePoint);
/// Decodes the code point at `at` and moves past it; each invalid byte counts as U+FFFD.
char32_t nextCodePoint(std::string_view text, std::size_t &at);

bool isAscii(std::string_view text);
std::size_t utf16Length(std::string_view text);
/// Returns up to `count` UTF-16 units from `start` (from 0).
std::string utf16Substring(std::string_view text, std::size_t start, std::size_t count);

std::string toUpper(std::string_view text);
std::string toLower(std::string_view text);
/// Converts only the 26 ASCII letters to upper case, for keywords and function names.
std::string asciiUpper(std::string_view text);
bool equalsIgnoringAsciiCase(std::string_view left, std::string_view right);

/// Converts to code page 1252, the code page of the server's collation. Unsupported characters become '?'.
std::vector<std::uint8_t> toCodePage(std::string_view utf8);
std::string fromCodePage(const std::uint8_t *bytes, std::size_t count);
/// Replaces characters not in code page 1252 with '?', as a conversion to varchar does.
std::string reducedToCodePage(std::string_view utf8);

std::string_view trimmedRight(std::string_view text);
std::string_view trimmed(std::string_view text);

/// Upper-case hexadecimal digits without "0x".
std::string toHex(const std::uint8_t *bytes, std::size_t count);
/// The value of a hexadecimal digit; -1 for other characters.
int hexDigit(char c);

} // namespace SampleServer
