#pragma once

#include "Database/KNByteBuffer.h"
#include "Database/KNRowCell.h"

/// Writes the literals of stored values for INSERT statements in UTF-8, like MSSQLQuoting::literal(), without
/// creating a QString; a real is written as a float constant. Any thread.
namespace MSSQLCellLiteral {

void append(KNByteBuffer &to, const KNRowCell &cell);

} // namespace MSSQLCellLiteral
