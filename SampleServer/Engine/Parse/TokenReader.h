#pragma once

#include "Engine/EngineError.h"
#include "Engine/Parse/AstStatements.h"
#include "Engine/Parse/ParseContext.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

namespace SampleServer {

/// Base class of the parsers: reads tokens and names at the current position.
class TokenReader
{
protected:
    explicit TokenReader(ParseContext &context)
        : m_context(context)
    {
    }

    const Token &current() const { return m_context.tokens[m_context.at]; }
    const Token &ahead(std::size_t count) const
    {
        return m_context.tokens[std::min(m_context.at + count, m_context.tokens.size() - 1)];
    }
    void advance(std::size_t count = 1) { m_context.at += count; }
    /// Returns the current token and moves to the next one. Must not be called at the end.
    const Token &take() { return m_context.tokens[m_context.at++]; }
    bool isKeyword(std::string_view keyword) const { return current().keyword == keyword; }
    bool isSymbol(std::string_view symbol) const;
    bool isName() const;
    bool atSubquery() const;
    bool acceptKeyword(std::string_view keyword);
    bool acceptSymbol(std::string_view symbol);
    void expectKeyword(std::string_view keyword);
    void expectSymbol(std::string_view symbol);
    std::string expectName();
    std::string expectVariable(int errorState = 2);
    [[noreturn]] void failHere() const;
    /// Throws at the current token if the server's edition is earlier than this one.
    void require(Edition edition) const;
    [[noreturn]] void fail(EngineError error, int line) const;
    [[noreturn]] void refuse(std::string_view construct) const;
    Ast::ObjectName parseObjectName();
    Ast::ObjectName parseTableName();
    Ast::TypeName parseTypeName();
    std::int64_t parseSignedInteger();
    void skipParentheses();

    /// Creates an expression node. Throws EngineError 191 if it would be nested too deeply.
    template <typename Node>
    Ast::ExpressionPtr make(Node node, std::initializer_list<const Ast::Expression *> children = {}) const;
    template <typename Node>
    Ast::StatementPtr statement(Node node) const;

    /// Counts the nesting depth of the parsers and throws error 191 before the stack could overflow.
    class NestingGuard
    {
    public:
        explicit NestingGuard(TokenReader &reader);
        ~NestingGuard() { --m_context.nesting; }
        NestingGuard(const NestingGuard &) = delete;
        NestingGuard &operator=(const NestingGuard &) = delete;

    private:
        ParseContext &m_context;
    };

    ParseContext &m_context;
};

template <typename Node>
Ast::ExpressionPtr TokenReader::make(Node node, std::initializer_list<const Ast::Expression *> children) const
{
    auto expression = std::make_unique<Ast::Expression>();
    expression->line = current().line;
    for (const Ast::Expression *child : children)
        expression->depth = std::max(expression->depth, child ? child->depth + 1 : 0);
    if (expression->depth > 900)
        fail(
            EngineError(
                191, 15, 1,
                "Some part of your SQL statement is nested too deeply. Rewrite the query or break it up into "
                "smaller queries.",
                ErrorEffect::EndsBatch),
            current().line);
    expression->node = std::move(node);
    return expression;
}

template <typename Node>
Ast::StatementPtr TokenReader::statement(Node node) const
{
    auto result = std::make_unique<Ast::Statement>();
    result->line = m_context.statementLine;
    result->node = std::move(node);
    return result;
}

} // namespace SampleServer
