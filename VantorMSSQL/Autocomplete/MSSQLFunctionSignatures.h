#pragma once

#include "SQL/KNSignature.h"

#include <QHash>

namespace MSSQLFunctionSignatures {

/// The signatures of T-SQL's functions by their names in upper case, from the connector's resources. Those
/// of the schema sys are there with their schema, too.
QHash<QString, KNSignature> read();

} // namespace MSSQLFunctionSignatures
