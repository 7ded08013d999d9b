#pragma once

#include "Database/KNRowStore.h"
#include "KNSharedExport.h"

#include <QStringList>

#include <optional>

/// A forward-only cursor over one fully read table of values: what catalog queries and scripts read.
/// Used by one thread at a time. Column indexes count from 0. Reading a column by a name that is not there is
/// a programming error.
class KNSHARED_EXPORT DatabaseResultSet
{
public:
    virtual ~DatabaseResultSet();

    virtual QStringList columnNames() const = 0;
    virtual qsizetype columnCount() const = 0;
    virtual qsizetype rowCount() const = 0;
    /// Goes to the next row, the first one at first; false, and nothing changes, when there is none.
    virtual bool next() = 0;

    /// The value as it is; null outside of the columns and before the first row.
    virtual KNValue objectForColumnIndex(qsizetype index) const = 0;
    virtual KNValue objectForColumn(const QString &name) const = 0;
    /// A null QString for null; what is no text in its display form.
    virtual QString stringForColumnIndex(qsizetype index) const = 0;
    virtual QString stringForColumn(const QString &name) const = 0;
    /// The value; text without white space and line ends at both ends.
    virtual KNValue trimmedStringForColumnIndex(qsizetype index) const = 0;
    /// Empty for null; a value that is neither text nor number is a programming error.
    virtual std::optional<bool> boolForColumnIndex(qsizetype index) const = 0;
    virtual std::optional<bool> boolForColumn(const QString &name) const = 0;
    /// Numbers as they are, text read as a number of the user's locale (null when it is none), the rest as it
    /// is.
    virtual KNValue numberForColumnIndex(qsizetype index) const = 0;
    virtual KNValue numberForColumn(const QString &name) const = 0;
};
