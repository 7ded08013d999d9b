#pragma once

#include "SQL/SQLMetadataTokenizer.h"

namespace MSSQLTokenizer {

/// How SQL Server reads T-SQL: comments nest, and @name is a variable.
constexpr SQLTokenizerOptions options()
{
    return {.nestedComments = true, .recognizesMSSQLVariables = true};
}

} // namespace MSSQLTokenizer
