#pragma once

#include "Engine/Parse/AstStatements.h"
#include "Engine/Parse/Parser.h"

#include <string_view>
#include <vector>

namespace SampleServer {

/// How control flow continues after a statement.
enum class Flow { Next, Break, Continue, Return };

/// Runs statements of any kind, for executors of modules and dynamic texts.
class StatementRunner
{
public:
    virtual ~StatementRunner() = default;
    /// Runs a text to its end or to an error that ends only this text; throws errors that end more.
    virtual void runText(std::string_view sql, const ParserOptions &options) = 0;
    virtual Flow runStatements(const std::vector<Ast::StatementPtr> &statements) = 0;
};

} // namespace SampleServer
