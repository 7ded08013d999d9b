#include "Engine/Errors.h"
#include "Engine/Parse/Parser.h"
#include "Types/Text.h"

#include <algorithm>

// Calls of functions and what looks like them.
namespace SampleServer {

using namespace Ast;

ExpressionPtr Parser::parseFunction(ObjectName name)
{
    const NestingGuard guard(*this);
    FunctionCall call;
    call.name = std::move(name);
    if (call.name.parts.size() == 1 && !hasFunction(m_edition, asciiUpper(call.name.object())))
        fail(m_edition == Edition::Sql2000
                 ? EngineError(195, 15, 10,
                               '\'' + call.name.object() + "' is not a recognized function name.",
                               ErrorEffect::EndsBatch)
                 : Errors::unknownFunction(call.name.object()),
             current().line);
    expectSymbol("(");
    if (acceptSymbol("*")) {
        call.star = true;
    } else if (!isSymbol(")")) {
        call.distinct = acceptKeyword("DISTINCT");
        if (!call.distinct)
            acceptKeyword("ALL");
        if (call.name.parts.size() == 1 && equalsIgnoringAsciiCase(call.name.object(), "iif")) {
            call.arguments.push_back(parseCondition());
            expectSymbol(",");
        }
        do
            call.arguments.push_back(acceptKeyword("DEFAULT") ? nullptr : parseExpression());
        while (acceptSymbol(","));
        if (call.name.parts.size() == 1 && equalsIgnoringAsciiCase(call.name.object(), "trim")) {
            if (call.arguments.size() != 1)
                fail(Errors::argumentCount("trim", 1), current().line);
            if (acceptKeyword("FROM"))
                call.arguments.insert(call.arguments.begin(), parseExpression()); // the text first
        }
    }
    expectSymbol(")");
    if (acceptKeyword("WITHIN")) {
        expectKeyword("GROUP");
        expectSymbol("(");
        expectKeyword("ORDER");
        expectKeyword("BY");
        call.withinGroup = parseOrderItems();
        expectSymbol(")");
    }
    if (isKeyword("OVER")) {
        require(Edition::Sql2008);
        ++m_at;
        call.over = parseWindow();
        static constexpr std::string_view rankings[] = {"ROW_NUMBER", "RANK", "DENSE_RANK", "NTILE"};
        const bool ranks = std::find(std::begin(rankings), std::end(rankings),
                                     asciiUpper(call.name.object())) != std::end(rankings);
        if (m_edition < Edition::Sql2022 && !call.over->order.empty() && !ranks)
            fail(Errors::syntaxNear("order"), current().line);
    }
    int depth = 0;
    for (const auto &argument : call.arguments)
        depth = std::max(depth, argument ? argument->depth : 0);
    auto result = make(std::move(call));
    result->depth = depth + 1;
    return result;
}

Window Parser::parseWindow()
{
    Window window;
    expectSymbol("(");
    if (isName() && isKeyword("PARTITION")) {
        ++m_at;
        expectKeyword("BY");
        do
            window.partition.push_back(parseExpression());
        while (acceptSymbol(","));
    }
    if (acceptKeyword("ORDER")) {
        expectKeyword("BY");
        window.order = parseOrderItems();
    }
    window.frame = parseFrame();
    expectSymbol(")");
    return window;
}

/// A frame such as ROWS BETWEEN 1 PRECEDING AND CURRENT ROW; empty when there is none.
std::string Parser::parseFrame()
{
    if (!isKeyword("ROWS") && !isKeyword("RANGE"))
        return {};
    require(Edition::Sql2022);
    std::string frame;
    while (!isSymbol(")")) {
        const Token &token = current();
        if (token.kind != TokenKind::Word && token.kind != TokenKind::Integer)
            failHere();
        frame += (frame.empty() ? "" : " ") + (token.kind == TokenKind::Word ? token.keyword : token.value);
        ++m_at;
    }
    return frame;
}

/// ('path', 'type') of the method value.
ExpressionPtr Parser::parseXmlMethod(ExpressionPtr operand)
{
    const auto text = [this] {
        if (current().kind != TokenKind::String && current().kind != TokenKind::UnicodeString)
            failHere();
        return m_tokens[m_at++].value;
    };
    MethodCall call;
    call.method = "value";
    expectSymbol("(");
    call.path = text();
    expectSymbol(",");
    call.type = Parser(text(), {}).parseTypeName();
    expectSymbol(")");
    const auto *child = operand.get();
    call.operand = std::move(operand);
    return make(std::move(call), {child});
}

ExpressionPtr Parser::parseCase()
{
    const NestingGuard guard(*this);
    expectKeyword("CASE");
    Case node;
    if (!isKeyword("WHEN"))
        node.input = parseExpression();
    int depth = 0;
    while (acceptKeyword("WHEN")) {
        Case::Branch branch;
        branch.when = node.input ? parseExpression() : parseCondition();
        expectKeyword("THEN");
        branch.then = parseExpression();
        depth = std::max({depth, branch.when->depth, branch.then->depth});
        node.branches.push_back(std::move(branch));
    }
    if (node.branches.empty())
        failHere();
    if (acceptKeyword("ELSE")) {
        node.otherwise = parseExpression();
        depth = std::max(depth, node.otherwise->depth);
    }
    expectKeyword("END");
    auto result = make(std::move(node));
    result->depth = depth + 1;
    return result;
}

ExpressionPtr Parser::parseCast(bool isTry)
{
    ++m_at;
    expectSymbol("(");
    Cast cast;
    cast.isTry = isTry;
    cast.operand = parseExpression();
    expectKeyword("AS");
    cast.type = parseTypeName();
    expectSymbol(")");
    const auto *child = cast.operand.get();
    return make(std::move(cast), {child});
}

ExpressionPtr Parser::parseConvert(bool isTry)
{
    ++m_at;
    expectSymbol("(");
    Cast cast;
    cast.isTry = isTry;
    cast.type = parseTypeName();
    expectSymbol(",");
    cast.operand = parseExpression();
    if (acceptSymbol(","))
        cast.style = parseExpression();
    expectSymbol(")");
    const auto *child = cast.operand.get();
    return make(std::move(cast), {child});
}

} // namespace SampleServer
