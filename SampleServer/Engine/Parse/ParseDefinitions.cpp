#include "Engine/Errors.h"
#include "Engine/Parse/DefinitionText.h"
#include "Engine/Parse/Parser.h"
#include "Engine/ScopedValue.h"

#include <charconv>
#include <utility>

// CREATE TABLE, its columns and constraints.
namespace SampleServer {

using namespace Ast;

/// Reads an expression that outlives the batch; `parse` says of which kind.
DefinedExpression Parser::keepExpression(ExpressionPtr (Parser::*parse)())
{
    const std::size_t start = m_at;
    const ScopedValue<bool> scalar(m_allowsSubqueries, false);
    DefinedExpression kept;
    kept.expression = (this->*parse)();
    kept.text = definitionText({m_tokens.data() + start, m_at - start});
    return kept;
}

StatementPtr Parser::parseCreateTable()
{
    CreateTable table;
    table.name = parseObjectName();
    parseTableElements(table);
    skipStorage();
    return statement(std::move(table));
}

/// ON filegroup, TEXTIMAGE_ON filegroup, WITH (options): where rows lie is SQLite's business.
void Parser::skipStorage()
{
    while (true) {
        if (isKeyword("ON") || isKeyword("TEXTIMAGE_ON") || isKeyword("FILESTREAM_ON")) {
            ++m_at;
            if (current().kind == TokenKind::String)
                ++m_at;
            else
                expectName();
        } else if (isKeyword("WITH") && ahead(1).source == "(" && ahead(2).keyword == "DATA_COMPRESSION") {
            ++m_at;
            skipParentheses();
        } else {
            return;
        }
    }
}

void Parser::skipParentheses()
{
    expectSymbol("(");
    for (int depth = 1; depth > 0; ++m_at) {
        if (current().kind == TokenKind::End)
            failHere();
        depth += isSymbol("(") ? 1 : isSymbol(")") ? -1 : 0;
    }
}

bool Parser::atTableConstraint() const
{
    const std::string &keyword = current().keyword;
    return keyword == "CONSTRAINT" || keyword == "PRIMARY" || keyword == "UNIQUE" || keyword == "FOREIGN" ||
           keyword == "CHECK" || keyword == "DEFAULT";
}

/// (columns and constraints), as CREATE TABLE, table types and table variables list them.
void Parser::parseTableElements(CreateTable &table)
{
    expectSymbol("(");
    do {
        if (isSymbol(")") && !table.columns.empty()) // a comma after the last column is allowed
            break;
        parseTableElement(table);
    } while (acceptSymbol(","));
    expectSymbol(")");
}

void Parser::parseTableElement(CreateTable &table)
{
    if (isKeyword("INDEX")) {
        require(Edition::Sql2022);
        parseTableIndex(table);
    } else if (atTableConstraint())
        parseTableConstraint(table);
    else
        parseColumnDefinition(table);
}

/// INDEX name (columns) within CREATE TABLE.
void Parser::parseTableIndex(CreateTable &table)
{
    expectKeyword("INDEX");
    CreateIndex index;
    index.name = expectName();
    index.unique = acceptKeyword("UNIQUE");
    index.clustered = acceptClustering().value_or(false);
    index.columns = parseKeyColumns();
    parseIndexTail(index);
    table.indexes.push_back(std::move(index));
}

void Parser::parseColumnDefinition(CreateTable &table)
{
    ColumnDefinition column;
    column.name = expectName();
    if (acceptKeyword("AS")) {
        column.computed = keepExpression(&Parser::parseExpression);
        if (isName() && current().keyword == "PERSISTED") {
            require(Edition::Sql2008);
            ++m_at;
            column.persisted = true;
        }
    } else if (current().kind == TokenKind::Word || current().kind == TokenKind::QuotedIdentifier) {
        column.type = parseTypeName();
    } else {
        fail(EngineError(173, 15, 1,
                         "The definition for column '" + column.name + "' must include a data type.",
                         ErrorEffect::EndsBatch),
             current().line);
    }
    std::string constraint;
    while (parseColumnProperty(column) || parseColumnConstraint(table, column.name, constraint)) {
    }
    table.columns.push_back(std::move(column));
}

/// Reads one of the properties that may follow a column's type; false where none follows.
bool Parser::parseColumnProperty(ColumnDefinition &column)
{
    if (acceptKeyword("NULL")) {
        column.nullable = true;
    } else if (isKeyword("NOT") && ahead(1).keyword == "NULL") {
        m_at += 2;
        column.nullable = false;
    } else if (isKeyword("NOT") && ahead(1).keyword == "FOR") {
        m_at += 2;
        expectKeyword("REPLICATION");
    } else if (acceptKeyword("IDENTITY")) {
        column.identity.emplace();
        if (acceptSymbol("(")) {
            column.identity->seed = parseSignedInteger();
            expectSymbol(",");
            column.identity->increment = parseSignedInteger();
            expectSymbol(")");
        }
    } else if (acceptKeyword("COLLATE")) {
        expectName();
    } else if (acceptKeyword("ROWGUIDCOL")) {
        column.rowGuid = true;
    } else if (isName() && isKeyword("SPARSE")) {
        require(Edition::Sql2008);
        ++m_at;
        column.sparse = true;
    } else {
        return false;
    }
    return true;
}

/// Likewise one of the constraints; `name` keeps what CONSTRAINT named until it comes.
bool Parser::parseColumnConstraint(CreateTable &table, const std::string &column, std::string &name)
{
    if (acceptKeyword("CONSTRAINT")) {
        name = expectName();
        return true;
    }
    Constraint constraint;
    constraint.column = column;
    constraint.name = std::exchange(name, {});
    if (acceptKeyword("DEFAULT")) {
        constraint.kind = ConstraintKind::Default;
        const ScopedValue<bool> constant(m_allowsColumns, false);
        constraint.expression = keepExpression(&Parser::parseExpression);
    } else if (isKeyword("PRIMARY") || isKeyword("UNIQUE")) {
        parseKey(constraint);
        if (!isSymbol("("))
            constraint.columns.push_back({column});
        else
            constraint.columns = parseKeyColumns();
        constraint.options = parseIndexOptions();
        skipStorage();
    } else if (acceptKeyword("FOREIGN")) {
        expectKeyword("KEY");
        parseReference(constraint);
    } else if (isKeyword("REFERENCES")) {
        parseReference(constraint);
    } else if (isKeyword("CHECK")) {
        parseCheck(constraint);
    } else {
        name = std::move(constraint.name);
        return false;
    }
    if (constraint.kind == ConstraintKind::ForeignKey)
        constraint.columns.push_back({column});
    table.constraints.push_back(std::move(constraint));
    return true;
}

void Parser::parseTableConstraint(CreateTable &table)
{
    Constraint constraint;
    if (acceptKeyword("CONSTRAINT"))
        constraint.name = expectName();
    if (isKeyword("PRIMARY") || isKeyword("UNIQUE")) {
        parseKey(constraint);
        constraint.columns = parseKeyColumns();
        constraint.options = parseIndexOptions();
        skipStorage();
    } else if (acceptKeyword("FOREIGN")) {
        expectKeyword("KEY");
        constraint.columns = parseKeyColumns();
        parseReference(constraint);
    } else if (acceptKeyword("DEFAULT")) {
        constraint.kind = ConstraintKind::Default;
        const ScopedValue<bool> constant(m_allowsColumns, false);
        constraint.expression = keepExpression(&Parser::parseExpression);
        expectKeyword("FOR");
        constraint.column = expectName();
    } else {
        parseCheck(constraint);
    }
    table.constraints.push_back(std::move(constraint));
}

/// PRIMARY KEY or UNIQUE, with its clustering.
void Parser::parseKey(Constraint &constraint)
{
    constraint.kind = ConstraintKind::Unique;
    if (acceptKeyword("PRIMARY")) {
        expectKeyword("KEY");
        constraint.kind = ConstraintKind::PrimaryKey;
    } else {
        expectKeyword("UNIQUE");
    }
    constraint.clustered = acceptClustering();
}

void Parser::parseCheck(Constraint &constraint)
{
    expectKeyword("CHECK");
    constraint.kind = ConstraintKind::Check;
    if (acceptKeyword("NOT")) {
        expectKeyword("FOR");
        expectKeyword("REPLICATION");
    }
    expectSymbol("(");
    constraint.expression = keepExpression(&Parser::parseCondition);
    expectSymbol(")");
}

void Parser::parseReference(Constraint &constraint)
{
    expectKeyword("REFERENCES");
    constraint.kind = ConstraintKind::ForeignKey;
    constraint.referenced = parseObjectName();
    if (isSymbol("("))
        for (KeyColumn &column : parseKeyColumns())
            constraint.referencedColumns.push_back(std::move(column.name));
    while (isKeyword("ON") || isKeyword("NOT")) {
        if (acceptKeyword("NOT")) {
            if (!isKeyword("FOR")) { // NOT NULL of the column
                --m_at;
                return;
            }
            expectKeyword("FOR");
            expectKeyword("REPLICATION");
            continue;
        }
        expectKeyword("ON");
        const bool onDelete = acceptKeyword("DELETE");
        if (!onDelete)
            expectKeyword("UPDATE");
        (onDelete ? constraint.onDelete : constraint.onUpdate) = parseReferentialAction();
    }
}

ReferentialAction Parser::parseReferentialAction()
{
    if (acceptKeyword("CASCADE"))
        return ReferentialAction::Cascade;
    if (acceptKeyword("SET")) {
        if (acceptKeyword("NULL"))
            return ReferentialAction::SetNull;
        expectKeyword("DEFAULT");
        return ReferentialAction::SetDefault;
    }
    if (!isKeyword("NO"))
        failHere();
    ++m_at;
    if (!isKeyword("ACTION"))
        failHere();
    ++m_at;
    return ReferentialAction::NoAction;
}

std::vector<KeyColumn> Parser::parseKeyColumns()
{
    std::vector<KeyColumn> columns;
    expectSymbol("(");
    do {
        KeyColumn column{expectName(), false};
        column.descending = acceptKeyword("DESC");
        if (!column.descending)
            acceptKeyword("ASC");
        columns.push_back(std::move(column));
    } while (acceptSymbol(","));
    expectSymbol(")");
    return columns;
}

std::optional<bool> Parser::acceptClustering()
{
    if (acceptKeyword("CLUSTERED"))
        return true;
    if (acceptKeyword("NONCLUSTERED"))
        return false;
    return {};
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

} // namespace SampleServer
