#pragma once

#include "Engine/Parse/TokenReader.h"

namespace SampleServer {

struct Parsers;

/// Parses CREATE, ALTER and DROP, except for modules and the elements of tables.
class DefinitionParser : private TokenReader
{
public:
    DefinitionParser(ParseContext &context, Parsers &parsers)
        : TokenReader(context)
        , m_parsers(parsers)
    {
    }

    Ast::StatementPtr parseCreate();
    Ast::StatementPtr parseAlter();
    Ast::StatementPtr parseDrop();
    Ast::StatementPtr parseTruncate();
    Ast::StatementPtr parseEnableTrigger();
    void parseIndexTail(Ast::CreateIndex &index);
    Ast::IndexOptions parseIndexOptions();

private:
    Ast::StatementPtr parseCreateDatabase();
    Ast::StatementPtr parseCreateSchema();
    Ast::StatementPtr parseCreateType();
    Ast::StatementPtr parseCreateIndex();
    Ast::StatementPtr parseAlterDatabase();
    void skipDatabaseOptions();
    Ast::StatementPtr parseAlterTable();
    void parseTableAdditions(Ast::AlterTable &node);
    void parseAlterColumn(Ast::AlterTable &node);
    void parseTableDrops(Ast::AlterTable &node);
    void parseEnabling(Ast::AlterTable &node);
    Ast::StatementPtr parseAlterIndex();
    Ast::StatementPtr parseDropIndex(bool ifExists);

    Parsers &m_parsers;
};

} // namespace SampleServer
