#pragma once

#include "Engine/Parse/TokenReader.h"

namespace SampleServer {

struct Parsers;

/// Parses SELECT with its clauses.
class QueryParser : private TokenReader
{
public:
    QueryParser(ParseContext &context, Parsers &parsers)
        : TokenReader(context)
        , m_parsers(parsers)
    {
    }

    Ast::SelectPtr parseSelect();
    std::vector<Ast::CommonTable> parseWith();
    std::optional<Ast::Top> parseTop();
    std::vector<Ast::OrderItem> parseOrderItems();
    std::optional<int> parseOption();

private:
    std::string parseAlias();
    Ast::ForXml parseForXml();
    void countSetOperator();
    std::unique_ptr<Ast::Query> parseQuery();
    std::unique_ptr<Ast::Query> parseIntersection();
    void requireNoInto(const Ast::Query &query) const;
    std::unique_ptr<Ast::Query> parseQueryTerm();
    void parseSpecification(Ast::QuerySpecification &query);
    bool atStar() const;
    Ast::SelectItem parseSelectItem();
    void parseOrderBy(Ast::Select &select);
    void parseCompute(Ast::Select &select);

    Parsers &m_parsers;
};

} // namespace SampleServer
