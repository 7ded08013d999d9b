#pragma once

#include "Engine/Parse/TokenReader.h"

namespace SampleServer {

struct Parsers;

/// Parses calls, CASE, CAST, windows and methods of xml.
class FunctionParser : private TokenReader
{
public:
    FunctionParser(ParseContext &context, Parsers &parsers)
        : TokenReader(context)
        , m_parsers(parsers)
    {
    }

    Ast::ExpressionPtr parseFunction(Ast::ObjectName name);
    Ast::ExpressionPtr parseXmlMethod(Ast::ExpressionPtr operand);
    Ast::ExpressionPtr parseCase();
    Ast::ExpressionPtr parseCast(bool isTry);
    Ast::ExpressionPtr parseConvert(bool isTry);

private:
    Ast::Window parseWindow();
    std::string parseFrame();

    /// Parses a type from a text.
    Ast::TypeName typeOf(const std::string &text);

    Parsers &m_parsers;
};

} // namespace SampleServer
