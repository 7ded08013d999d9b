#pragma once

#include <string_view>

/// The number of characters at the start of `text` that a text constant contains twice: an apostrophe, or a
/// backslash with the line end that follows it. The server drops a backslash before a line end together with
/// the line end; after the doubling it drops the second backslash and the first line end only.
template <typename Char>
constexpr std::size_t MSSQLDoubledSize(std::basic_string_view<Char> text)
{
    const auto at = [&](std::size_t index) { return index < text.size() ? text[index] : Char(); };
    if (at(0) == '\'')
        return 1;
    if (at(0) != '\\')
        return 0;
    return at(1) == '\n' ? 2 : at(1) == '\r' && at(2) == '\n' ? 3 : 0;
}

/// Passes the characters between the apostrophes of a constant with this value to `append`, in pieces of the
/// type std::basic_string_view<Char>.
template <typename Char, typename Append>
void MSSQLWriteConstantText(std::basic_string_view<Char> text, const Append &append)
{
    std::size_t written = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (const std::size_t size = MSSQLDoubledSize(text.substr(i)); size > 0) {
            append(text.substr(written, i + 1 - written));
            append(text.substr(i, size));
            written = i + 1;
        }
    }
    append(text.substr(written));
}
