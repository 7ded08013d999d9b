#include "Engine/Parse/ChangeParser.h"
#include "Engine/Errors.h"
#include "Engine/Parse/NameText.h"
#include "Engine/Parse/Parser.h"
#include "Engine/Parse/Parsers.h"

namespace SampleServer {

using namespace Ast;

StatementPtr ChangeParser::parseInsert()
{
    expectKeyword("INSERT");
    Insert insert;
    insert.top = m_parsers.queries.parseTop();
    if (isKeyword("BULK"))
        refuse("INSERT BULK");
    acceptKeyword("INTO");
    insert.table = parseTableName();
    m_parsers.sources.parseTableHints();
    if (isSymbol("(") && !atSubquery()) {
        expectSymbol("(");
        do
            insert.columns.push_back(expectName());
        while (acceptSymbol(","));
        expectSymbol(")");
    }
    if (isKeyword("OUTPUT"))
        refuse("the OUTPUT clause");
    if (acceptKeyword("EXEC") || acceptKeyword("EXECUTE")) {
        insert.execute = m_parsers.statements.parseExecute();
    } else if (acceptKeyword("DEFAULT")) {
        expectKeyword("VALUES");
        insert.defaultValues = true;
    } else if (acceptKeyword("VALUES")) {
        insert.rows = parseRows(true);
    } else {
        insert.query = m_parsers.queries.parseSelect();
    }
    return statement(std::move(insert));
}

StatementPtr ChangeParser::parseUpdate()
{
    expectKeyword("UPDATE");
    if (isKeyword("STATISTICS"))
        refuse("UPDATE STATISTICS");
    Update update;
    update.top = m_parsers.queries.parseTop();
    update.table = parseTableName();
    m_parsers.sources.parseTableHints();
    expectKeyword("SET");
    do {
        Assignment assignment;
        if (current().kind == TokenKind::Variable) {
            assignment.variable = expectVariable();
            expectSymbol("=");
        }
        const bool hasColumn = assignment.variable.empty() ||
                               (isName() && ahead(1).kind == TokenKind::Symbol && ahead(1).value == "=");
        if (hasColumn) {
            const ObjectName column = parseObjectName();
            assignment.column = column.object();
            assignment.value = m_parsers.expressions.parseCompound(make(ColumnReference{column}));
            if (!assignment.value)
                expectSymbol("=");
        }
        if (!assignment.value && !(hasColumn && acceptKeyword("DEFAULT")))
            assignment.value = m_parsers.expressions.parseExpression();
        update.assignments.push_back(std::move(assignment));
    } while (acceptSymbol(","));
    if (isKeyword("OUTPUT"))
        refuse("the OUTPUT clause");
    if (acceptKeyword("FROM"))
        update.from = m_parsers.sources.parseFrom();
    if (acceptKeyword("WHERE"))
        update.where = m_parsers.expressions.parseCondition();
    m_parsers.queries.parseOption();
    return statement(std::move(update));
}

/// UPDATETEXT table.column pointer offset length data: parsed as an UPDATE of a row.
StatementPtr ChangeParser::parseUpdateText()
{
    expectKeyword("UPDATETEXT");
    ObjectName column = parseObjectName();
    if (column.parts.size() < 2)
        failHere();
    const std::string name = quotedName(column.object());
    column.parts.pop_back();
    std::string table;
    for (const std::string &part : column.parts)
        table += (table.empty() ? "" : ".") + quotedName(part);
    const auto operand = [this] {
        const Token &token = current();
        if (token.kind == TokenKind::Variable)
            return expectVariable();
        const bool literal = token.kind == TokenKind::Integer || token.kind == TokenKind::Binary ||
                             token.kind == TokenKind::String || token.kind == TokenKind::UnicodeString;
        if (!literal && !isKeyword("NULL"))
            failHere();
        advance();
        return std::string(token.source);
    };
    const std::string pointer = operand(), offset = operand(), length = operand();
    if (acceptKeyword("WITH"))
        expectKeyword("LOG");
    const std::string data = "ISNULL(" + operand() + ", N'')";
    const std::string whole = "CAST(" + name + " AS nvarchar(max))";
    // An offset of NULL means the end, a length of NULL the remaining text.
    const std::string start = "ISNULL(" + offset + ", LEN(" + whole + " + N'.') - 1)";
    const std::string sql = "UPDATE " + table + " SET " + name + " = LEFT(" + whole + ", " + start + ") + " +
                            data + " + SUBSTRING(" + whole + ", " + start + " + 1 + ISNULL(" + length +
                            ", 2147483646 - " + start + "), 2147483647) WHERE TEXTPTR(" + name +
                            ") = " + pointer;
    ParserOptions options;
    options.declaredVariables.assign(m_context.declared.begin(), m_context.declared.end());
    StatementPtr update = std::move(parseBatch(sql, options).at(0));
    std::get<Update>(update->node).isSilent = true;
    return update;
}

StatementPtr ChangeParser::parseDelete()
{
    expectKeyword("DELETE");
    Delete node;
    node.top = m_parsers.queries.parseTop();
    acceptKeyword("FROM");
    node.table = parseTableName();
    m_parsers.sources.parseTableHints();
    if (isKeyword("OUTPUT"))
        refuse("the OUTPUT clause");
    if (acceptKeyword("FROM"))
        node.from = m_parsers.sources.parseFrom();
    if (acceptKeyword("WHERE"))
        node.where = m_parsers.expressions.parseCondition();
    m_parsers.queries.parseOption();
    return statement(std::move(node));
}

std::vector<std::vector<ExpressionPtr>> ChangeParser::parseRows(bool allowDefault)
{
    std::vector<std::vector<ExpressionPtr>> rows;
    do {
        expectSymbol("(");
        std::vector<ExpressionPtr> row;
        do
            row.push_back(allowDefault && acceptKeyword("DEFAULT") ? nullptr
                                                                   : m_parsers.expressions.parseExpression());
        while (acceptSymbol(","));
        expectSymbol(")");
        rows.push_back(std::move(row));
        if (isSymbol(","))
            require(Edition::Sql2008);
    } while (acceptSymbol(","));
    return rows;
}

} // namespace SampleServer
