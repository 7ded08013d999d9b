#pragma once

#include "Engine/Parse/AstExpressions.h"
#include "Types/Value.h"

namespace SampleServer {

/// Compares two values of one type that are not NULL as the server orders them: negative, 0 or positive.
int compareValues(const Value &left, const Value &right);
/// Compares two sql_variant values: by family of types first, then by value.
int compareVariants(const VariantValue &left, const VariantValue &right);

/// Whether the operator holds for the outcome of a comparison.
bool holds(Ast::ComparisonOperator op, int order);

} // namespace SampleServer
