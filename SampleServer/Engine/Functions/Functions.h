#pragma once

#include "Engine/Bind/Bound.h"

namespace SampleServer {

class Binder;

/// The computations behind operators and built-in functions. Each has the shape of Bound::ScalarFunction.
namespace Functions {

using Arguments = std::span<const Value>;

// Operators (FunctionsOperators.cpp)
Value convert(EvaluationContext &, const Bound::Operation &, Arguments);    ///< selector: style
Value tryConvert(EvaluationContext &, const Bound::Operation &, Arguments); ///< NULL instead of an error
Value liveVariable(EvaluationContext &, const Bound::Operation &, Arguments);
Value compareVariants(EvaluationContext &, const Bound::Operation &, Arguments);
Value like(EvaluationContext &, const Bound::Operation &, Arguments);
Value integerArithmetic(EvaluationContext &, const Bound::Operation &,
                        Arguments); ///< selector: ArithmeticOperator
Value decimalArithmetic(EvaluationContext &, const Bound::Operation &, Arguments); ///< also money
Value floatArithmetic(EvaluationContext &, const Bound::Operation &, Arguments);
Value dateTimeArithmetic(EvaluationContext &, const Bound::Operation &, Arguments);
Value concatenate(EvaluationContext &, const Bound::Operation &, Arguments);
Value concatenateBinary(EvaluationContext &, const Bound::Operation &, Arguments);
Value bitArithmetic(EvaluationContext &, const Bound::Operation &, Arguments); ///< selector: Ast::BitOperator
Value bitNot(EvaluationContext &, const Bound::Operation &, Arguments);
Value negate(EvaluationContext &, const Bound::Operation &, Arguments);
/// A sum divided by a count, at the result's scale; NULL for no rows.
Value average(EvaluationContext &, const Bound::Operation &, Arguments);

/// A built-in function by name (any case) on bound arguments. Throws 195 for an unknown one, 174 for a wrong
/// number.
Bound::ExpressionPtr bindBuiltin(Binder &binder, const std::string &name,
                                 std::vector<Bound::ExpressionPtr> arguments);
/// DATEADD and the others whose first argument names a part of a date. Throws 155 for an unknown part.
Bound::ExpressionPtr bindDatePartFunction(Binder &binder, const std::string &name, const std::string &part,
                                          std::vector<Bound::ExpressionPtr> arguments);
bool takesDatePart(const std::string &name);
/// Whether an upper-case name is that of a function without a window.
bool isBuiltin(std::string_view name);
/// SQLite's name of the function that sums up to a type.
std::string sumFunction(const SqlType &result);
/// The text that an XML fragment holds: what value('.') gives.
Value xmlText(EvaluationContext &, const Bound::Operation &, Arguments);
/// A global variable such as @@ROWCOUNT. Throws 137 for an unknown one.
Bound::ExpressionPtr bindGlobalVariable(Binder &binder, const std::string &name);

} // namespace Functions
} // namespace SampleServer
