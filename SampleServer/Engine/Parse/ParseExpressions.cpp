#include "Engine/Errors.h"
#include "Engine/Parse/Parser.h"
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

ExpressionPtr Parser::requireValue(ExpressionPtr expression) const
{
    if (isCondition(*expression))
        failHere();
    return expression;
}

ExpressionPtr Parser::requireCondition(ExpressionPtr expression) const
{
    if (isCondition(*expression))
        return expression;
    if (current().kind == TokenKind::Symbol && current().value.ends_with('=')) // *= is no comparison
        failHere();
    fail(Errors::nonBooleanCondition(current().source), current().line);
}

ExpressionPtr Parser::parseExpression()
{
    return requireValue(parseAdditive());
}

ExpressionPtr Parser::parseCondition()
{
    return requireCondition(parseOr());
}

ExpressionPtr Parser::parseOr()
{
    const NestingGuard guard(*this);
    auto left = parseAnd();
    while (isKeyword("OR")) {
        left = requireCondition(std::move(left));
        ++m_at;
        auto right = requireCondition(parseAnd());
        const auto *l = left.get(), *r = right.get();
        left = make(Logical{false, std::move(left), std::move(right)}, {l, r});
    }
    return left;
}

ExpressionPtr Parser::parseAnd()
{
    auto left = parseNot();
    while (isKeyword("AND")) {
        left = requireCondition(std::move(left));
        ++m_at;
        auto right = requireCondition(parseNot());
        const auto *l = left.get(), *r = right.get();
        left = make(Logical{true, std::move(left), std::move(right)}, {l, r});
    }
    return left;
}

ExpressionPtr Parser::parseNot()
{
    const NestingGuard guard(*this);
    if (!acceptKeyword("NOT"))
        return parsePredicate();
    auto operand = requireCondition(parseNot());
    const auto *child = operand.get();
    return make(Not{std::move(operand)}, {child});
}

ExpressionPtr Parser::parsePredicate()
{
    if (isKeyword("EXISTS")) {
        ++m_at;
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
        ++m_at;
    return parseNegatablePredicate(std::move(left), negated);
}

ExpressionPtr Parser::parseComparison(ExpressionPtr left, ComparisonOperator op)
{
    if (isKeyword("ALL") || isKeyword("ANY") || isKeyword("SOME")) {
        const bool all = isKeyword("ALL");
        ++m_at;
        const auto *child = left.get();
        return make(QuantifiedComparison{op, all, std::move(left), parseParenthesizedSelect()}, {child});
    }
    auto right = parseExpression();
    const auto *l = left.get(), *r = right.get();
    return make(Comparison{op, std::move(left), std::move(right)}, {l, r});
}

ExpressionPtr Parser::parseNegatablePredicate(ExpressionPtr left, bool negated)
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

std::optional<ComparisonOperator> Parser::acceptComparison()
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

ExpressionPtr Parser::parseAdditive()
{
    auto left = parseMultiplicative();
    while (current().kind == TokenKind::Symbol) {
        const std::string symbol = current().value;
        if (symbol != "+" && symbol != "-" && symbol != "&" && symbol != "|" && symbol != "^")
            break;
        left = requireValue(std::move(left));
        ++m_at;
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

ExpressionPtr Parser::parseMultiplicative()
{
    auto left = parseUnary();
    while (isSymbol("*") || isSymbol("/") || isSymbol("%")) {
        left = requireValue(std::move(left));
        const auto op = isSymbol("*")   ? ArithmeticOperator::Multiply
                        : isSymbol("/") ? ArithmeticOperator::Divide
                                        : ArithmeticOperator::Modulo;
        ++m_at;
        auto right = requireValue(parseUnary());
        const auto *l = left.get(), *r = right.get();
        left = make(Arithmetic{op, std::move(left), std::move(right)}, {l, r});
    }
    return left;
}

ExpressionPtr Parser::parseUnary()
{
    const NestingGuard guard(*this);
    const bool minus = isSymbol("-");
    if (!minus && !isSymbol("+") && !isSymbol("~"))
        return parsePrimary();
    const auto op = minus           ? UnaryOperator::Minus
                    : isSymbol("+") ? UnaryOperator::Plus
                                    : UnaryOperator::BitNot;
    ++m_at;
    auto operand = requireValue(parseUnary());
    const auto *child = operand.get();
    return make(Unary{op, std::move(operand)}, {child});
}

bool Parser::atSubquery() const
{
    std::size_t depth = 0;
    while (ahead(depth).kind == TokenKind::Symbol && ahead(depth).value == "(")
        ++depth;
    return depth > 0 && ahead(depth).keyword == "SELECT";
}

SelectPtr Parser::parseParenthesizedSelect()
{
    const NestingGuard guard(*this);
    expectSymbol("(");
    if (!m_allowsSubqueries)
        fail(EngineError(1046, 15, 1,
                         "Subqueries are not allowed in this context. Only scalar expressions are allowed.",
                         ErrorEffect::EndsBatch),
             current().line);
    auto select = isSymbol("(") && !atSubquery() ? nullptr : parseSelect();
    if (!select)
        failHere();
    expectSymbol(")");
    return select;
}

ExpressionPtr Parser::parsePrimary()
{
    ExpressionPtr result;
    const Token &token = current();
    if (isSymbol("(")) {
        if (ahead(1).keyword == "SELECT") {
            result = make(ScalarQuery{parseParenthesizedSelect()});
        } else {
            ++m_at;
            result = parseOr();
            expectSymbol(")");
        }
    } else if (token.kind == TokenKind::Variable) {
        result = make(VariableReference{expectVariable()});
    } else if (token.kind == TokenKind::GlobalVariable) {
        ++m_at;
        result = make(GlobalVariableReference{token.value});
    } else if (token.kind == TokenKind::Word || token.kind == TokenKind::QuotedIdentifier) {
        result = parseWordExpression();
    } else {
        result = parseLiteral();
    }
    while (isSymbol(".") && ahead(1).keyword == "VALUE" && ahead(2).source == "(") {
        m_at += 2;
        result = parseXmlMethod(std::move(result));
    }
    for (const char *method : {"exist", "modify", "nodes", "query"})
        if (isSymbol(".") && equalsIgnoringAsciiCase(ahead(1).value, method) && ahead(2).source == "(")
            refuse(std::string("the XML method ") + method);
    while (isKeyword("COLLATE")) {
        ++m_at;
        const std::string collation = expectName(), upper = asciiUpper(collation);
        if (upper != "DATABASE_DEFAULT" && upper.find("_CI_AS") == std::string::npos)
            refuse("the collation " + collation);
    }
    if (isKeyword("AT") && ahead(1).keyword == "TIME" && ahead(2).keyword == "ZONE")
        refuse("AT TIME ZONE");
    return result;
}

ExpressionPtr Parser::parseWordExpression()
{
    static constexpr std::string_view bareFunctions[] = {"CURRENT_TIMESTAMP", "CURRENT_USER", "SESSION_USER",
                                                         "SYSTEM_USER",       "USER",         "CURRENT_DATE"};
    const Token &token = current();
    if (token.kind == TokenKind::Word) {
        if (token.keyword == "NULL") {
            ++m_at;
            return make(Literal{{TypeId::Int, 0, 0, 0}, Value()});
        }
        if (token.keyword == "CASE")
            return parseCase();
        if (token.keyword == "UPDATE" && ahead(1).source == "(") { // UPDATE(column) in a trigger: a condition
            ++m_at;
            auto one = make(Literal{{TypeId::Int, 0, 0, 0}, Value(std::int64_t{1})});
            return make(Comparison{ComparisonOperator::Equal, parseFunction({{"UPDATE"}}), std::move(one)});
        }
        const bool called = ahead(1).kind == TokenKind::Symbol && ahead(1).value == "(";
        for (const char *word : {"CONTAINS", "FREETEXT"})
            if (called && token.keyword == word)
                refuse(word);
        for (const char *word : {"IDENTITY", "PARSE", "TRY_PARSE"}) // their arguments are no expressions
            if (called && token.keyword == word)
                refuse(std::string("the function ") + word);
        if (called &&
            (token.keyword == "CAST" || (token.keyword == "TRY_CAST" && m_edition >= Edition::Sql2022)))
            return parseCast(token.keyword == "TRY_CAST");
        if (called && token.keyword == "TRY_CONVERT" && m_edition < Edition::Sql2022) {
            ++m_at;
            return parseFunction({{token.value}}); // no function there, and says so
        }
        if (called && (token.keyword == "CONVERT" || token.keyword == "TRY_CONVERT"))
            return parseConvert(token.keyword == "TRY_CONVERT");
        if (std::find(std::begin(bareFunctions), std::end(bareFunctions), token.keyword) !=
            std::end(bareFunctions)) {
            ++m_at;
            return make(FunctionCall{{{token.keyword}}, {}, false, false, {}, {}});
        }
        static constexpr std::string_view functionWords[] = {"COALESCE", "LEFT", "NULLIF", "RIGHT"};
        if (called && std::find(std::begin(functionWords), std::end(functionWords), token.keyword) !=
                          std::end(functionWords)) {
            ++m_at;
            return parseFunction({{token.keyword}});
        }
    }
    ObjectName name = parseObjectName();
    if (isSymbol("(") && name.parts.size() > 1 && equalsIgnoringAsciiCase(name.object(), "value")) {
        name.parts.pop_back();
        return parseXmlMethod(make(ColumnReference{std::move(name)}));
    }
    if (isSymbol("("))
        return parseFunction(std::move(name));
    if (!m_allowsColumns)
        fail(EngineError(128, 15, 1,
                         "The name \"" + name.toString() +
                             "\" is not permitted in this context. Valid expressions are constants, constant "
                             "expressions, and (in some contexts) variables. Column names are not permitted.",
                         ErrorEffect::EndsBatch),
             token.line);
    return make(ColumnReference{std::move(name)});
}

} // namespace SampleServer
