#pragma once

#include "Types/Decimal.h"
#include "Types/SqlType.h"

namespace SampleServer {

enum class ArithmeticOperator { Add, Subtract, Multiply, Divide, Modulo };

/// 10 to the power of `exponent`, at most 38.
UInt128 powerOfTen(unsigned exponent);
/// The number of decimal digits; 1 for zero.
int digitCount(UInt128 magnitude);

std::strong_ordering compareDecimals(const Decimal &left, const Decimal &right);

/// Precision and scale of the result of an operation on two decimal types, as defined in the language
/// reference.
SqlType decimalResultType(ArithmeticOperator op, const SqlType &left, const SqlType &right);

/// Calculates at the scale of `result`: a quotient is truncated, other results are rounded. Empty if it
/// exceeds the precision of `result`. The divisor must not be zero.
std::optional<Decimal> calculate(ArithmeticOperator op, const Decimal &left, const Decimal &right,
                                 const SqlType &result);

/// The decimal nearest to a double at a scale; empty if it has more than 38 digits or is not finite.
std::optional<Decimal> decimalFromDouble(double value, std::uint8_t scale);

Decimal decimalFromInteger(std::int64_t value);
/// The integral part, truncated towards zero; empty if it does not fit.
std::optional<std::int64_t> toInteger(const Decimal &value);

} // namespace SampleServer
