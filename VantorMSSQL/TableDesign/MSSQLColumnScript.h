#pragma once

#include "Catalog/MSSQLColumnRecord.h"
#include "QueryLoader/KNStatementPair.h"
#include "TableDesign/MSSQLDesignedTable.h"

/// The statements for edits of one column of a table. Each runs in the text of wrapped(). Every result holds
/// the exact statement and its corrected counterpart; a null exact statement means that nothing is to be
/// run, a null corrected one that no statement makes this change. Pure, any thread.
class MSSQLColumnScript
{
public:
    explicit MSSQLColumnScript(MSSQLDesignedTable table);

    KNStatementPair rename(const QString &columnName, const QString &newName) const;
    /// A change of type, nullability or identity. `after` holds the new type as its type name, without a
    /// length of its own. Nothing when both records are the same in these.
    KNStatementPair changeType(const MSSQLColumnRecord &before, const MSSQLColumnRecord &after) const;
    /// Adds a column of type INT.
    KNStatementPair addColumn(const QString &columnName) const;
    /// Nothing when it is the table's only column.
    KNStatementPair dropColumn(const QString &columnName, const QList<MSSQLColumnRecord> &columns) const;

    /// "NewColumn1", or the next number that no column has, without regard to case.
    static QString nameForNewColumn(const QList<MSSQLColumnRecord> &columns);
    /// The type for ALTER COLUMN: without precision or length where it is one of date, datetime,
    /// datetimeoffset, smalldatetime, text and ntext.
    static QString dispayForColumnDataType(const QString &type);
    /// The script in a transaction of its own that is rolled back, and its error raised again, when a
    /// statement of it fails. Null stays null.
    static QString wrapped(const QString &script);
    static KNStatementPair wrapped(const KNStatementPair &pair);
    /// The same for SQL Server 2000, which has no TRY: it refuses the exact text, and the corrected one is a
    /// transaction that the first error ends.
    static KNStatementPair wrappedFor2000(const KNStatementPair &pair);

private:
    QString correctedRename(const QString &columnName, const QString &newName) const;
    QString correctedChange(const MSSQLColumnRecord &before, const MSSQLColumnRecord &after) const;
    QString differenceOfChange(const MSSQLColumnRecord &before, const MSSQLColumnRecord &after) const;

    MSSQLDesignedTable m_table;
};
