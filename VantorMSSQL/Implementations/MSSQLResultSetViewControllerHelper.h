#pragma once

#include "RowEditing/ResultSetViewControllerHelper.h"

/// Formats values of SQL Server's types for a result grid.
class MSSQLResultSetViewControllerHelper : public ResultSetViewControllerHelper
{
public:
    /// Decides by db-lib's type number; the value is ignored.
    int dataTypeForTableColumnIndex(qsizetype columnIndex, const KNValue &object) const override;
    QString typeNameForColumn(qsizetype column) const override;
    /// For sql_variant, explains how to display its values.
    QString remarkForColumn(qsizetype column) const override;
    /// Formats dates by their column's type, in UTC to the millisecond: "2024-02-29 13:45:07:123",
    /// "13:45:07:123" or "2024-02-29". The end of the day is "24:00:00:000".
    QString stringForValue(const KNValue &value, qsizetype column, bool allowTruncate) const override;
};
