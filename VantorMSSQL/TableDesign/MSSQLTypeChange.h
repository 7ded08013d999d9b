#pragma once

#include "TableDesign/MSSQLDesignedTable.h"

/// Changes of a column's type that can lose values or fail because of them. Types are written as in a
/// statement: "nvarchar(50)", "decimal(9,2)". Pure, any thread.
namespace MSSQLTypeChange {

/// Whether the new type may not hold every value of the old one: it is shorter, of less precision, or of
/// another family.
bool mayLoseValues(const QString &before, const QString &after);

/// The query that counts the rows whose values the new type does not hold unchanged: it refuses, rounds or
/// cuts them. Null if no query tells. From SQL Server 2012 on for changes between families.
QString countQuery(const MSSQLDesignedTable &table, const QString &column, const QString &before,
                   const QString &after);

} // namespace MSSQLTypeChange
