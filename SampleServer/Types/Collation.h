#pragma once

#include <string>
#include <string_view>

namespace SampleServer {

/// Compares two texts as the server's collation does: without regard to case and trailing blanks, with regard
/// to accents; punctuation before digits before letters. Negative, 0 or positive.
int compareText(std::string_view left, std::string_view right);

/// Whether `text` matches a LIKE pattern (% _ [a-z] [^x]); `escape` is 0 when there is no escape character.
bool matchesLike(std::string_view text, std::string_view pattern, char32_t escape);

/// Where a LIKE pattern first matches, in UTF-16 units from 1; 0 when it does not. As PATINDEX.
int patternIndex(std::string_view text, std::string_view pattern);

/// Where `part` is found in `text` at or after `start`, all in UTF-16 units from 0; npos when it is not
/// there.
std::size_t findText(std::u16string_view text, std::u16string_view part, std::size_t start);

/// The name as an identifier compares: without regard to case.
std::string foldedName(std::string_view name);

} // namespace SampleServer
