#pragma once

#include "Database/KNRowStore.h"
#include "KNSharedExport.h"

#include <QStringList>

#include <optional>

/// A forward-only cursor over one completely read result, for catalog queries and scripts. Used by one thread
/// at a time. Column indexes start at 0. Reading a column by an unknown name is a programming error.
class KNSHARED_EXPORT DatabaseResultSet
{
public:
    virtual ~DatabaseResultSet();

    virtual QStringList columnNames() const = 0;
    virtual qsizetype columnCount() const = 0;
    virtual qsizetype rowCount() const = 0;
    /// Moves to the next row, at first to the first one. Returns false and changes nothing if there is none.
    virtual bool next() = 0;

    /// Returns the unconverted value; null outside of the columns and before the first row.
    virtual KNValue objectForColumnIndex(qsizetype index) const = 0;
    virtual KNValue objectForColumn(const QString &name) const = 0;
    /// Returns a null QString for null; values other than text in their display form.
    virtual QString stringForColumnIndex(qsizetype index) const = 0;
    virtual QString stringForColumn(const QString &name) const = 0;
    /// Returns the value; text is trimmed of white space and line ends at both ends.
    virtual KNValue trimmedStringForColumnIndex(qsizetype index) const = 0;
    /// Returns nothing for null. A value that is neither text nor number is a programming error.
    virtual std::optional<bool> boolForColumnIndex(qsizetype index) const = 0;
    virtual std::optional<bool> boolForColumn(const QString &name) const = 0;
    /// Returns numbers unchanged, text parsed as a number of the user's locale (null if it is not one), and
    /// other values unchanged.
    virtual KNValue numberForColumnIndex(qsizetype index) const = 0;
    virtual KNValue numberForColumn(const QString &name) const = 0;
};
