#include "Engine/Parse/DefinitionText.h"
#include "Types/Text.h"

#include <algorithm>

namespace SampleServer {

namespace {

bool isSymbol(const Token &token, std::string_view symbol)
{
    return token.kind == TokenKind::Symbol && token.value == symbol;
}

bool isNumber(const Token &token)
{
    return token.kind == TokenKind::Integer || token.kind == TokenKind::Decimal ||
           token.kind == TokenKind::Float || token.kind == TokenKind::Money ||
           token.kind == TokenKind::Binary;
}

/// Whether the first token opens a parenthesis that the last one closes.
bool isParenthesized(std::span<const Token> tokens)
{
    if (tokens.size() < 2 || !isSymbol(tokens.front(), "("))
        return false;
    int depth = 0;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        depth += isSymbol(tokens[i], "(") ? 1 : isSymbol(tokens[i], ")") ? -1 : 0;
        if (depth == 0)
            return i + 1 == tokens.size();
    }
    return false;
}

std::string bracketed(std::string_view name)
{
    std::string text = "[";
    for (const char c : name) {
        text += c;
        if (c == ']')
            text += c;
    }
    return text + ']';
}

bool takesLength(const std::string &word)
{
    static constexpr std::string_view types[] = {"BINARY",  "CHAR",      "DATETIME2", "DATETIMEOFFSET",
                                                 "DECIMAL", "NCHAR",     "NUMERIC",   "NVARCHAR",
                                                 "TIME",    "VARBINARY", "VARCHAR"};
    return std::find(std::begin(types), std::end(types), word) != std::end(types);
}

/// Whether a keyword before a parenthesis is a function or type name; others are operators.
bool isCallable(const Token &token)
{
    static constexpr std::string_view reservedFunctions[] = {"COALESCE", "CONVERT", "LEFT", "NULLIF",
                                                             "RIGHT"};
    if (token.kind == TokenKind::QuotedIdentifier)
        return true;
    return token.kind == TokenKind::Word &&
           (!isReservedWord(token.keyword) ||
            std::find(std::begin(reservedFunctions), std::end(reservedFunctions), token.keyword) !=
                std::end(reservedFunctions));
}

class Writer
{
public:
    explicit Writer(std::span<const Token> tokens)
        : m_tokens(tokens)
    {
    }

    std::string write()
    {
        for (m_at = 0; m_at < m_tokens.size(); ++m_at)
            add(m_tokens[m_at]);
        return m_text;
    }

private:
    bool followedBy(std::string_view symbol) const
    {
        return m_at + 1 < m_tokens.size() && isSymbol(m_tokens[m_at + 1], symbol);
    }

    void add(const Token &token)
    {
        if (token.kind == TokenKind::QuotedIdentifier)
            addName(token);
        else if (token.kind == TokenKind::Word)
            addWord(token);
        else if (isNumber(token))
            addNumber(std::string(token.source), m_at);
        else
            addSymbol(token);
    }

    void addName(const Token &token)
    {
        m_text += bracketed(token.value);
        m_inType = followedBy("(") && takesLength(toUpper(token.value));
    }

    /// Numbers are put in parentheses unless they already are. `first` is the position of the number or its
    /// sign.
    void addNumber(const std::string &number, std::size_t first)
    {
        const bool isEnclosed = first > 0 && isSymbol(m_tokens[first - 1], "(") && followedBy(")");
        const bool isArgument = first > 1 && isCallable(m_tokens[first - 2]);
        m_text += m_inType || (isEnclosed && !isArgument) ? number : '(' + number + ')';
    }

    void addWord(const Token &token)
    {
        const std::string &word = token.keyword;
        const bool called = followedBy("(") && isCallable(token);
        if (called && takesLength(word)) {
            m_text += bracketed(toLower(token.value));
            m_inType = true;
        } else if (called) {
            const bool qualified = m_at > 0 && isSymbol(m_tokens[m_at - 1], ".");
            m_text += qualified || followedBy(".") ? bracketed(token.value) : toLower(token.value);
        } else if (isReservedWord(word)) {
            addKeyword(word);
        } else {
            m_text += bracketed(token.value);
        }
    }

    void addKeyword(const std::string &word)
    {
        if (!m_text.empty() && m_text.back() != ' ' && m_text.back() != '(')
            m_text += ' ';
        m_text += word;
        const bool last = m_at + 1 == m_tokens.size();
        if (!last && !followedBy(")") && !followedBy(","))
            m_text += ' ';
    }

    void addSymbol(const Token &token)
    {
        if (isSymbol(token, ")"))
            m_inType = false;
        const bool minusBeforeNumber = isSymbol(token, "-") && m_at + 1 < m_tokens.size() &&
                                       isNumber(m_tokens[m_at + 1]) && startsOperand();
        if (minusBeforeNumber) { // a negative number is one literal
            const std::size_t sign = m_at++;
            return addNumber('-' + std::string(m_tokens[m_at].source), sign);
        }
        m_text += token.source;
    }

    bool startsOperand() const
    {
        if (m_at == 0)
            return true;
        const Token &before = m_tokens[m_at - 1];
        return before.kind == TokenKind::Symbol && before.value != ")";
    }

    std::span<const Token> m_tokens;
    std::size_t m_at = 0;
    std::string m_text;
    bool m_inType = false;
};

} // namespace

std::string definitionText(std::span<const Token> tokens)
{
    while (isParenthesized(tokens))
        tokens = tokens.subspan(1, tokens.size() - 2);
    return '(' + Writer(tokens).write() + ')';
}

} // namespace SampleServer
