#pragma once

#include "Engine/Parse/TokenReader.h"

namespace SampleServer {

struct Parsers;

/// Parses CREATE and ALTER of views, procedures, functions and triggers.
class ModuleParser : private TokenReader
{
public:
    ModuleParser(ParseContext &context, Parsers &parsers)
        : TokenReader(context)
        , m_parsers(parsers)
    {
    }

    bool atModule() const;
    Ast::StatementPtr parseModule(std::size_t start, bool create, bool alter);

private:
    void parseModuleOptions(Ast::ModuleDefinition &module);
    void parseViewRest(Ast::ModuleDefinition &module);
    void parseParameters(Ast::ModuleDefinition &module);
    void parseProcedureRest(Ast::ModuleDefinition &module);
    void parseFunctionRest(Ast::ModuleDefinition &module);
    void parseInlineBody(Ast::ModuleDefinition &module);
    bool closesBeforeSetOperator() const;
    void parseTriggerRest(Ast::ModuleDefinition &module);

    Parsers &m_parsers;
};

} // namespace SampleServer
