#include "Engine/Parse/FunctionParser.h"
#include "Engine/Errors.h"
#include "Engine/Parse/Parsers.h"
#include "Types/Text.h"

#include <algorithm>

namespace SampleServer {

using namespace Ast;

ExpressionPtr FunctionParser::parseFunction(ObjectName name)
{
    const NestingGuard guard(*this);
    FunctionCall call;
    call.name = std::move(name);
    if (call.name.parts.size() == 1 && !hasFunction(m_context.edition, asciiUpper(call.name.object())))
        fail(m_context.edition == Edition::Sql2000
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
            call.arguments.push_back(m_parsers.expressions.parseCondition());
            expectSymbol(",");
        }
        do
            call.arguments.push_back(acceptKeyword("DEFAULT") ? nullptr
                                                              : m_parsers.expressions.parseExpression());
        while (acceptSymbol(","));
        if (call.name.parts.size() == 1 && equalsIgnoringAsciiCase(call.name.object(), "trim")) {
            if (call.arguments.size() != 1)
                fail(Errors::argumentCount("trim", 1), current().line);
            if (acceptKeyword("FROM"))
                call.arguments.insert(call.arguments.begin(),
                                      m_parsers.expressions.parseExpression()); // the text first
        }
    }
    expectSymbol(")");
    if (acceptKeyword("WITHIN")) {
        expectKeyword("GROUP");
        expectSymbol("(");
        expectKeyword("ORDER");
        expectKeyword("BY");
        call.withinGroup = m_parsers.queries.parseOrderItems();
        expectSymbol(")");
    }
    if (isKeyword("OVER")) {
        require(Edition::Sql2008);
        advance();
        call.over = parseWindow();
        static constexpr std::string_view rankings[] = {"ROW_NUMBER", "RANK", "DENSE_RANK", "NTILE"};
        const bool ranks = std::find(std::begin(rankings), std::end(rankings),
                                     asciiUpper(call.name.object())) != std::end(rankings);
        if (m_context.edition < Edition::Sql2022 && !call.over->order.empty() && !ranks)
            fail(Errors::syntaxNear("order"), current().line);
    }
    int depth = 0;
    for (const auto &argument : call.arguments)
        depth = std::max(depth, argument ? argument->depth : 0);
    auto result = make(std::move(call));
    result->depth = depth + 1;
    return result;
}

/// ('path', 'type') of the method value.
ExpressionPtr FunctionParser::parseXmlMethod(ExpressionPtr operand)
{
    const auto text = [this] {
        if (current().kind != TokenKind::String && current().kind != TokenKind::UnicodeString)
            failHere();
        return take().value;
    };
    MethodCall call;
    call.method = "value";
    expectSymbol("(");
    call.path = text();
    expectSymbol(",");
    call.type = typeOf(text());
    expectSymbol(")");
    const auto *child = operand.get();
    call.operand = std::move(operand);
    return make(std::move(call), {child});
}

TypeName FunctionParser::typeOf(const std::string &text)
{
    ParseContext context;
    context.sql = text;
    context.tokens = tokenize(text, true);
    return FunctionParser(context, m_parsers).parseTypeName();
}

ExpressionPtr FunctionParser::parseCase()
{
    const NestingGuard guard(*this);
    expectKeyword("CASE");
    Case node;
    if (!isKeyword("WHEN"))
        node.input = m_parsers.expressions.parseExpression();
    int depth = 0;
    while (acceptKeyword("WHEN")) {
        Case::Branch branch;
        branch.when =
            node.input ? m_parsers.expressions.parseExpression() : m_parsers.expressions.parseCondition();
        expectKeyword("THEN");
        branch.then = m_parsers.expressions.parseExpression();
        depth = std::max({depth, branch.when->depth, branch.then->depth});
        node.branches.push_back(std::move(branch));
    }
    if (node.branches.empty())
        failHere();
    if (acceptKeyword("ELSE")) {
        node.otherwise = m_parsers.expressions.parseExpression();
        depth = std::max(depth, node.otherwise->depth);
    }
    expectKeyword("END");
    auto result = make(std::move(node));
    result->depth = depth + 1;
    return result;
}

ExpressionPtr FunctionParser::parseCast(bool isTry)
{
    advance();
    expectSymbol("(");
    Cast cast;
    cast.isTry = isTry;
    cast.operand = m_parsers.expressions.parseExpression();
    expectKeyword("AS");
    cast.type = parseTypeName();
    expectSymbol(")");
    const auto *child = cast.operand.get();
    return make(std::move(cast), {child});
}

ExpressionPtr FunctionParser::parseConvert(bool isTry)
{
    advance();
    expectSymbol("(");
    Cast cast;
    cast.isTry = isTry;
    cast.type = parseTypeName();
    expectSymbol(",");
    cast.operand = m_parsers.expressions.parseExpression();
    if (acceptSymbol(","))
        cast.style = m_parsers.expressions.parseExpression();
    expectSymbol(")");
    const auto *child = cast.operand.get();
    return make(std::move(cast), {child});
}

Window FunctionParser::parseWindow()
{
    Window window;
    expectSymbol("(");
    if (isName() && isKeyword("PARTITION")) {
        advance();
        expectKeyword("BY");
        do
            window.partition.push_back(m_parsers.expressions.parseExpression());
        while (acceptSymbol(","));
    }
    if (acceptKeyword("ORDER")) {
        expectKeyword("BY");
        window.order = m_parsers.queries.parseOrderItems();
    }
    window.frame = parseFrame();
    expectSymbol(")");
    return window;
}

/// A frame such as ROWS BETWEEN 1 PRECEDING AND CURRENT ROW; empty when there is none.
std::string FunctionParser::parseFrame()
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
        advance();
    }
    return frame;
}

} // namespace SampleServer
