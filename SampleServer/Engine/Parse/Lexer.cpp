#include "Engine/Parse/Lexer.h"
#include "Engine/Errors.h"
#include "Types/Text.h"

#include <algorithm>

namespace SampleServer {

namespace {

constexpr std::size_t MaxIdentifierLength = 128;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool startsIdentifier(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '#' ||
           static_cast<unsigned char>(c) >= 0x80;
}

bool continuesIdentifier(char c)
{
    return startsIdentifier(c) || isDigit(c) || c == '@' || c == '$';
}

class Lexer
{
public:
    Lexer(std::string_view sql, bool quotedIdentifiers)
        : m_sql(sql)
        , m_quotedIdentifiers(quotedIdentifiers)
    {
    }

    std::vector<Token> run()
    {
        std::vector<Token> tokens;
        while (skipBlanksAndComments())
            tokens.push_back(next());
        Token end;
        end.line = tokens.empty() ? 1 : tokens.back().line;
        end.source = tokens.empty() ? std::string_view() : tokens.back().source;
        end.offset = m_sql.size();
        tokens.push_back(std::move(end));
        return tokens;
    }

private:
    char at(std::size_t ahead = 0) const { return m_at + ahead < m_sql.size() ? m_sql[m_at + ahead] : '\0'; }

    void advance(std::size_t count)
    {
        for (const std::size_t end = std::min(m_at + count, m_sql.size()); m_at < end; ++m_at)
            m_line += m_sql[m_at] == '\n';
    }

    /// The number of bytes of the blank at the position, 0 if there is none. Includes the no-break space and
    /// the byte order mark.
    std::size_t blankSize() const
    {
        const char c = at();
        if (c == ' ' || (c >= '\t' && c <= '\r'))
            return 1;
        const std::string_view rest = m_sql.substr(m_at);
        if (rest.starts_with("\u00A0"))
            return 2;
        return rest.starts_with("\uFEFF") || rest.starts_with("\u3000") ? 3 : 0;
    }

    /// False at the end of the batch.
    bool skipBlanksAndComments()
    {
        while (m_at < m_sql.size()) {
            if (const std::size_t blank = blankSize())
                advance(blank);
            else if (at() == '-' && at(1) == '-')
                advance(std::min(m_sql.find('\n', m_at), m_sql.size()) - m_at);
            else if (at() == '/' && at(1) == '*')
                skipBlockComment();
            else
                return true;
        }
        return false;
    }

    void skipBlockComment()
    {
        const int line = m_line;
        int depth = 0;
        do {
            if (m_at >= m_sql.size())
                fail(Errors::missingEndComment(), line);
            const bool opens = at() == '/' && at(1) == '*', closes = at() == '*' && at(1) == '/';
            depth += opens ? 1 : closes ? -1 : 0;
            advance(opens || closes ? 2 : 1);
        } while (depth > 0);
    }

    [[noreturn]] static void fail(EngineError error, int line)
    {
        error.message.line = line;
        error.hasLine = true;
        throw error;
    }

    Token next()
    {
        Token token;
        token.line = m_line;
        token.offset = m_at;
        read(token);
        token.source = m_sql.substr(token.offset, m_at - token.offset);
        const bool isName = token.kind == TokenKind::Word || token.kind == TokenKind::QuotedIdentifier ||
                            token.kind == TokenKind::Variable;
        if (isName && token.value.size() > MaxIdentifierLength &&
            utf16Length(token.value) > MaxIdentifierLength)
            fail(Errors::identifierTooLong(utf16Substring(token.value, 0, MaxIdentifierLength)), token.line);
        return token;
    }

    void read(Token &token)
    {
        const char c = at();
        if ((c == 'N' || c == 'n') && at(1) == '\'') {
            advance(1);
            return readQuoted(token, TokenKind::UnicodeString, '\'');
        }
        if (startsIdentifier(c))
            return readWord(token);
        if (c == '@')
            return readVariable(token);
        if (c == '\'')
            return readQuoted(token, TokenKind::String, '\'');
        if (c == '"')
            return readQuoted(token, m_quotedIdentifiers ? TokenKind::QuotedIdentifier : TokenKind::String,
                              '"');
        if (c == '[')
            return readQuoted(token, TokenKind::QuotedIdentifier, ']');
        if (c == '0' && (at(1) == 'x' || at(1) == 'X'))
            return readBinary(token);
        if (isDigit(c) || (c == '.' && isDigit(at(1))))
            return readNumber(token);
        if (c == '$')
            return readMoney(token);
        readSymbol(token);
    }

    void readWord(Token &token)
    {
        const std::size_t start = m_at;
        while (m_at < m_sql.size() && continuesIdentifier(at()) && blankSize() == 0)
            advance(1);
        token.kind = TokenKind::Word;
        token.value = m_sql.substr(start, m_at - start);
        token.keyword = asciiUpper(token.value);
    }

    void readVariable(Token &token)
    {
        const std::size_t start = m_at;
        token.kind = at(1) == '@' ? TokenKind::GlobalVariable : TokenKind::Variable;
        advance(token.kind == TokenKind::GlobalVariable ? 2 : 1);
        while (m_at < m_sql.size() && continuesIdentifier(at()) && blankSize() == 0)
            advance(1);
        token.value = m_sql.substr(start, m_at - start);
    }

    /// The size of a backslash and the following line end, after which a constant continues; otherwise 0.
    std::size_t continuationSize() const
    {
        if (at() != '\\')
            return 0;
        return at(1) == '\n' ? 2 : at(1) == '\r' && at(2) == '\n' ? 3 : 0;
    }

    /// Reads up to the closing quote; a doubled one is a character of the text.
    void readQuoted(Token &token, TokenKind kind, char close)
    {
        token.kind = kind;
        const std::size_t start = m_at;
        advance(1);
        while (true) {
            if (m_at >= m_sql.size()) {
                const std::string_view rest = m_sql.substr(start + 1);
                fail(Errors::unclosedQuote(utf16Substring(rest, 0, MaxIdentifierLength)), token.line);
            }
            if (at() == close) {
                if (at(1) != close)
                    break;
                advance(1);
            }
            if (const std::size_t size = continuationSize();
                size > 0 && kind != TokenKind::QuotedIdentifier) {
                advance(size);
                continue;
            }
            token.value += at();
            advance(1);
        }
        advance(1);
        if (kind == TokenKind::QuotedIdentifier && token.value.empty())
            fail(Errors::emptyIdentifier(), token.line);
    }

    void readBinary(Token &token)
    {
        token.kind = TokenKind::Binary;
        advance(2);
        while (hexDigit(at()) >= 0 || (at() == '\\' && at(1) == '\n')) {
            if (at() != '\\')
                token.value += at();
            advance(at() == '\\' ? 2 : 1);
        }
        if (token.value.size() % 2 != 0)
            token.value.insert(0, 1, '0');
    }

    void readDigits(std::string &value)
    {
        while (isDigit(at())) {
            value += at();
            advance(1);
        }
    }

    void readNumber(Token &token)
    {
        token.kind = TokenKind::Integer;
        readDigits(token.value);
        if (at() == '.') {
            token.kind = TokenKind::Decimal;
            token.value += '.';
            advance(1);
            readDigits(token.value);
        }
        const bool sign = at(1) == '+' || at(1) == '-';
        if ((at() == 'e' || at() == 'E') &&
            (isDigit(at(1)) || (sign && isDigit(at(2))) || !continuesIdentifier(at(1)))) {
            token.kind = TokenKind::Float;
            token.value += 'e';
            advance(1);
            if (at() == '-' || at() == '+') {
                token.value += at();
                advance(1);
            }
            if (isDigit(at()))
                readDigits(token.value);
            else
                token.value += '0';
        }
    }

    void readMoney(Token &token)
    {
        token.kind = TokenKind::Money;
        advance(1);
        if (at() == '-' || at() == '+') {
            token.value += at();
            advance(1);
        }
        readDigits(token.value);
        if (at() == '.') {
            token.value += '.';
            advance(1);
            readDigits(token.value);
        }
    }

    void readSymbol(Token &token)
    {
        static constexpr std::string_view pairs[] = {
            "<=", ">=", "<>", "!=", "!<", "!>", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^=", "::"};
        token.kind = TokenKind::Symbol;
        const std::string_view two = m_sql.substr(m_at, 2);
        const bool pair = std::find(std::begin(pairs), std::end(pairs), two) != std::end(pairs);
        token.value = m_sql.substr(m_at, pair ? 2 : 1);
        advance(token.value.size());
    }

    std::string_view m_sql;
    bool m_quotedIdentifiers;
    std::size_t m_at = 0;
    int m_line = 1;
};

} // namespace

std::vector<Token> tokenize(std::string_view sql, bool quotedIdentifiers)
{
    return Lexer(sql, quotedIdentifiers).run();
}

} // namespace SampleServer
