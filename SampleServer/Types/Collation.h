#pragma once

#include <string>
#include <string_view>

namespace SampleServer {

/// Compares two texts by the server's collation: ignores case and trailing blanks, distinguishes accents;
/// punctuation sorts before digits before letters. Returns a negative number, 0 or a positive number.
int compareText(std::string_view left, std::string_view right);

/// Whether `text` matches a LIKE pattern (% _ [a-z] [^x]); `escape` is 0 if there is no escape character.
bool matchesLike(std::string_view text, std::string_view pattern, char32_t escape);

/// The first match of a LIKE pattern as in PATINDEX, in UTF-16 units from 1; 0 if there is none.
int patternIndex(std::string_view text, std::string_view pattern);

/// The position of `part` in `text` at or after `start`, all in UTF-16 units from 0; npos if not found.
std::size_t findText(std::u16string_view text, std::u16string_view part, std::size_t start);

/// Returns a name in the form used for case-insensitive comparison.
std::string foldedName(std::string_view name);

} // namespace SampleServer
