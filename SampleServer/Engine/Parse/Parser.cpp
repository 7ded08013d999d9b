#include "Engine/Parse/Parser.h"
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

std::vector<StatementPtr> parseBatch(std::string_view sql, const ParserOptions &options)
{
    return Parser(sql, options).parseStatements();
}

NestingGuard::NestingGuard(Parser &parser)
    : m_parser(parser)
{
    if (++m_parser.m_nesting > 1500)
        m_parser.fail(
            EngineError(191, 15, 1,
                        "Some part of your SQL statement is nested too deeply. Rewrite the query or break it "
                        "up into smaller queries.",
                        ErrorEffect::EndsBatch),
            m_parser.current().line);
}

Parser::Parser(std::string_view sql, const ParserOptions &options)
    : m_sql(sql)
    , m_tokens(tokenize(sql, options.quotedIdentifiers))
    , m_edition(options.edition)
{
    for (const std::string &name : options.declaredVariables)
        m_declared.insert(foldedName(name));
}

bool Parser::isSymbol(std::string_view symbol) const
{
    return current().kind == TokenKind::Symbol && current().value == symbol;
}

bool Parser::isName() const
{
    return current().kind == TokenKind::QuotedIdentifier ||
           (current().kind == TokenKind::Word && !isReservedWord(current().keyword));
}

bool Parser::acceptKeyword(std::string_view keyword)
{
    if (!isKeyword(keyword))
        return false;
    ++m_at;
    return true;
}

bool Parser::acceptSymbol(std::string_view symbol)
{
    if (!isSymbol(symbol))
        return false;
    ++m_at;
    return true;
}

void Parser::expectKeyword(std::string_view keyword)
{
    if (!acceptKeyword(keyword))
        failHere();
}

void Parser::expectSymbol(std::string_view symbol)
{
    if (!acceptSymbol(symbol))
        failHere();
}

std::string Parser::expectName()
{
    if (!isName())
        failHere();
    return m_tokens[m_at++].value;
}

std::string Parser::expectVariable(int errorState)
{
    if (current().kind != TokenKind::Variable)
        failHere();
    const Token &token = m_tokens[m_at++];
    if (!m_declared.contains(foldedName(token.value)))
        fail(Errors::mustDeclareVariable(token.value, errorState), token.line);
    return token.value;
}

void Parser::failHere() const
{
    const Token &token = current();
    const bool keyword = token.kind == TokenKind::Word && isReservedWord(token.keyword);
    const bool text = token.kind == TokenKind::String || token.kind == TokenKind::UnicodeString ||
                      token.kind == TokenKind::QuotedIdentifier;
    const std::string near = text ? token.value : std::string(token.source);
    if (!keyword && m_edition == Edition::Sql2000)
        fail(EngineError(170, 15, 1,
                         "Line " + std::to_string(token.line) + ": Incorrect syntax near '" + near + "'.",
                         ErrorEffect::EndsBatch),
             token.line);
    fail(keyword ? Errors::syntaxNearKeyword(near) : Errors::syntaxNear(near), token.line);
}

void Parser::require(Edition edition) const
{
    if (m_edition < edition)
        failHere();
}

void Parser::fail(EngineError error, int line) const
{
    error.message.line = line;
    error.message.procedure = m_module;
    error.hasLine = true;
    throw error;
}

void Parser::refuse(std::string_view construct) const
{
    fail(Errors::notSupported(construct), current().line);
}

ObjectName Parser::parseObjectName()
{
    ObjectName name;
    name.parts.push_back(expectName());
    while (isSymbol(".") && name.parts.size() < 4) {
        // A star after the dot belongs to the select list.
        if (ahead(1).kind == TokenKind::Symbol && ahead(1).value == "*")
            break;
        ++m_at;
        if (isSymbol("."))
            name.parts.emplace_back();
        else if (current().kind == TokenKind::Word) // after a dot even a reserved word is a name
            name.parts.push_back(m_tokens[m_at++].value);
        else
            name.parts.push_back(expectName());
    }
    return name;
}

/// The name of a table or of a table variable.
ObjectName Parser::parseTableName()
{
    const Token &token = current();
    if (token.kind != TokenKind::Variable)
        return parseObjectName();
    if (!m_declaredTables.contains(foldedName(token.value)) &&
        !m_mayBeTables.contains(foldedName(token.value)))
        fail(EngineError(1087, 15, 2, "Must declare the table variable \"" + token.value + "\".",
                         ErrorEffect::EndsBatch),
             token.line);
    ++m_at;
    return {{token.value}, true};
}

TypeName Parser::parseTypeName()
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
            ++m_at;
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
        ++m_at;
    } while (acceptSymbol(","));
    expectSymbol(")");
    return type;
}

std::vector<StatementPtr> Parser::parseStatements()
{
    std::vector<StatementPtr> statements;
    while (true) {
        while (acceptSymbol(";")) {
        }
        if (current().kind == TokenKind::End)
            return statements;
        statements.push_back(parseStatement());
    }
}

} // namespace SampleServer
