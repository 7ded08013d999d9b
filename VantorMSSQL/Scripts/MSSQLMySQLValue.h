#pragma once

#include "Foundation/KNValue.h"

/// Values in MySQL's INSERT statements.
namespace MSSQLMySQLValue {

/// The value as a literal: NULL, numbers in plain notation without loss, text and dates in apostrophes with
/// MySQL's escapes (it does not take backslashes as they are), bytes as x'...'.
QString literal(const KNValue &value);

/// A literal for a value of a variant column as MSSQLMySQLColumn selects it: text behind a t, hexadecimal
/// digits behind an x, or null.
QString variantLiteral(const KNValue &value);

} // namespace MSSQLMySQLValue
