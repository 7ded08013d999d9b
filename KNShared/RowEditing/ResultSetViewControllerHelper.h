#pragma once

#include "Database/KNRowStore.h"
#include "KNSharedExport.h"

#include <QVariant>

/// Provides type information and display texts for the values of a result grid. This class shows values
/// unchanged; connectors subclass it for their types. Set up by one thread; afterwards the const operations
/// may be called from any thread.
class KNSHARED_EXPORT ResultSetViewControllerHelper
{
public:
    /// The data types of columns.
    enum DataType : int {
        Other = 0,
        Text = 1,
        DateAndTime = 2,
        Date = 3,
        Time = 4,
        Boolean = 7,
        Integer = 8,
        Real = 9, ///< floating-point or decimal
    };

    /// Maximum length in UTF-16 units of a text truncated for one line of a grid, without the ellipsis.
    static constexpr qsizetype TruncatedLength = 1000;

    virtual ~ResultSetViewControllerHelper();

    /// The connector's type numbers of the result's columns.
    QList<int> columnTypes() const { return m_columnTypes; }
    void setColumnTypes(const QList<int> &types) { m_columnTypes = types; }

    /// The data type of a column, from 0; Other outside of the columns. `object` is one of its values.
    virtual int dataTypeForTableColumnIndex(qsizetype columnIndex, const KNValue &object) const;
    /// The same for a grid column whose identifier is the index as a number.
    int dataTypeForTableColumn(const QVariant &identifier, const KNValue &object) const;
    /// The type name of a column; null if unknown.
    virtual QString typeNameForColumn(qsizetype column) const;
    /// A remark for the user on a column whose values are shown as bytes; null for none.
    virtual QString remarkForColumn(qsizetype column) const;

    /// Formats a value of the column for display; a null QString for null. `allowTruncate` shortens long
    /// texts.
    virtual QString stringForValue(const KNValue &value, qsizetype column, bool allowTruncate) const;
    /// The same for a value of a row; a null QString outside of the row.
    QString stringValueForRowArray(const KNRow &row, qsizetype column, bool allowTruncate) const;

private:
    QList<int> m_columnTypes;
};
