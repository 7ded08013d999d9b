#pragma once

#include "Types/Decimal.h"
#include "Types/SqlType.h"

namespace SampleServer {

enum class ArithmeticOperator { Add, Subtract, Multiply, Divide, Modulo };

/// 10 to the power of `exponent`, at most 38.
UInt128 powerOfTen(unsigned exponent);
/// How many decimal digits the number has; 1 for zero.
int digitCount(UInt128 magnitude);

std::strong_ordering compareDecimals(const Decimal &left, const Decimal &right);

/// Precision and scale of the result of an operation on two decimal types, as the language reference derives
/// them.
SqlType decimalResultType(ArithmeticOperator op, const SqlType &left, const SqlType &right);

/// The result at the scale of `result`: a quotient is cut off there, every other result rounded.
/// Empty when it exceeds the precision of `result`. The divisor must not be zero.
std::optional<Decimal> calculate(ArithmeticOperator op, const Decimal &left, const Decimal &right,
                                 const SqlType &result);

/// The decimal nearest to a double at a scale; empty when it has more than 38 digits or is not finite.
std::optional<Decimal> decimalFromDouble(double value, std::uint8_t scale);

Decimal decimalFromInteger(std::int64_t value);
/// The integral part, cut towards zero; empty when it does not fit.
std::optional<std::int64_t> toInteger(const Decimal &value);

} // namespace SampleServer
