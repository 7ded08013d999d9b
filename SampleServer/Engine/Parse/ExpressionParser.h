#pragma once

#include "Engine/Parse/TokenReader.h"

namespace SampleServer {

struct Parsers;

/// Parses expressions and conditions.
class ExpressionParser : private TokenReader
{
public:
    ExpressionParser(ParseContext &context, Parsers &parsers)
        : TokenReader(context)
        , m_parsers(parsers)
    {
    }

    Ast::ExpressionPtr parseExpression();
    Ast::ExpressionPtr parseCondition();
    DefinedExpression keepExpression(Ast::ExpressionPtr (ExpressionParser::*parse)());
    Ast::ExpressionPtr parseCompound(Ast::ExpressionPtr target);
    Ast::ExpressionPtr parsePrimary();
    Ast::SelectPtr parseParenthesizedSelect();

private:
    Ast::ExpressionPtr requireValue(Ast::ExpressionPtr expression) const;
    Ast::ExpressionPtr requireCondition(Ast::ExpressionPtr expression) const;
    Ast::ExpressionPtr parseOr();
    Ast::ExpressionPtr parseAnd();
    Ast::ExpressionPtr parseNot();
    Ast::ExpressionPtr parsePredicate();
    Ast::ExpressionPtr parseComparison(Ast::ExpressionPtr left, Ast::ComparisonOperator op);
    Ast::ExpressionPtr parseNegatablePredicate(Ast::ExpressionPtr left, bool negated);
    std::optional<Ast::ComparisonOperator> acceptComparison();
    Ast::ExpressionPtr parseAdditive();
    Ast::ExpressionPtr parseMultiplicative();
    Ast::ExpressionPtr parseUnary();
    Ast::ExpressionPtr parseWordExpression();

    Parsers &m_parsers;
};

} // namespace SampleServer
