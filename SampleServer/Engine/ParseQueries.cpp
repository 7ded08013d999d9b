#include "Engine/Errors.h"
#include "Engine/Parser.h"
#include "Types/Text.h"

namespace SampleServer {

using namespace Ast;

SelectPtr Parser::parseSelect()
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

std::vector<CommonTable> Parser::parseWith()
{
    require(Edition::Sql2008);
    expectKeyword("WITH");
    std::vector<CommonTable> tables;
    do {
        CommonTable table;
        table.name = expectName();
        if (acceptSymbol("(")) {
            do
                table.columns.push_back(expectName());
            while (acceptSymbol(","));
            expectSymbol(")");
        }
        expectKeyword("AS");
        table.query = parseParenthesizedSelect();
        tables.push_back(std::move(table));
    } while (acceptSymbol(","));
    return tables;
}

ForXml Parser::parseForXml()
{
    m_at += 2; // FOR XML
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
        std::string value = m_tokens[m_at++].value;
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
        else if (acceptKeyword("ELEMENTS"))
            result.attributes = false;
        else
            refuse("FOR XML with the option " + current().keyword);
    }
    return result;
}

std::unique_ptr<Query> Parser::parseQuery()
{
    const NestingGuard guard(*this);
    auto left = parseIntersection();
    while (isKeyword("UNION") || isKeyword("EXCEPT")) {
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
        left = std::move(combined);
    }
    return left;
}

std::unique_ptr<Query> Parser::parseIntersection()
{
    auto left = parseQueryTerm();
    while (isKeyword("INTERSECT")) {
        require(Edition::Sql2008);
        ++m_at;
        auto combined = std::make_unique<Query>();
        combined->line = left->line;
        combined->op = SetOperator::Intersect;
        combined->left = std::move(left);
        combined->right = parseQueryTerm();
        left = std::move(combined);
    }
    return left;
}

std::unique_ptr<Query> Parser::parseQueryTerm()
{
    if (isSymbol("(")) {
        const NestingGuard guard(*this);
        ++m_at;
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

void Parser::parseSpecification(QuerySpecification &query)
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
        query.from = parseFrom();
    if (acceptKeyword("WHERE"))
        query.where = parseCondition();
    if (acceptKeyword("GROUP")) {
        expectKeyword("BY");
        acceptKeyword("ALL");
        do
            query.groupBy.push_back(parseExpression());
        while (acceptSymbol(","));
        if (isKeyword("WITH"))
            refuse("GROUP BY ... WITH " + ahead(1).keyword);
    }
    if (acceptKeyword("HAVING"))
        query.having = parseCondition();
}

std::optional<Top> Parser::parseTop()
{
    if (!acceptKeyword("TOP"))
        return {};
    Top top;
    if (isSymbol("(") || current().kind == TokenKind::Variable)
        require(Edition::Sql2008);
    if (acceptSymbol("(")) {
        top.count = parseExpression();
        expectSymbol(")");
    } else if (current().kind == TokenKind::Variable) {
        top.count = parsePrimary();
    } else {
        top.count = parseLiteral();
    }
    top.percent = acceptKeyword("PERCENT");
    if (isKeyword("WITH") && ahead(1).keyword == "TIES") {
        top.withTies = true;
        m_at += 2;
    }
    return top;
}

bool Parser::atStar() const
{
    std::size_t at = 0;
    while (ahead(at).kind == TokenKind::Word || ahead(at).kind == TokenKind::QuotedIdentifier) {
        if (ahead(at + 1).kind != TokenKind::Symbol || ahead(at + 1).value != ".")
            return false;
        at += 2;
    }
    return ahead(at).kind == TokenKind::Symbol && ahead(at).value == "*";
}

SelectItem Parser::parseSelectItem()
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
        item.expression = parseExpression();
        return item;
    }
    if (equalsFollows && (isName() || current().kind == TokenKind::String)) {
        item.alias = m_tokens[m_at].value;
        m_at += 2;
        item.expression = parseExpression();
        return item;
    }
    item.expression = parseExpression();
    item.alias = parseAlias();
    return item;
}

std::string Parser::parseAlias()
{
    const bool text = current().kind == TokenKind::String || current().kind == TokenKind::UnicodeString;
    const bool as = acceptKeyword("AS");
    if (isName() || text ||
        (as && (current().kind == TokenKind::String || current().kind == TokenKind::UnicodeString)))
        return m_tokens[m_at++].value;
    if (as)
        failHere();
    return {};
}

std::vector<TableSourcePtr> Parser::parseFrom()
{
    std::vector<TableSourcePtr> tables;
    do
        tables.push_back(parseJoinedTable());
    while (acceptSymbol(","));
    return tables;
}

TableSourcePtr Parser::parseJoinedTable()
{
    const NestingGuard guard(*this);
    auto left = parseTable();
    while (const auto kind = acceptJoin()) {
        auto join = std::make_unique<TableSource>();
        join->line = current().line;
        Join node{*kind, std::move(left), nullptr, nullptr};
        node.right = parseTable();
        if (*kind != JoinKind::Cross && *kind != JoinKind::CrossApply && *kind != JoinKind::OuterApply) {
            expectKeyword("ON");
            node.condition = parseCondition();
        }
        join->node = std::move(node);
        left = std::move(join);
    }
    return left;
}

std::optional<JoinKind> Parser::acceptJoin()
{
    if (acceptKeyword("CROSS")) {
        if (isKeyword("APPLY")) {
            require(Edition::Sql2008);
            ++m_at;
            return JoinKind::CrossApply;
        }
        expectKeyword("JOIN");
        return JoinKind::Cross;
    }
    if (isKeyword("OUTER") && ahead(1).keyword == "APPLY") {
        require(Edition::Sql2008);
        m_at += 2;
        return JoinKind::OuterApply;
    }
    if (acceptKeyword("JOIN"))
        return JoinKind::Inner;
    std::optional<JoinKind> kind;
    if (acceptKeyword("INNER"))
        kind = JoinKind::Inner;
    else if (acceptKeyword("LEFT"))
        kind = JoinKind::Left;
    else if (acceptKeyword("RIGHT"))
        kind = JoinKind::Right;
    else if (acceptKeyword("FULL"))
        kind = JoinKind::Full;
    if (!kind)
        return {};
    if (*kind != JoinKind::Inner)
        acceptKeyword("OUTER");
    if (isKeyword("HASH") || isKeyword("LOOP") || isKeyword("MERGE"))
        ++m_at; // a hint for an optimizer that is not here
    expectKeyword("JOIN");
    return kind;
}

TableSourcePtr Parser::parseTable()
{
    if (isSymbol("("))
        return parseParenthesizedTable();
    auto table = std::make_unique<TableSource>();
    table->line = current().line;
    ObjectName name = parseTableName();
    const bool hints =
        isSymbol("(") && (ahead(1).keyword == "NOLOCK" || ahead(1).keyword == "READUNCOMMITTED");
    if (isSymbol("(") && !hints) {
        FunctionTable function{std::move(name), {}};
        if (m_edition < Edition::Sql2022 && equalsIgnoringAsciiCase(function.name.toString(), "string_split"))
            fail(Errors::invalidObject(function.name.toString()), table->line);
        expectSymbol("(");
        if (!isSymbol(")"))
            do
                function.arguments.push_back(acceptKeyword("DEFAULT") ? nullptr : parseExpression());
            while (acceptSymbol(","));
        expectSymbol(")");
        table->node = std::move(function);
        parseTableAlias(*table);
        return table;
    }
    NamedTable named{std::move(name), false};
    if (hints)
        named.readUncommitted = parseHintList();
    parseTableAlias(*table);
    if (isSymbol("(") && ahead(1).keyword == "NOLOCK")
        named.readUncommitted = parseHintList();
    named.readUncommitted = parseTableHints() || named.readUncommitted;
    table->node = std::move(named);
    return table;
}

TableSourcePtr Parser::parseParenthesizedTable()
{
    const NestingGuard guard(*this);
    const int line = current().line;
    if (atSubquery()) {
        auto table = std::make_unique<TableSource>();
        table->line = line;
        table->node = DerivedTable{parseParenthesizedSelect()};
        parseTableAlias(*table);
        if (table->alias.empty())
            failHere();
        return table;
    }
    expectSymbol("(");
    if (isKeyword("VALUES")) {
        require(Edition::Sql2008);
        ++m_at;
        auto table = std::make_unique<TableSource>();
        table->line = line;
        table->node = ValuesTable{parseRows(false)};
        expectSymbol(")");
        parseTableAlias(*table);
        if (table->alias.empty())
            failHere();
        return table;
    }
    auto table = parseJoinedTable();
    expectSymbol(")");
    return table;
}

void Parser::parseTableAlias(TableSource &table)
{
    const bool as = acceptKeyword("AS");
    if (!isName()) {
        if (as)
            failHere();
        return;
    }
    table.alias = expectName();
    if (!isSymbol("(") || std::holds_alternative<NamedTable>(table.node) || ahead(1).keyword == "NOLOCK")
        return;
    expectSymbol("(");
    do
        table.columns.push_back(expectName());
    while (acceptSymbol(","));
    expectSymbol(")");
}

bool Parser::parseTableHints()
{
    if (!isKeyword("WITH") || ahead(1).kind != TokenKind::Symbol || ahead(1).value != "(")
        return false;
    ++m_at;
    return parseHintList();
}

/// Reads (hint, hint ...); true when one of them asks not to wait for locks. The others do not apply here.
bool Parser::parseHintList()
{
    bool readUncommitted = false;
    expectSymbol("(");
    while (!acceptSymbol(")")) {
        if (current().kind == TokenKind::End)
            failHere();
        readUncommitted = readUncommitted || isKeyword("NOLOCK") || isKeyword("READUNCOMMITTED");
        ++m_at;
        if (acceptSymbol("(")) // what INDEX(name) names
            while (!acceptSymbol(")")) {
                if (current().kind == TokenKind::End)
                    failHere();
                ++m_at;
            }
    }
    return readUncommitted;
}

void Parser::parseOrderBy(Select &select)
{
    if (!acceptKeyword("ORDER"))
        return;
    expectKeyword("BY");
    select.orderBy = parseOrderItems();
    if (m_edition < Edition::Sql2022 || !acceptKeyword("OFFSET"))
        return;
    select.offset = parseExpression();
    if (!acceptKeyword("ROWS"))
        expectKeyword("ROW");
    if (!acceptKeyword("FETCH"))
        return;
    if (!acceptKeyword("NEXT"))
        expectKeyword("FIRST");
    select.fetch = parseExpression();
    if (!acceptKeyword("ROWS"))
        expectKeyword("ROW");
    expectKeyword("ONLY");
}

std::vector<OrderItem> Parser::parseOrderItems()
{
    std::vector<OrderItem> items;
    do {
        OrderItem item;
        item.expression = parseExpression();
        item.descending = acceptKeyword("DESC");
        if (!item.descending)
            acceptKeyword("ASC");
        items.push_back(std::move(item));
    } while (acceptSymbol(","));
    return items;
}

void Parser::parseCompute(Select &select)
{
    expectKeyword("COMPUTE");
    Compute compute;
    do {
        ComputeItem item;
        item.function = current().keyword;
        expectName();
        expectSymbol("(");
        item.argument = parseExpression();
        expectSymbol(")");
        compute.items.push_back(std::move(item));
    } while (acceptSymbol(","));
    if (acceptKeyword("BY"))
        do
            compute.by.push_back(parseExpression());
        while (acceptSymbol(","));
    select.compute.push_back(std::move(compute));
}

/// OPTION (...) advises an optimizer that is not here: but for MAXRECURSION it is read and has no effect.
std::optional<int> Parser::parseOption()
{
    std::optional<int> maxRecursion;
    if (!isKeyword("OPTION"))
        return maxRecursion;
    ++m_at;
    expectSymbol("(");
    for (int depth = 1; depth > 0; ++m_at) {
        if (current().kind == TokenKind::End)
            failHere();
        if (isKeyword("MAXRECURSION") && ahead(1).kind == TokenKind::Integer)
            maxRecursion = std::atoi(ahead(1).value.c_str());
        depth += isSymbol("(") ? 1 : isSymbol(")") ? -1 : 0;
    }
    return maxRecursion;
}

} // namespace SampleServer
