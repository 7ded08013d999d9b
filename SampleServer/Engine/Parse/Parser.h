#pragma once

#include "Engine/Edition.h"
#include "Engine/Parse/AstStatements.h"

#include <string>
#include <string_view>
#include <vector>

namespace SampleServer {

struct ParserOptions
{
    bool quotedIdentifiers = true;
    std::vector<std::string>
        declaredVariables; ///< known before the batch starts (parameters of sp_executesql)
    Edition edition = Edition::Sql2022;
};

/// Parses a batch into statements. Throws EngineError (102, 137, 156 ...) with its line.
std::vector<Ast::StatementPtr> parseBatch(std::string_view sql, const ParserOptions &options);

} // namespace SampleServer
