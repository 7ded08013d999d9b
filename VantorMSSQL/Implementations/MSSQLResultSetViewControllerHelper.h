#pragma once

#include "RowEditing/ResultSetViewControllerHelper.h"

/// What SQL Server's types mean to a result grid.
class MSSQLResultSetViewControllerHelper : public ResultSetViewControllerHelper
{
public:
    /// By db-lib's type number; the value makes no difference.
    int dataTypeForTableColumnIndex(qsizetype columnIndex, const KNValue &object) const override;
    QString typeNameForColumn(qsizetype column) const override;
    /// Says of sql_variant how to see its values.
    QString remarkForColumn(qsizetype column) const override;
    /// Dates by the kind of their column, in UTC to the millisecond: "2024-02-29 13:45:07:123",
    /// "13:45:07:123" or "2024-02-29". The end of the day is "24:00:00:000".
    QString stringForValue(const KNValue &value, qsizetype column, bool allowTruncate) const override;
};
