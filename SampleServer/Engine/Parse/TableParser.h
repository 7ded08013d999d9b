#pragma once

#include "Engine/Parse/TokenReader.h"

namespace SampleServer {

struct Parsers;

/// Parses the columns, constraints and indexes of tables.
class TableParser : private TokenReader
{
public:
    TableParser(ParseContext &context, Parsers &parsers)
        : TokenReader(context)
        , m_parsers(parsers)
    {
    }

    Ast::StatementPtr parseCreateTable();
    void parseTableElements(Ast::CreateTable &table);
    void parseTableElement(Ast::CreateTable &table);
    std::vector<Ast::KeyColumn> parseKeyColumns();
    std::optional<bool> acceptClustering();
    void skipStorage();
    bool parseColumnProperty(Ast::ColumnDefinition &column);

private:
    void parseTableConstraint(Ast::CreateTable &table);
    void parseColumnDefinition(Ast::CreateTable &table);
    void parseTableIndex(Ast::CreateTable &table);
    bool atTableConstraint() const;
    bool parseColumnConstraint(Ast::CreateTable &table, const std::string &column, std::string &name);
    void parseKey(Ast::Constraint &constraint);
    void parseCheck(Ast::Constraint &constraint);
    void parseReference(Ast::Constraint &constraint);
    ReferentialAction parseReferentialAction();

    Parsers &m_parsers;
};

} // namespace SampleServer
