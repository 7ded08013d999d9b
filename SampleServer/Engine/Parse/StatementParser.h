#pragma once

#include "Engine/Parse/TokenReader.h"

namespace SampleServer {

struct Parsers;

/// Parses the statements of a batch: control flow and session statements itself, the rest with the other
/// parsers.
class StatementParser : private TokenReader
{
public:
    StatementParser(ParseContext &context, Parsers &parsers)
        : TokenReader(context)
        , m_parsers(parsers)
    {
    }

    std::vector<Ast::StatementPtr> parseStatements();
    Ast::StatementPtr parseExecute();

private:
    Ast::StatementPtr parseStatement();
    Ast::StatementPtr parseDataStatement(const std::string &keyword);
    Ast::StatementPtr parseTransaction(Ast::Transaction::Kind kind);
    Ast::StatementPtr parseControlStatement(const std::string &keyword);
    Ast::StatementPtr parseDefinitionStatement(const std::string &keyword);
    Ast::StatementPtr parseWithStatement();
    Ast::StatementPtr parseBegin();
    Ast::Block parseBlock();
    Ast::StatementPtr parseTryCatch();
    Ast::StatementPtr parseReturn();
    Ast::StatementPtr parseThrow();
    Ast::StatementPtr parseIf();
    Ast::StatementPtr parseWhile();
    Ast::StatementPtr parseLoopExit(bool isBreak);
    Ast::StatementPtr parseDeclare();
    Ast::StatementPtr parseSet();
    Ast::StatementPtr parseSetOption();
    Ast::StatementPtr parseRaiseError();
    Ast::StatementPtr parseWaitFor();

    Parsers &m_parsers;
};

} // namespace SampleServer
