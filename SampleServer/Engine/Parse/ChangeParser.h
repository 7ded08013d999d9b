#pragma once

#include "Engine/Parse/TokenReader.h"

namespace SampleServer {

struct Parsers;

/// Parses INSERT, UPDATE and DELETE.
class ChangeParser : private TokenReader
{
public:
    ChangeParser(ParseContext &context, Parsers &parsers)
        : TokenReader(context)
        , m_parsers(parsers)
    {
    }

    Ast::StatementPtr parseInsert();
    Ast::StatementPtr parseUpdate();
    Ast::StatementPtr parseUpdateText();
    Ast::StatementPtr parseDelete();
    std::vector<std::vector<Ast::ExpressionPtr>> parseRows(bool allowDefault);

private:
    Parsers &m_parsers;
};

} // namespace SampleServer
