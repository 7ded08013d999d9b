#pragma once

#include "Engine/Parse/AstExpressions.h"
#include "Types/Value.h"

namespace SampleServer {

/// Compares two non-NULL values of one type in the server's order: negative, 0 or positive.
int compareValues(const Value &left, const Value &right);
/// Compares two sql_variant values: by family of types first, then by value.
int compareVariants(const VariantValue &left, const VariantValue &right);

/// Whether the operator is true for the result of a comparison.
bool holds(Ast::ComparisonOperator op, int order);

} // namespace SampleServer
