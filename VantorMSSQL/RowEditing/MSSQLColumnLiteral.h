#pragma once

#include "RowEditing/KNEditRowColumn.h"

/// Values of a column as statements of a grid hold them. Pure; any thread.
namespace MSSQLColumnLiteral {

/// The column's type without length, precision and scale, in lower case.
QString baseType(const KNEditRowColumn &column);
/// A literal of the value. For float and real it has 17 digits or 9 and an exponent, so that every bit of
/// the number arrives: without an exponent it would be a decimal.
QString of(const KNEditRowColumn &column, const KNValue &value);

} // namespace MSSQLColumnLiteral
