#include "Engine/Parse/TableParser.h"
#include "Engine/Errors.h"
#include "Engine/Parse/DefinitionText.h"
#include "Engine/Parse/Parsers.h"
#include "Engine/ScopedValue.h"
#include "Types/Collation.h"

#include <charconv>
#include <utility>

namespace SampleServer {

using namespace Ast;

StatementPtr TableParser::parseCreateTable()
{
    CreateTable table;
    table.name = parseObjectName();
    parseTableElements(table);
    skipStorage();
    return statement(std::move(table));
}

/// (columns and constraints), as CREATE TABLE, table types and table variables list them.
void TableParser::parseTableElements(CreateTable &table)
{
    expectSymbol("(");
    do {
        if (isSymbol(")") && !table.columns.empty()) // a comma after the last column is allowed
            break;
        parseTableElement(table);
    } while (acceptSymbol(","));
    expectSymbol(")");
}

void TableParser::parseTableConstraint(CreateTable &table)
{
    Constraint constraint;
    if (acceptKeyword("CONSTRAINT"))
        constraint.name = expectName();
    if (isKeyword("PRIMARY") || isKeyword("UNIQUE")) {
        parseKey(constraint);
        constraint.columns = parseKeyColumns();
        constraint.options = m_parsers.definitions.parseIndexOptions();
        skipStorage();
    } else if (acceptKeyword("FOREIGN")) {
        expectKeyword("KEY");
        constraint.columns = parseKeyColumns();
        parseReference(constraint);
    } else if (acceptKeyword("DEFAULT")) {
        constraint.kind = ConstraintKind::Default;
        const ScopedValue<bool> constant(m_context.allowsColumns, false);
        constraint.expression = m_parsers.expressions.keepExpression(&ExpressionParser::parseExpression);
        expectKeyword("FOR");
        constraint.column = expectName();
    } else {
        parseCheck(constraint);
    }
    table.constraints.push_back(std::move(constraint));
}

void TableParser::parseColumnDefinition(CreateTable &table)
{
    ColumnDefinition column;
    column.name = expectName();
    if (acceptKeyword("AS")) {
        column.computed = m_parsers.expressions.keepExpression(&ExpressionParser::parseExpression);
        if (isName() && current().keyword == "PERSISTED") {
            require(Edition::Sql2008);
            advance();
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

void TableParser::parseTableElement(CreateTable &table)
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
void TableParser::parseTableIndex(CreateTable &table)
{
    expectKeyword("INDEX");
    CreateIndex index;
    index.name = expectName();
    index.unique = acceptKeyword("UNIQUE");
    index.clustered = acceptClustering().value_or(false);
    index.columns = parseKeyColumns();
    m_parsers.definitions.parseIndexTail(index);
    table.indexes.push_back(std::move(index));
}

bool TableParser::atTableConstraint() const
{
    const std::string &keyword = current().keyword;
    return keyword == "CONSTRAINT" || keyword == "PRIMARY" || keyword == "UNIQUE" || keyword == "FOREIGN" ||
           keyword == "CHECK" || keyword == "DEFAULT";
}

std::vector<KeyColumn> TableParser::parseKeyColumns()
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

std::optional<bool> TableParser::acceptClustering()
{
    if (acceptKeyword("CLUSTERED"))
        return true;
    if (acceptKeyword("NONCLUSTERED"))
        return false;
    return {};
}

/// ON filegroup, TEXTIMAGE_ON filegroup, WITH (options): parsed and ignored, since SQLite stores the rows.
void TableParser::skipStorage()
{
    while (true) {
        if (isKeyword("ON") || isKeyword("TEXTIMAGE_ON") || isKeyword("FILESTREAM_ON")) {
            advance();
            if (current().kind == TokenKind::String)
                advance();
            else
                expectName();
        } else if (isKeyword("WITH") && ahead(1).source == "(" && ahead(2).keyword == "DATA_COMPRESSION") {
            advance();
            skipParentheses();
        } else {
            return;
        }
    }
}

/// Parses one optional property after a column's type; false if there is none.
bool TableParser::parseColumnProperty(ColumnDefinition &column)
{
    if (acceptKeyword("NULL")) {
        column.nullable = true;
    } else if (isKeyword("NOT") && ahead(1).keyword == "NULL") {
        advance(2);
        column.nullable = false;
    } else if (isKeyword("NOT") && ahead(1).keyword == "FOR") {
        advance(2);
        expectKeyword("REPLICATION");
    } else if (acceptKeyword("IDENTITY")) {
        column.identity = Ast::ColumnDefinition::Identity{};
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
        advance();
        column.sparse = true;
    } else {
        return false;
    }
    return true;
}

/// Parses one constraint, likewise; `name` contains the name after CONSTRAINT until it is used.
bool TableParser::parseColumnConstraint(CreateTable &table, const std::string &column, std::string &name)
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
        const ScopedValue<bool> constant(m_context.allowsColumns, false);
        constraint.expression = m_parsers.expressions.keepExpression(&ExpressionParser::parseExpression);
    } else if (isKeyword("PRIMARY") || isKeyword("UNIQUE")) {
        parseKey(constraint);
        if (!isSymbol("("))
            constraint.columns.push_back({column});
        else
            constraint.columns = parseKeyColumns();
        constraint.options = m_parsers.definitions.parseIndexOptions();
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

/// PRIMARY KEY or UNIQUE, with its clustering.
void TableParser::parseKey(Constraint &constraint)
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

void TableParser::parseCheck(Constraint &constraint)
{
    expectKeyword("CHECK");
    constraint.kind = ConstraintKind::Check;
    if (acceptKeyword("NOT")) {
        expectKeyword("FOR");
        expectKeyword("REPLICATION");
    }
    expectSymbol("(");
    constraint.expression = m_parsers.expressions.keepExpression(&ExpressionParser::parseCondition);
    expectSymbol(")");
}

void TableParser::parseReference(Constraint &constraint)
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
                --m_context.at;
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

ReferentialAction TableParser::parseReferentialAction()
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
    advance();
    if (!isKeyword("ACTION"))
        failHere();
    advance();
    return ReferentialAction::NoAction;
}

} // namespace SampleServer
