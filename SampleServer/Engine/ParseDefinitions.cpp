#include "Engine/Errors.h"
#include "Engine/Parser.h"

#include <charconv>
#include <utility>

namespace SampleServer {

using namespace Ast;

StatementPtr Parser::parseCreate()
{
    expectKeyword("CREATE");
    if (acceptKeyword("DATABASE")) {
        const std::string name = expectName();
        if (isKeyword("ON") || isKeyword("FOR") || isKeyword("WITH"))
            refuse("CREATE DATABASE with files or options");
        if (acceptKeyword("COLLATE"))
            expectName();
        return statement(CreateDatabase{name});
    }
    if (!isKeyword("TABLE"))
        refuse("CREATE " + current().keyword);
    expectKeyword("TABLE");
    CreateTable table;
    table.name = parseObjectName();
    parseTableElements(table);
    if (acceptKeyword("ON"))
        expectName(); // the file group
    return statement(std::move(table));
}

/// (columns and constraints), as CREATE TABLE and table variables list them.
void Parser::parseTableElements(CreateTable &table)
{
    expectSymbol("(");
    do {
        if (isSymbol(")") && !table.columns.empty()) // a comma after the last column is allowed
            break;
        const std::string &keyword = current().keyword;
        if (keyword == "CONSTRAINT" || keyword == "PRIMARY" || keyword == "UNIQUE" || keyword == "FOREIGN" ||
            keyword == "CHECK" || keyword == "INDEX")
            parseTableConstraint(table);
        else
            parseColumnDefinition(table);
    } while (acceptSymbol(","));
    expectSymbol(")");
}

void Parser::parseColumnDefinition(CreateTable &table)
{
    ColumnDefinition column;
    column.name = expectName();
    if (acceptKeyword("AS")) {
        column.computed = parseExpression();
        if (isName() && current().keyword == "PERSISTED")
            ++m_at;
    } else if (current().kind == TokenKind::Word || current().kind == TokenKind::QuotedIdentifier) {
        column.type = parseTypeName();
    } else {
        fail(EngineError(173, 15, 1,
                         "The definition for column '" + column.name + "' must include a data type.",
                         ErrorEffect::EndsBatch),
             current().line);
    }
    std::string constraint;
    while (parseColumnProperty(table, column, constraint)) {
    }
    table.columns.push_back(std::move(column));
}

/// Reads one of the properties that may follow a column's type; false where none follows.
bool Parser::parseColumnProperty(CreateTable &table, ColumnDefinition &column, std::string &constraint)
{
    if (acceptKeyword("NULL")) {
        column.nullable = true;
    } else if (acceptKeyword("NOT")) {
        if (isKeyword("FOR"))
            refuse("NOT FOR REPLICATION");
        expectKeyword("NULL");
        column.nullable = false;
    } else if (acceptKeyword("IDENTITY")) {
        column.identity.emplace();
        if (acceptSymbol("(")) {
            column.identity->seed = parseSignedInteger();
            expectSymbol(",");
            column.identity->increment = parseSignedInteger();
            expectSymbol(")");
        }
    } else if (acceptKeyword("DEFAULT")) {
        column.defaultValue = parseExpression();
    } else if (acceptKeyword("CONSTRAINT")) {
        constraint = expectName();
    } else if (isKeyword("PRIMARY") || isKeyword("UNIQUE")) {
        KeyDefinition key{std::exchange(constraint, {}), isKeyword("PRIMARY"), {column.name}};
        ++m_at;
        if (key.primary)
            expectKeyword("KEY");
        skipClustering();
        table.keys.push_back(std::move(key));
    } else if (acceptKeyword("COLLATE")) {
        expectName();
    } else if (isKeyword("REFERENCES") || isKeyword("FOREIGN")) {
        refuse("foreign keys");
    } else if (isKeyword("CHECK")) {
        refuse("CHECK constraints");
    } else if (!acceptKeyword("ROWGUIDCOL") && !(isName() && acceptKeyword("SPARSE"))) {
        return false;
    }
    return true;
}

void Parser::parseTableConstraint(CreateTable &table)
{
    KeyDefinition key;
    if (acceptKeyword("CONSTRAINT"))
        key.name = expectName();
    if (acceptKeyword("PRIMARY")) {
        expectKeyword("KEY");
        key.primary = true;
    } else if (isKeyword("FOREIGN")) {
        refuse("foreign keys");
    } else if (isKeyword("CHECK")) {
        refuse("CHECK constraints");
    } else if (isKeyword("INDEX")) {
        refuse("indexes in CREATE TABLE");
    } else {
        expectKeyword("UNIQUE");
    }
    skipClustering();
    key.columns = parseKeyColumns();
    table.keys.push_back(std::move(key));
}

std::vector<std::string> Parser::parseKeyColumns()
{
    std::vector<std::string> columns;
    expectSymbol("(");
    do {
        columns.push_back(expectName());
        if (!acceptKeyword("ASC"))
            acceptKeyword("DESC");
    } while (acceptSymbol(","));
    expectSymbol(")");
    return columns;
}

void Parser::skipClustering()
{
    if (!acceptKeyword("CLUSTERED"))
        acceptKeyword("NONCLUSTERED");
}

std::int64_t Parser::parseSignedInteger()
{
    const bool negative = acceptSymbol("-");
    if (current().kind != TokenKind::Integer)
        failHere();
    std::int64_t value = 0;
    const std::string &digits = current().value;
    if (std::from_chars(digits.data(), digits.data() + digits.size(), value).ec != std::errc())
        failHere();
    ++m_at;
    return negative ? -value : value;
}

StatementPtr Parser::parseDrop()
{
    expectKeyword("DROP");
    const bool database = isKeyword("DATABASE");
    if (!database && !isKeyword("TABLE"))
        refuse("DROP " + current().keyword);
    ++m_at;
    const bool ifExists = acceptKeyword("IF");
    if (ifExists)
        expectKeyword("EXISTS");
    if (database) {
        DropDatabase node{{}, ifExists};
        do
            node.names.push_back(expectName());
        while (acceptSymbol(","));
        return statement(std::move(node));
    }
    DropTable node{{}, ifExists};
    do
        node.names.push_back(parseObjectName());
    while (acceptSymbol(","));
    return statement(std::move(node));
}

StatementPtr Parser::parseTruncate()
{
    expectKeyword("TRUNCATE");
    expectKeyword("TABLE");
    return statement(TruncateTable{parseObjectName()});
}

} // namespace SampleServer
