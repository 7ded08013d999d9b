#pragma once

#include "Engine/Parse/ChangeParser.h"
#include "Engine/Parse/DefinitionParser.h"
#include "Engine/Parse/ExpressionParser.h"
#include "Engine/Parse/FunctionParser.h"
#include "Engine/Parse/LiteralParser.h"
#include "Engine/Parse/ModuleParser.h"
#include "Engine/Parse/QueryParser.h"
#include "Engine/Parse/SourceParser.h"
#include "Engine/Parse/StatementParser.h"
#include "Engine/Parse/TableParser.h"

namespace SampleServer {

/// The recursive descent parsers of one batch, which call each other.
struct Parsers
{
    explicit Parsers(ParseContext &context)
        : expressions(context, *this)
        , functions(context, *this)
        , literals(context, *this)
        , queries(context, *this)
        , sources(context, *this)
        , changes(context, *this)
        , tables(context, *this)
        , definitions(context, *this)
        , modules(context, *this)
        , statements(context, *this)
    {
    }
    Parsers(const Parsers &) = delete;
    Parsers &operator=(const Parsers &) = delete;

    ExpressionParser expressions;
    FunctionParser functions;
    LiteralParser literals;
    QueryParser queries;
    SourceParser sources;
    ChangeParser changes;
    TableParser tables;
    DefinitionParser definitions;
    ModuleParser modules;
    StatementParser statements;
};

} // namespace SampleServer
