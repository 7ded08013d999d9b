#pragma once

#include "Engine/Bind/Bound.h"

namespace SampleServer {

class Binder;

/// Implementations of operators and built-in functions. Each has the signature of Bound::ScalarFunction.
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

/// Binds a built-in function by name (any case) and arguments. Throws 195 for an unknown name, 174 for a
/// wrong number of arguments.
Bound::ExpressionPtr bindBuiltin(Binder &binder, const std::string &name,
                                 std::vector<Bound::ExpressionPtr> arguments);
/// Binds DATEADD and other functions whose first argument is a date part. Throws 155 for an unknown part.
Bound::ExpressionPtr bindDatePartFunction(Binder &binder, const std::string &name, const std::string &part,
                                          std::vector<Bound::ExpressionPtr> arguments);
bool takesDatePart(const std::string &name);
/// Whether an upper-case name is that of a built-in function without a window.
bool isBuiltin(std::string_view name);
/// SQLite's name of the function that calculates sums of a type.
std::string sumFunction(const SqlType &result);
/// The text content of an XML fragment, the result of value('.').
Value xmlText(EvaluationContext &, const Bound::Operation &, Arguments);
/// Binds a global variable such as @@ROWCOUNT. Throws 137 for an unknown one.
Bound::ExpressionPtr bindGlobalVariable(Binder &binder, const std::string &name);

} // namespace Functions
} // namespace SampleServer
