#include "Engine/Parse/QueryParser.h"
#include "Engine/Errors.h"
#include "Engine/Parse/Parsers.h"
#include "Types/Collation.h"
#include "Types/Text.h"

#include <algorithm>

namespace SampleServer {

using namespace Ast;

SelectPtr QueryParser::parseSelect()
{
    auto select = std::make_unique<Select>();
    if (isKeyword("WITH"))
        select->with = parseWith();
    select->query = parseQuery();
    parseOrderBy(*select);
    if (isKeyword("FOR") && (ahead(1).keyword == "BROWSE" || ahead(1).keyword == "JSON"))
        refuse("FOR " + ahead(1).keyword);
    if (isKeyword("FOR") && ahead(1).keyword == "XML")
        select->forXml = parseForXml();
    while (isKeyword("COMPUTE"))
        parseCompute(*select);
    select->maxRecursion = parseOption();
    return select;
}

std::vector<CommonTable> QueryParser::parseWith()
{
    require(Edition::Sql2008);
    expectKeyword("WITH");
    std::vector<CommonTable> tables;
    do {
        CommonTable table;
        const int line = current().line;
        table.name = expectName();
        const bool isKnown = std::any_of(tables.begin(), tables.end(), [&table](const CommonTable &other) {
            return foldedName(other.name) == foldedName(table.name);
        });
        if (isKnown)
            fail(EngineError(239, 16, 1,
                             "Duplicate common table expression name '" + table.name + "' was specified.",
                             ErrorEffect::EndsBatch),
                 line);
        if (acceptSymbol("(")) {
            do
                table.columns.push_back(expectName());
            while (acceptSymbol(","));
            expectSymbol(")");
        }
        expectKeyword("AS");
        table.query = m_parsers.expressions.parseParenthesizedSelect();
        tables.push_back(std::move(table));
    } while (acceptSymbol(","));
    return tables;
}

std::optional<Top> QueryParser::parseTop()
{
    if (!acceptKeyword("TOP"))
        return {};
    Top top;
    if (isSymbol("(") || current().kind == TokenKind::Variable)
        require(Edition::Sql2008);
    if (acceptSymbol("(")) {
        top.count = m_parsers.expressions.parseExpression();
        expectSymbol(")");
    } else if (current().kind == TokenKind::Variable) {
        top.count = m_parsers.expressions.parsePrimary();
    } else {
        top.count = m_parsers.literals.parseLiteral();
    }
    top.percent = acceptKeyword("PERCENT");
    if (isKeyword("WITH") && ahead(1).keyword == "TIES") {
        top.withTies = true;
        advance(2);
    }
    return top;
}

std::vector<OrderItem> QueryParser::parseOrderItems()
{
    std::vector<OrderItem> items;
    do {
        OrderItem item;
        item.expression = m_parsers.expressions.parseExpression();
        item.descending = acceptKeyword("DESC");
        if (!item.descending)
            acceptKeyword("ASC");
        items.push_back(std::move(item));
    } while (acceptSymbol(","));
    return items;
}

std::string QueryParser::parseAlias()
{
    const bool text = current().kind == TokenKind::String || current().kind == TokenKind::UnicodeString;
    const bool as = acceptKeyword("AS");
    if (isName() || text ||
        (as && (current().kind == TokenKind::String || current().kind == TokenKind::UnicodeString)))
        return take().value;
    if (as)
        failHere();
    return {};
}

ForXml QueryParser::parseForXml()
{
    advance(2); // FOR XML
    ForXml result;
    if (isKeyword("AUTO") || isKeyword("EXPLICIT"))
        refuse("FOR XML " + current().keyword);
    result.attributes = acceptKeyword("RAW");
    if (!result.attributes) {
        require(Edition::Sql2008);
        expectKeyword("PATH");
    }
    const auto text = [this] {
        expectSymbol("(");
        if (current().kind != TokenKind::String && current().kind != TokenKind::UnicodeString)
            failHere();
        std::string value = take().value;
        expectSymbol(")");
        return value;
    };
    if (isSymbol("("))
        result.rowTag = text();
    while (acceptSymbol(",")) {
        require(Edition::Sql2008);
        if (acceptKeyword("TYPE"))
            result.typed = true;
        else if (acceptKeyword("ROOT"))
            result.root = isSymbol("(") ? text() : "root";
        else if (acceptKeyword("ELEMENTS")) {
            result.attributes = false;
            if (isKeyword("XSINIL"))
                refuse("FOR XML with XSINIL");
        } else
            refuse("FOR XML with the option " + current().keyword);
    }
    return result;
}

/// Limits the stack that the binder and SQLite use for one statement.
void QueryParser::countSetOperator()
{
    constexpr int MostSetOperators = 499; // SQLite combines 500 queries
    if (++m_context.setOperators > MostSetOperators)
        fail(Errors::stackLimit(), current().line);
}

std::unique_ptr<Query> QueryParser::parseQuery()
{
    const NestingGuard guard(*this);
    auto left = parseIntersection();
    while (isKeyword("UNION") || isKeyword("EXCEPT")) {
        countSetOperator();
        auto combined = std::make_unique<Query>();
        combined->line = left->line;
        if (acceptKeyword("UNION"))
            combined->op = acceptKeyword("ALL") ? SetOperator::UnionAll : SetOperator::Union;
        else {
            require(Edition::Sql2008);
            expectKeyword("EXCEPT");
            combined->op = SetOperator::Except;
        }
        combined->left = std::move(left);
        combined->right = parseIntersection();
        requireNoInto(*combined->right);
        left = std::move(combined);
    }
    return left;
}

std::unique_ptr<Query> QueryParser::parseIntersection()
{
    auto left = parseQueryTerm();
    while (isKeyword("INTERSECT")) {
        countSetOperator();
        require(Edition::Sql2008);
        advance();
        auto combined = std::make_unique<Query>();
        combined->line = left->line;
        combined->op = SetOperator::Intersect;
        combined->left = std::move(left);
        combined->right = parseQueryTerm();
        requireNoInto(*combined->right);
        left = std::move(combined);
    }
    return left;
}

/// INTO belongs to the first of the combined queries.
void QueryParser::requireNoInto(const Query &query) const
{
    if (!query.op && query.specification.into)
        fail(EngineError(196, 15, 1,
                         "SELECT INTO must be the first query in a statement containing a UNION, INTERSECT "
                         "or EXCEPT operator.",
                         ErrorEffect::EndsBatch),
             query.line);
}

std::unique_ptr<Query> QueryParser::parseQueryTerm()
{
    if (isSymbol("(")) {
        const NestingGuard guard(*this);
        advance();
        auto query = parseQuery();
        expectSymbol(")");
        return query;
    }
    auto query = std::make_unique<Query>();
    query->line = current().line;
    expectKeyword("SELECT");
    parseSpecification(query->specification);
    return query;
}

void QueryParser::parseSpecification(QuerySpecification &query)
{
    query.distinct = acceptKeyword("DISTINCT");
    if (!query.distinct)
        acceptKeyword("ALL");
    query.top = parseTop();
    do
        query.items.push_back(parseSelectItem());
    while (acceptSymbol(","));
    if (acceptKeyword("INTO"))
        query.into = parseObjectName();
    if (acceptKeyword("FROM"))
        query.from = m_parsers.sources.parseFrom();
    if (acceptKeyword("WHERE"))
        query.where = m_parsers.expressions.parseCondition();
    if (acceptKeyword("GROUP")) {
        expectKeyword("BY");
        const bool refused = isKeyword("ALL") || isKeyword("ROLLUP") || isKeyword("CUBE");
        if (refused && (isKeyword("ALL") || ahead(1).source == "("))
            refuse("GROUP BY " + current().keyword);
        if (isKeyword("GROUPING") && ahead(1).keyword == "SETS")
            refuse("GROUP BY GROUPING SETS");
        do
            query.groupBy.push_back(m_parsers.expressions.parseExpression());
        while (acceptSymbol(","));
        if (isKeyword("WITH"))
            refuse("GROUP BY ... WITH " + ahead(1).keyword);
    }
    if (acceptKeyword("HAVING"))
        query.having = m_parsers.expressions.parseCondition();
}

bool QueryParser::atStar() const
{
    std::size_t at = 0;
    while (ahead(at).kind == TokenKind::Word || ahead(at).kind == TokenKind::QuotedIdentifier) {
        if (ahead(at + 1).kind != TokenKind::Symbol || ahead(at + 1).value != ".")
            return false;
        at += 2;
    }
    return ahead(at).kind == TokenKind::Symbol && ahead(at).value == "*";
}

SelectItem QueryParser::parseSelectItem()
{
    SelectItem item;
    if (atStar()) {
        item.star = isSymbol("*") ? ObjectName() : parseObjectName();
        acceptSymbol(".");
        expectSymbol("*");
        return item;
    }
    const bool equalsFollows = ahead(1).kind == TokenKind::Symbol && ahead(1).value == "=";
    if (equalsFollows && current().kind == TokenKind::Variable) {
        item.variable = expectVariable();
        expectSymbol("=");
        item.expression = m_parsers.expressions.parseExpression();
        return item;
    }
    if (equalsFollows && (isName() || current().kind == TokenKind::String)) {
        item.alias = m_context.tokens[m_context.at].value;
        advance(2);
        item.expression = m_parsers.expressions.parseExpression();
        return item;
    }
    item.expression = m_parsers.expressions.parseExpression();
    item.alias = parseAlias();
    return item;
}

void QueryParser::parseOrderBy(Select &select)
{
    if (!acceptKeyword("ORDER"))
        return;
    expectKeyword("BY");
    select.orderBy = parseOrderItems();
    if (m_context.edition < Edition::Sql2022 || !acceptKeyword("OFFSET"))
        return;
    select.offset = m_parsers.expressions.parseExpression();
    if (!acceptKeyword("ROWS"))
        expectKeyword("ROW");
    if (!acceptKeyword("FETCH"))
        return;
    if (!acceptKeyword("NEXT"))
        expectKeyword("FIRST");
    select.fetch = m_parsers.expressions.parseExpression();
    if (!acceptKeyword("ROWS"))
        expectKeyword("ROW");
    expectKeyword("ONLY");
}

void QueryParser::parseCompute(Select &select)
{
    expectKeyword("COMPUTE");
    Compute compute;
    do {
        ComputeItem item;
        item.function = current().keyword;
        expectName();
        expectSymbol("(");
        item.argument = m_parsers.expressions.parseExpression();
        expectSymbol(")");
        compute.items.push_back(std::move(item));
    } while (acceptSymbol(","));
    if (acceptKeyword("BY"))
        do
            compute.by.push_back(m_parsers.expressions.parseExpression());
        while (acceptSymbol(","));
    select.compute.push_back(std::move(compute));
}

/// OPTION (...): only MAXRECURSION has an effect; other hints are parsed and ignored.
std::optional<int> QueryParser::parseOption()
{
    std::optional<int> maxRecursion;
    if (!isKeyword("OPTION"))
        return maxRecursion;
    advance();
    expectSymbol("(");
    for (int depth = 1; depth > 0; ++m_context.at) {
        if (current().kind == TokenKind::End)
            failHere();
        if (isKeyword("MAXRECURSION") && ahead(1).kind == TokenKind::Integer)
            maxRecursion = std::atoi(ahead(1).value.c_str());
        depth += isSymbol("(") ? 1 : isSymbol(")") ? -1 : 0;
    }
    return maxRecursion;
}

} // namespace SampleServer
