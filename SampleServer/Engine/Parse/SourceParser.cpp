#include "Engine/Parse/SourceParser.h"
#include "Engine/Errors.h"
#include "Engine/Parse/Parsers.h"
#include "Types/Text.h"

#include <algorithm>

namespace SampleServer {

using namespace Ast;

std::vector<TableSourcePtr> SourceParser::parseFrom()
{
    std::vector<TableSourcePtr> tables;
    do
        tables.push_back(parseJoinedTable());
    while (acceptSymbol(","));
    return tables;
}

bool SourceParser::parseTableHints()
{
    if (!isKeyword("WITH") || ahead(1).kind != TokenKind::Symbol || ahead(1).value != "(")
        return false;
    advance();
    return parseHintList();
}

TableSourcePtr SourceParser::parseJoinedTable()
{
    const NestingGuard guard(*this);
    auto left = parseTable();
    while (const auto kind = acceptJoin())
        left = parseJoin(*kind, std::move(left));
    return left;
}

/// Parses the part after JOIN. A JOIN b JOIN c ON ... ON ... joins the last two first.
TableSourcePtr SourceParser::parseJoin(JoinKind kind, TableSourcePtr left)
{
    const NestingGuard guard(*this);
    auto join = std::make_unique<TableSource>();
    join->line = current().line;
    Join node{kind, std::move(left), nullptr, nullptr};
    node.right = parseTable();
    if (kind != JoinKind::Cross && kind != JoinKind::CrossApply && kind != JoinKind::OuterApply) {
        while (!acceptKeyword("ON")) {
            const auto inner = acceptJoin();
            if (!inner)
                failHere();
            node.right = parseJoin(*inner, std::move(node.right));
        }
        node.condition = m_parsers.expressions.parseCondition();
    }
    join->node = std::move(node);
    return join;
}

std::optional<JoinKind> SourceParser::acceptJoin()
{
    if (acceptKeyword("CROSS")) {
        if (isKeyword("APPLY")) {
            require(Edition::Sql2008);
            advance();
            return JoinKind::CrossApply;
        }
        expectKeyword("JOIN");
        return JoinKind::Cross;
    }
    if (isKeyword("OUTER") && ahead(1).keyword == "APPLY") {
        require(Edition::Sql2008);
        advance(2);
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
        advance(); // an optimizer hint, ignored
    expectKeyword("JOIN");
    return kind;
}

TableSourcePtr SourceParser::parseTable()
{
    static constexpr std::string_view refused[] = {"CHANGETABLE",    "CONTAINSTABLE", "FREETEXTTABLE",
                                                   "OPENDATASOURCE", "OPENJSON",      "OPENQUERY",
                                                   "OPENROWSET",     "OPENXML"};
    const bool isRefused =
        std::find(std::begin(refused), std::end(refused), current().keyword) != std::end(refused);
    if (isRefused && ahead(1).source == "(")
        refuse(current().keyword);
    auto table = isSymbol("(") ? parseParenthesizedTable() : parseNamedTable();
    for (const char *word : {"PIVOT", "UNPIVOT", "TABLESAMPLE"})
        if (isKeyword(word))
            refuse(word);
    return table;
}

TableSourcePtr SourceParser::parseNamedTable()
{
    auto table = std::make_unique<TableSource>();
    table->line = current().line;
    ObjectName name = parseTableName();
    const bool hints =
        isSymbol("(") && (ahead(1).keyword == "NOLOCK" || ahead(1).keyword == "READUNCOMMITTED");
    if (isSymbol("(") && name.parts.size() > 1 && equalsIgnoringAsciiCase(name.object(), "nodes"))
        refuse("the XML method nodes");
    if (isSymbol("(") && !hints) {
        FunctionTable function{std::move(name), {}};
        if (m_context.edition < Edition::Sql2022 &&
            equalsIgnoringAsciiCase(function.name.toString(), "string_split"))
            fail(Errors::invalidObject(function.name.toString()), table->line);
        expectSymbol("(");
        if (!isSymbol(")"))
            do
                function.arguments.push_back(
                    acceptKeyword("DEFAULT") ? nullptr : m_parsers.expressions.parseExpression());
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

TableSourcePtr SourceParser::parseParenthesizedTable()
{
    const NestingGuard guard(*this);
    const int line = current().line;
    if (atSubquery()) {
        auto table = std::make_unique<TableSource>();
        table->line = line;
        table->node = DerivedTable{m_parsers.expressions.parseParenthesizedSelect()};
        parseTableAlias(*table);
        if (table->alias.empty())
            failHere();
        return table;
    }
    expectSymbol("(");
    if (isKeyword("VALUES")) {
        require(Edition::Sql2008);
        advance();
        auto table = std::make_unique<TableSource>();
        table->line = line;
        table->node = ValuesTable{m_parsers.changes.parseRows(false)};
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

void SourceParser::parseTableAlias(TableSource &table)
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

/// Parses (hint, hint ...); true if one of them disables waiting for locks. Other hints are ignored.
bool SourceParser::parseHintList()
{
    bool readUncommitted = false;
    expectSymbol("(");
    while (!acceptSymbol(")")) {
        if (current().kind == TokenKind::End)
            failHere();
        readUncommitted = readUncommitted || isKeyword("NOLOCK") || isKeyword("READUNCOMMITTED");
        advance();
        if (acceptSymbol("(")) // what INDEX(name) names
            while (!acceptSymbol(")")) {
                if (current().kind == TokenKind::End)
                    failHere();
                advance();
            }
    }
    return readUncommitted;
}

} // namespace SampleServer
