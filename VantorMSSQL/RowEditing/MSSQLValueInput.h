#pragma once

#include "RowEditing/KNTypedValue.h"

/// The kinds of values that types take.
namespace MSSQLValueInput {

/// `typeName` may have length, precision and scale. Types of users take text, which the server converts.
KNTypedValue::Input of(const QString &typeName);

} // namespace MSSQLValueInput
