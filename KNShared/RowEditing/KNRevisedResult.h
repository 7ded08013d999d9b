#pragma once

#include "RowEditing/KNRowApplication.h"

/// A copy of a result with applied changes: deleted rows are left out, changed ones have the values that were
/// read again, new ones are at the end. A new row that could not be read has the values that were entered.
/// Slow for many rows; call it in the background.
KNSHARED_EXPORT KNDatabaseResultSetPtr KNRevisedResult(const KNDatabaseResultSet &result,
                                                       const KNEditableTable &table, const KNRowEdits &edits,
                                                       const KNRowApplication &applied);
