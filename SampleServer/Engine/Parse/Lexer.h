#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace SampleServer {

enum class TokenKind {
    Word,             ///< a plain identifier or a keyword
    QuotedIdentifier, ///< [name] or "name"
    Variable,         ///< @name
    GlobalVariable,   ///< @@name
    String,           ///< 'text'
    UnicodeString,    ///< N'text'
    Integer,
    Decimal,
    Float,
    Money,
    Binary, ///< 0x0102
    Symbol, ///< operators and punctuation; operators of two characters are one token
    End,
};

struct Token
{
    TokenKind kind = TokenKind::End;
    std::string_view source; ///< the token's text in the batch; that of the last token for End
    std::string value;   ///< decoded: identifier or text without quotes, digits without 0x or currency sign
    std::string keyword; ///< an identifier in ASCII upper case; empty for other kinds
    int line = 1;        ///< where it starts, from 1
    std::size_t offset = 0; ///< in bytes from the start of the batch
};

/// Splits a batch (UTF-8) into tokens and skips comments, which nest. The tokens refer to `sql`. With
/// `quotedIdentifiers` off, "text" is a string. The last token is End. Throws EngineError 102, 103, 105, 113
/// and 1038.
std::vector<Token> tokenize(std::string_view sql, bool quotedIdentifiers);

/// Whether an identifier (in ASCII upper case) is reserved, so that it cannot be a name without quotes.
bool isReservedWord(std::string_view upperCaseWord);

} // namespace SampleServer
