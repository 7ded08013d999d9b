#pragma once

#include "Engine/Parse/TokenReader.h"

namespace SampleServer {

struct Parsers;

/// Parses FROM clauses.
class SourceParser : private TokenReader
{
public:
    SourceParser(ParseContext &context, Parsers &parsers)
        : TokenReader(context)
        , m_parsers(parsers)
    {
    }

    std::vector<Ast::TableSourcePtr> parseFrom();
    bool parseTableHints();

private:
    Ast::TableSourcePtr parseJoinedTable();
    Ast::TableSourcePtr parseJoin(Ast::JoinKind kind, Ast::TableSourcePtr left);
    std::optional<Ast::JoinKind> acceptJoin();
    Ast::TableSourcePtr parseTable();
    Ast::TableSourcePtr parseNamedTable();
    Ast::TableSourcePtr parseParenthesizedTable();
    void parseTableAlias(Ast::TableSource &table);
    bool parseHintList();

    Parsers &m_parsers;
};

} // namespace SampleServer
