#include "Engine/Parse/ExpressionParser.h"
#include "Engine/Errors.h"
#include "Engine/Parse/DefinitionText.h"
#include "Engine/Parse/Parsers.h"
#include "Engine/ScopedValue.h"
#include "Types/Collation.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <charconv>

namespace SampleServer {

using namespace Ast;

bool Ast::isCondition(const Expression &expression)
{
    return std::visit(
        [](const auto &node) {
            using Node = std::decay_t<decltype(node)>;
            return std::is_same_v<Node, Comparison> || std::is_same_v<Node, QuantifiedComparison> ||
                   std::is_same_v<Node, Logical> || std::is_same_v<Node, Not> ||
                   std::is_same_v<Node, IsNull> || std::is_same_v<Node, Between> ||
                   std::is_same_v<Node, InList> || std::is_same_v<Node, InQuery> ||
                   std::is_same_v<Node, Like> || std::is_same_v<Node, Exists>;
        },
        expression.node);
}

ExpressionPtr ExpressionParser::parseExpression()
{
    return requireValue(parseAdditive());
}

ExpressionPtr ExpressionParser::parseCondition()
{
    return requireCondition(parseOr());
}

/// Parses an expression that outlives the batch; `parse` parses its kind.
DefinedExpression ExpressionParser::keepExpression(ExpressionPtr (ExpressionParser::*parse)())
{
    const std::size_t start = m_context.at;
    const ScopedValue<bool> scalar(m_context.allowsSubqueries, false);
    DefinedExpression kept;
    kept.expression = (this->*parse)();
    kept.text = definitionText({m_context.tokens.data() + start, m_context.at - start});
    return kept;
}

/// Parses a compound assignment such as += with its operand and returns the new value; null if there is none.
ExpressionPtr ExpressionParser::parseCompound(ExpressionPtr target)
{
    static constexpr std::pair<std::string_view, ArithmeticOperator> arithmetic[] = {
        {"+=", ArithmeticOperator::Add},
        {"-=", ArithmeticOperator::Subtract},
        {"*=", ArithmeticOperator::Multiply},
        {"/=", ArithmeticOperator::Divide},
        {"%=", ArithmeticOperator::Modulo}};
    static constexpr std::pair<std::string_view, BitOperator> bits[] = {
        {"&=", BitOperator::And}, {"|=", BitOperator::Or}, {"^=", BitOperator::Xor}};
    if (m_context.edition < Edition::Sql2008)
        return nullptr;
    for (const auto &[symbol, op] : arithmetic)
        if (acceptSymbol(symbol))
            return make(Arithmetic{op, std::move(target), parseExpression()});
    for (const auto &[symbol, op] : bits)
        if (acceptSymbol(symbol))
            return make(Bitwise{op, std::move(target), parseExpression()});
    return nullptr;
}

ExpressionPtr ExpressionParser::parsePrimary()
{
    ExpressionPtr result;
    const Token &token = current();
    if (isSymbol("(")) {
        if (ahead(1).keyword == "SELECT") {
            result = make(ScalarQuery{parseParenthesizedSelect()});
        } else {
            advance();
            result = parseOr();
            expectSymbol(")");
        }
    } else if (token.kind == TokenKind::Variable) {
        result = make(VariableReference{expectVariable()});
    } else if (token.kind == TokenKind::GlobalVariable) {
        advance();
        result = make(GlobalVariableReference{token.value});
    } else if (token.kind == TokenKind::Word || token.kind == TokenKind::QuotedIdentifier) {
        result = parseWordExpression();
    } else {
        result = m_parsers.literals.parseLiteral();
    }
    while (isSymbol(".") && ahead(1).keyword == "VALUE" && ahead(2).source == "(") {
        advance(2);
        result = m_parsers.functions.parseXmlMethod(std::move(result));
    }
    for (const char *method : {"exist", "modify", "nodes", "query"})
        if (isSymbol(".") && equalsIgnoringAsciiCase(ahead(1).value, method) && ahead(2).source == "(")
            refuse(std::string("the XML method ") + method);
    while (isKeyword("COLLATE")) {
        advance();
        const std::string collation = expectName(), upper = asciiUpper(collation);
        if (upper != "DATABASE_DEFAULT" && upper.find("_CI_AS") == std::string::npos)
            refuse("the collation " + collation);
    }
    if (isKeyword("AT") && ahead(1).keyword == "TIME" && ahead(2).keyword == "ZONE")
        refuse("AT TIME ZONE");
    return result;
}

ExpressionPtr ExpressionParser::requireValue(ExpressionPtr expression) const
{
    if (isCondition(*expression))
        failHere();
    return expression;
}

ExpressionPtr ExpressionParser::requireCondition(ExpressionPtr expression) const
{
    if (isCondition(*expression))
        return expression;
    if (current().kind == TokenKind::Symbol && current().value.ends_with('=')) // *= is no comparison
        failHere();
    fail(Errors::nonBooleanCondition(current().source), current().line);
}

SelectPtr ExpressionParser::parseParenthesizedSelect()
{
    const NestingGuard guard(*this);
    expectSymbol("(");
    if (!m_context.allowsSubqueries)
        fail(EngineError(1046, 15, 1,
                         "Subqueries are not allowed in this context. Only scalar expressions are allowed.",
                         ErrorEffect::EndsBatch),
             current().line);
    auto select = isSymbol("(") && !atSubquery() ? nullptr : m_parsers.queries.parseSelect();
    if (!select)
        failHere();
    expectSymbol(")");
    return select;
}

ExpressionPtr ExpressionParser::parseOr()
{
    const NestingGuard guard(*this);
    auto left = parseAnd();
    while (isKeyword("OR")) {
        left = requireCondition(std::move(left));
        advance();
        auto right = requireCondition(parseAnd());
        const auto *l = left.get(), *r = right.get();
        left = make(Logical{false, std::move(left), std::move(right)}, {l, r});
    }
    return left;
}

ExpressionPtr ExpressionParser::parseAnd()
{
    auto left = parseNot();
    while (isKeyword("AND")) {
        left = requireCondition(std::move(left));
        advance();
        auto right = requireCondition(parseNot());
        const auto *l = left.get(), *r = right.get();
        left = make(Logical{true, std::move(left), std::move(right)}, {l, r});
    }
    return left;
}

ExpressionPtr ExpressionParser::parseNot()
{
    const NestingGuard guard(*this);
    if (!acceptKeyword("NOT"))
        return parsePredicate();
    auto operand = requireCondition(parseNot());
    const auto *child = operand.get();
    return make(Not{std::move(operand)}, {child});
}

ExpressionPtr ExpressionParser::parsePredicate()
{
    if (isKeyword("EXISTS")) {
        advance();
        return make(Exists{parseParenthesizedSelect()});
    }
    auto left = parseAdditive();
    if (isCondition(*left))
        return left;
    if (const auto op = acceptComparison())
        return parseComparison(std::move(left), *op);
    if (acceptKeyword("IS")) {
        const bool negated = acceptKeyword("NOT");
        expectKeyword("NULL");
        const auto *child = left.get();
        return make(IsNull{std::move(left), negated}, {child});
    }
    const std::string &next = ahead(1).keyword;
    const bool negated = isKeyword("NOT") && (next == "BETWEEN" || next == "IN" || next == "LIKE");
    if (negated)
        advance();
    return parseNegatablePredicate(std::move(left), negated);
}

ExpressionPtr ExpressionParser::parseComparison(ExpressionPtr left, ComparisonOperator op)
{
    if (isKeyword("ALL") || isKeyword("ANY") || isKeyword("SOME")) {
        const bool all = isKeyword("ALL");
        advance();
        const auto *child = left.get();
        return make(QuantifiedComparison{op, all, std::move(left), parseParenthesizedSelect()}, {child});
    }
    auto right = parseExpression();
    const auto *l = left.get(), *r = right.get();
    return make(Comparison{op, std::move(left), std::move(right)}, {l, r});
}

ExpressionPtr ExpressionParser::parseNegatablePredicate(ExpressionPtr left, bool negated)
{
    const auto *child = left.get();
    if (acceptKeyword("BETWEEN")) {
        auto low = parseExpression();
        expectKeyword("AND");
        auto high = parseExpression();
        const auto *l = low.get(), *h = high.get();
        return make(Between{std::move(left), std::move(low), std::move(high), negated}, {child, l, h});
    }
    if (acceptKeyword("LIKE")) {
        auto pattern = parseExpression();
        auto escape = acceptKeyword("ESCAPE") ? parseExpression() : nullptr;
        const auto *p = pattern.get();
        return make(Like{std::move(left), std::move(pattern), std::move(escape), negated}, {child, p});
    }
    if (!acceptKeyword("IN"))
        return left;
    if (isSymbol("(") && (ahead(1).keyword == "SELECT"))
        return make(InQuery{std::move(left), parseParenthesizedSelect(), negated}, {child});
    expectSymbol("(");
    InList in{std::move(left), {}, negated};
    do
        in.list.push_back(parseExpression());
    while (acceptSymbol(","));
    expectSymbol(")");
    return make(std::move(in), {child});
}

std::optional<ComparisonOperator> ExpressionParser::acceptComparison()
{
    static constexpr std::pair<std::string_view, ComparisonOperator> operators[] = {
        {"=", ComparisonOperator::Equal},           {"<>", ComparisonOperator::NotEqual},
        {"!=", ComparisonOperator::NotEqual},       {"<", ComparisonOperator::Less},
        {"<=", ComparisonOperator::LessOrEqual},    {">", ComparisonOperator::Greater},
        {">=", ComparisonOperator::GreaterOrEqual}, {"!<", ComparisonOperator::GreaterOrEqual},
        {"!>", ComparisonOperator::LessOrEqual}};
    for (const auto &[symbol, op] : operators)
        if (acceptSymbol(symbol))
            return op;
    return {};
}

ExpressionPtr ExpressionParser::parseAdditive()
{
    auto left = parseMultiplicative();
    while (current().kind == TokenKind::Symbol) {
        const std::string symbol = current().value;
        if (symbol != "+" && symbol != "-" && symbol != "&" && symbol != "|" && symbol != "^")
            break;
        left = requireValue(std::move(left));
        advance();
        auto right = requireValue(parseMultiplicative());
        const auto *l = left.get(), *r = right.get();
        if (symbol == "+" || symbol == "-") {
            const auto op = symbol == "+" ? ArithmeticOperator::Add : ArithmeticOperator::Subtract;
            left = make(Arithmetic{op, std::move(left), std::move(right)}, {l, r});
        } else {
            const auto op = symbol == "&"   ? BitOperator::And
                            : symbol == "|" ? BitOperator::Or
                                            : BitOperator::Xor;
            left = make(Bitwise{op, std::move(left), std::move(right)}, {l, r});
        }
    }
    return left;
}

ExpressionPtr ExpressionParser::parseMultiplicative()
{
    auto left = parseUnary();
    while (isSymbol("*") || isSymbol("/") || isSymbol("%")) {
        left = requireValue(std::move(left));
        const auto op = isSymbol("*")   ? ArithmeticOperator::Multiply
                        : isSymbol("/") ? ArithmeticOperator::Divide
                                        : ArithmeticOperator::Modulo;
        advance();
        auto right = requireValue(parseUnary());
        const auto *l = left.get(), *r = right.get();
        left = make(Arithmetic{op, std::move(left), std::move(right)}, {l, r});
    }
    return left;
}

ExpressionPtr ExpressionParser::parseUnary()
{
    const NestingGuard guard(*this);
    const bool minus = isSymbol("-");
    if (!minus && !isSymbol("+") && !isSymbol("~"))
        return parsePrimary();
    const auto op = minus           ? UnaryOperator::Minus
                    : isSymbol("+") ? UnaryOperator::Plus
                                    : UnaryOperator::BitNot;
    advance();
    auto operand = requireValue(parseUnary());
    const auto *child = operand.get();
    return make(Unary{op, std::move(operand)}, {child});
}

ExpressionPtr ExpressionParser::parseWordExpression()
{
    static constexpr std::string_view bareFunctions[] = {"CURRENT_TIMESTAMP", "CURRENT_USER", "SESSION_USER",
                                                         "SYSTEM_USER",       "USER",         "CURRENT_DATE"};
    const Token &token = current();
    if (token.kind == TokenKind::Word) {
        if (token.keyword == "NULL") {
            advance();
            return make(Literal{{TypeId::Int, 0, 0, 0}, Value()});
        }
        if (token.keyword == "CASE")
            return m_parsers.functions.parseCase();
        if (token.keyword == "UPDATE" && ahead(1).source == "(") { // UPDATE(column) in a trigger: a condition
            advance();
            auto one = make(Literal{{TypeId::Int, 0, 0, 0}, Value(std::int64_t{1})});
            return make(Comparison{ComparisonOperator::Equal, m_parsers.functions.parseFunction({{"UPDATE"}}),
                                   std::move(one)});
        }
        const bool called = ahead(1).kind == TokenKind::Symbol && ahead(1).value == "(";
        for (const char *word : {"CONTAINS", "FREETEXT"})
            if (called && token.keyword == word)
                refuse(word);
        for (const char *word : {"IDENTITY", "PARSE", "TRY_PARSE"}) // their arguments are no expressions
            if (called && token.keyword == word)
                refuse(std::string("the function ") + word);
        if (called && (token.keyword == "CAST" ||
                       (token.keyword == "TRY_CAST" && m_context.edition >= Edition::Sql2022)))
            return m_parsers.functions.parseCast(token.keyword == "TRY_CAST");
        if (called && token.keyword == "TRY_CONVERT" && m_context.edition < Edition::Sql2022) {
            advance();
            return m_parsers.functions.parseFunction({{token.value}}); // reports the unknown function
        }
        if (called && (token.keyword == "CONVERT" || token.keyword == "TRY_CONVERT"))
            return m_parsers.functions.parseConvert(token.keyword == "TRY_CONVERT");
        if (std::find(std::begin(bareFunctions), std::end(bareFunctions), token.keyword) !=
            std::end(bareFunctions)) {
            advance();
            return make(FunctionCall{{{token.keyword}}, {}, false, false, {}, {}});
        }
        static constexpr std::string_view functionWords[] = {"COALESCE", "LEFT", "NULLIF", "RIGHT"};
        if (called && std::find(std::begin(functionWords), std::end(functionWords), token.keyword) !=
                          std::end(functionWords)) {
            advance();
            return m_parsers.functions.parseFunction({{token.keyword}});
        }
    }
    ObjectName name = parseObjectName();
    if (isSymbol("(") && name.parts.size() > 1 && equalsIgnoringAsciiCase(name.object(), "value")) {
        name.parts.pop_back();
        return m_parsers.functions.parseXmlMethod(make(ColumnReference{std::move(name)}));
    }
    if (isSymbol("("))
        return m_parsers.functions.parseFunction(std::move(name));
    if (!m_context.allowsColumns)
        fail(EngineError(128, 15, 1,
                         "The name \"" + name.toString() +
                             "\" is not permitted in this context. Valid expressions are constants, constant "
                             "expressions, and (in some contexts) variables. Column names are not permitted.",
                         ErrorEffect::EndsBatch),
             token.line);
    return make(ColumnReference{std::move(name)});
}

} // namespace SampleServer
