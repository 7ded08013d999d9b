#include "Engine/Parse/TokenReader.h"
#include "Engine/Errors.h"
#include "Types/Collation.h"

#include <charconv>

namespace SampleServer {

using namespace Ast;

std::string ObjectName::toString() const
{
    std::string text;
    for (const std::string &part : parts)
        text += (text.empty() && &part == &parts.front() ? "" : ".") + part;
    return text;
}

TokenReader::NestingGuard::NestingGuard(TokenReader &reader)
    : m_context(reader.m_context)
{
    constexpr int DeepestNesting = 1500;
    if (++m_context.nesting > DeepestNesting)
        reader.fail(
            EngineError(191, 15, 1,
                        "Some part of your SQL statement is nested too deeply. Rewrite the query or break it "
                        "up into smaller queries.",
                        ErrorEffect::EndsBatch),
            reader.current().line);
}

bool TokenReader::isSymbol(std::string_view symbol) const
{
    return current().kind == TokenKind::Symbol && current().value == symbol;
}

bool TokenReader::isName() const
{
    return current().kind == TokenKind::QuotedIdentifier ||
           (current().kind == TokenKind::Word && !isReservedWord(current().keyword));
}

bool TokenReader::atSubquery() const
{
    std::size_t depth = 0;
    while (ahead(depth).kind == TokenKind::Symbol && ahead(depth).value == "(")
        ++depth;
    return depth > 0 && ahead(depth).keyword == "SELECT";
}

bool TokenReader::acceptKeyword(std::string_view keyword)
{
    if (!isKeyword(keyword))
        return false;
    advance();
    return true;
}

bool TokenReader::acceptSymbol(std::string_view symbol)
{
    if (!isSymbol(symbol))
        return false;
    advance();
    return true;
}

void TokenReader::expectKeyword(std::string_view keyword)
{
    if (!acceptKeyword(keyword))
        failHere();
}

void TokenReader::expectSymbol(std::string_view symbol)
{
    if (!acceptSymbol(symbol))
        failHere();
}

std::string TokenReader::expectName()
{
    if (!isName())
        failHere();
    return take().value;
}

std::string TokenReader::expectVariable(int errorState)
{
    if (current().kind != TokenKind::Variable)
        failHere();
    const Token &token = take();
    if (!m_context.declared.contains(foldedName(token.value)))
        fail(Errors::mustDeclareVariable(token.value, errorState), token.line);
    return token.value;
}

void TokenReader::failHere() const
{
    const Token &token = current();
    const bool keyword = token.kind == TokenKind::Word && isReservedWord(token.keyword);
    const bool text = token.kind == TokenKind::String || token.kind == TokenKind::UnicodeString ||
                      token.kind == TokenKind::QuotedIdentifier;
    const std::string near = text ? token.value : std::string(token.source);
    if (!keyword && m_context.edition == Edition::Sql2000)
        fail(EngineError(170, 15, 1,
                         "Line " + std::to_string(token.line) + ": Incorrect syntax near '" + near + "'.",
                         ErrorEffect::EndsBatch),
             token.line);
    fail(keyword ? Errors::syntaxNearKeyword(near) : Errors::syntaxNear(near), token.line);
}

void TokenReader::require(Edition edition) const
{
    if (m_context.edition < edition)
        failHere();
}

void TokenReader::fail(EngineError error, int line) const
{
    error.message.line = line;
    error.message.procedure = m_context.module;
    error.hasLine = true;
    throw error;
}

void TokenReader::refuse(std::string_view construct) const
{
    fail(Errors::notSupported(construct), current().line);
}

ObjectName TokenReader::parseObjectName()
{
    ObjectName name;
    name.parts.push_back(expectName());
    while (isSymbol(".") && name.parts.size() < 4) {
        // A star after the dot belongs to the select list.
        if (ahead(1).kind == TokenKind::Symbol && ahead(1).value == "*")
            break;
        advance();
        if (isSymbol("."))
            name.parts.emplace_back();
        else if (current().kind == TokenKind::Word) // after a dot even a reserved word is a name
            name.parts.push_back(take().value);
        else
            name.parts.push_back(expectName());
    }
    return name;
}

/// The name of a table or of a table variable.
ObjectName TokenReader::parseTableName()
{
    const Token &token = current();
    if (token.kind != TokenKind::Variable) {
        m_context.references.push_back(parseObjectName());
        return m_context.references.back();
    }
    if (!m_context.declaredTables.contains(foldedName(token.value)) &&
        !m_context.mayBeTables.contains(foldedName(token.value)))
        fail(EngineError(1087, 15, 2, "Must declare the table variable \"" + token.value + "\".",
                         ErrorEffect::EndsBatch),
             token.line);
    advance();
    return {{token.value}, true};
}

TypeName TokenReader::parseTypeName()
{
    TypeName type;
    if (acceptKeyword("NATIONAL")) {
        const std::string base = expectName();
        type.name.parts = {"n" + base};
    } else if (acceptKeyword("DOUBLE")) {
        expectKeyword("PRECISION");
        type.name.parts = {"float"};
    } else {
        type.name = parseObjectName();
    }
    if ((foldedName(type.name.object()) == "CHARACTER" || foldedName(type.name.object()) == "CHAR" ||
         foldedName(type.name.object()) == "BINARY") &&
        acceptKeyword("VARYING"))
        type.name.parts = {foldedName(type.name.object()) == "BINARY" ? "varbinary" : "varchar"};
    if (!acceptSymbol("("))
        return type;
    do {
        if (isKeyword("MAX")) {
            require(Edition::Sql2008);
            advance();
            type.arguments.push_back(SqlType::Max);
            continue;
        }
        if (current().kind != TokenKind::Integer)
            failHere();
        int argument = 0;
        const std::string &digits = current().value;
        if (std::from_chars(digits.data(), digits.data() + digits.size(), argument).ec != std::errc())
            failHere();
        type.arguments.push_back(argument);
        advance();
    } while (acceptSymbol(","));
    expectSymbol(")");
    return type;
}

std::int64_t TokenReader::parseSignedInteger()
{
    const bool negative = acceptSymbol("-");
    if (current().kind != TokenKind::Integer)
        failHere();
    std::int64_t value = 0;
    const std::string &digits = current().value;
    if (std::from_chars(digits.data(), digits.data() + digits.size(), value).ec != std::errc())
        failHere();
    advance();
    return negative ? -value : value;
}

void TokenReader::skipParentheses()
{
    expectSymbol("(");
    for (int depth = 1; depth > 0; ++m_context.at) {
        if (current().kind == TokenKind::End)
            failHere();
        depth += isSymbol("(") ? 1 : isSymbol(")") ? -1 : 0;
    }
}

} // namespace SampleServer
