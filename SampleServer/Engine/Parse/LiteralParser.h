#pragma once

#include "Engine/Parse/TokenReader.h"

namespace SampleServer {

struct Parsers;

/// Parses constants.
class LiteralParser : private TokenReader
{
public:
    LiteralParser(ParseContext &context, Parsers &parsers)
        : TokenReader(context)
        , m_parsers(parsers)
    {
    }

    Ast::ExpressionPtr parseLiteral();

private:
    Parsers &m_parsers;
};

} // namespace SampleServer
