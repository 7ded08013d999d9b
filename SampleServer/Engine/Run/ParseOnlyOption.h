#pragma once

#include "Engine/Parse/AstStatements.h"

#include <optional>

namespace SampleServer {

/// The last SET PARSEONLY of a batch, wherever it stands: it takes effect when the batch is parsed, even if
/// the statement would not run. Empty if there is none.
std::optional<bool> parseOnlyOption(const std::vector<Ast::StatementPtr> &statements);

} // namespace SampleServer
