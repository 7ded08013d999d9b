#pragma once

#include "Database/KNRowStore.h"
#include "KNSharedExport.h"

#include <QVariant>

/// What a result grid asks the kind of server about the values that it shows. This one shows values as they
/// are; a connector derives one that knows its types. Set up by one thread; then the const operations may be
/// called from any thread.
class KNSHARED_EXPORT ResultSetViewControllerHelper
{
public:
    /// The kinds of data that a column can hold.
    enum DataType : int {
        Other = 0,
        Text = 1,
        DateAndTime = 2,
        Date = 3,
        Time = 4,
        Boolean = 7,
        Integer = 8,
        Real = 9, ///< floating or decimal
    };

    /// UTF-16 units that a text cut for one line of a grid has at most, without the ellipsis behind it.
    static constexpr qsizetype TruncatedLength = 1000;

    virtual ~ResultSetViewControllerHelper();

    /// The connector's type numbers of the result's columns.
    QList<int> columnTypes() const { return m_columnTypes; }
    void setColumnTypes(const QList<int> &types) { m_columnTypes = types; }

    /// The kind of data of a column, from 0; Other outside of the columns. `object` is a value of it.
    virtual int dataTypeForTableColumnIndex(qsizetype columnIndex, const KNValue &object) const;
    /// The same for a grid's column whose identifier is the index as a number.
    int dataTypeForTableColumn(const QVariant &identifier, const KNValue &object) const;
    /// The name of a column's type; null where it is not known.
    virtual QString typeNameForColumn(qsizetype column) const;
    /// A remark on the values of a column that are shown as bytes, for the user; null for none.
    virtual QString remarkForColumn(qsizetype column) const;

    /// A value as it is shown in that column; a null QString for null. `allowTruncate` cuts what is long.
    virtual QString stringForValue(const KNValue &value, qsizetype column, bool allowTruncate) const;
    /// The same for the value in a row; a null QString outside of it.
    QString stringValueForRowArray(const KNRow &row, qsizetype column, bool allowTruncate) const;

private:
    QList<int> m_columnTypes;
};
