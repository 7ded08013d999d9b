#include "Engine/Errors.h"
#include "Engine/Parse/NameText.h"
#include "Engine/Parse/Parser.h"

// INSERT, UPDATE and DELETE.
namespace SampleServer {

using namespace Ast;

/// WITH names AS (queries) before the statement that uses them.
StatementPtr Parser::parseWithStatement()
{
    std::vector<CommonTable> with = parseWith();
    const std::string keyword = current().keyword;
    if (keyword != "SELECT" && keyword != "INSERT" && keyword != "UPDATE" && keyword != "DELETE" &&
        !isSymbol("("))
        failHere();
    auto result = isSymbol("(") ? statement(std::move(*parseSelect())) : parseDataStatement(keyword);
    if (auto *select = std::get_if<Select>(&result->node)) {
        select->with = std::move(with);
    } else if (auto *insert = std::get_if<Insert>(&result->node)) {
        if (insert->query)
            insert->query->with = std::move(with);
    } else if (auto *update = std::get_if<Update>(&result->node)) {
        update->with = std::move(with);
    } else {
        std::get<Delete>(result->node).with = std::move(with);
    }
    return result;
}

StatementPtr Parser::parseInsert()
{
    expectKeyword("INSERT");
    Insert insert;
    insert.top = parseTop();
    if (isKeyword("BULK"))
        refuse("INSERT BULK");
    acceptKeyword("INTO");
    insert.table = parseTableName();
    parseTableHints();
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
        insert.execute = parseExecute();
    } else if (acceptKeyword("DEFAULT")) {
        expectKeyword("VALUES");
        insert.defaultValues = true;
    } else if (acceptKeyword("VALUES")) {
        insert.rows = parseRows(true);
    } else {
        insert.query = parseSelect();
    }
    return statement(std::move(insert));
}

StatementPtr Parser::parseUpdate()
{
    expectKeyword("UPDATE");
    if (isKeyword("STATISTICS"))
        refuse("UPDATE STATISTICS");
    Update update;
    update.top = parseTop();
    update.table = parseTableName();
    parseTableHints();
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
            assignment.value = parseCompound(make(ColumnReference{column}));
            if (!assignment.value)
                expectSymbol("=");
        }
        if (!assignment.value && !(hasColumn && acceptKeyword("DEFAULT")))
            assignment.value = parseExpression();
        update.assignments.push_back(std::move(assignment));
    } while (acceptSymbol(","));
    if (isKeyword("OUTPUT"))
        refuse("the OUTPUT clause");
    if (acceptKeyword("FROM"))
        update.from = parseFrom();
    if (acceptKeyword("WHERE"))
        update.where = parseCondition();
    parseOption();
    return statement(std::move(update));
}

/// UPDATETEXT table.column pointer offset length data. It is the UPDATE of a row that it means.
StatementPtr Parser::parseUpdateText()
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
        ++m_at;
        return std::string(token.source);
    };
    const std::string pointer = operand(), offset = operand(), length = operand();
    if (acceptKeyword("WITH"))
        expectKeyword("LOG");
    const std::string data = "ISNULL(" + operand() + ", N'')";
    const std::string whole = "CAST(" + name + " AS nvarchar(max))";
    // An offset of NULL means the end, a length of NULL all that follows.
    const std::string start = "ISNULL(" + offset + ", LEN(" + whole + " + N'.') - 1)";
    const std::string sql = "UPDATE " + table + " SET " + name + " = LEFT(" + whole + ", " + start + ") + " +
                            data + " + SUBSTRING(" + whole + ", " + start + " + 1 + ISNULL(" + length +
                            ", 2147483646 - " + start + "), 2147483647) WHERE TEXTPTR(" + name +
                            ") = " + pointer;
    ParserOptions options;
    options.declaredVariables.assign(m_declared.begin(), m_declared.end());
    StatementPtr update = std::move(parseBatch(sql, options).at(0));
    std::get<Update>(update->node).isSilent = true;
    return update;
}

StatementPtr Parser::parseDelete()
{
    expectKeyword("DELETE");
    Delete node;
    node.top = parseTop();
    acceptKeyword("FROM");
    node.table = parseTableName();
    parseTableHints();
    if (isKeyword("OUTPUT"))
        refuse("the OUTPUT clause");
    if (acceptKeyword("FROM"))
        node.from = parseFrom();
    if (acceptKeyword("WHERE"))
        node.where = parseCondition();
    parseOption();
    return statement(std::move(node));
}

std::vector<std::vector<ExpressionPtr>> Parser::parseRows(bool allowDefault)
{
    std::vector<std::vector<ExpressionPtr>> rows;
    do {
        expectSymbol("(");
        std::vector<ExpressionPtr> row;
        do
            row.push_back(allowDefault && acceptKeyword("DEFAULT") ? nullptr : parseExpression());
        while (acceptSymbol(","));
        expectSymbol(")");
        rows.push_back(std::move(row));
        if (isSymbol(","))
            require(Edition::Sql2008);
    } while (acceptSymbol(","));
    return rows;
}

} // namespace SampleServer
