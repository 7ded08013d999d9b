#pragma once

#include "Foundation/KNValue.h"

/// Values in MySQL's INSERT statements.
namespace MSSQLMySQLValue {

/// The value as a literal: NULL, numbers in plain notation without loss, text and dates in apostrophes with
/// MySQL's escapes (a backslash is an escape character there), bytes as x'...'.
QString literal(const KNValue &value);

/// A literal for a value of a variant column as MSSQLMySQLColumn selects it: text after a t, hexadecimal
/// digits after an x, or null.
QString variantLiteral(const KNValue &value);

} // namespace MSSQLMySQLValue
