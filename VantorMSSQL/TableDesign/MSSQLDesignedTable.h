#pragma once

#include <QString>
#include <QStringList>

/// The table that a designer shows, as its statements name it. Names are as stored, without quotes. A value
/// type of any thread.
struct MSSQLDesignedTable
{
    QString schema; ///< null or empty when it is not known; then no statement names it
    QString name;
    QString defaultSchema = {}; ///< of the login that runs the statements; null or empty when it is not known

    /// "schema.table", each quoted where it needs it, "]" doubled.
    QString quoted() const;
    /// The path of a part of the table (a column, an index) as the literal that sp_rename takes:
    /// N'[schema].[table].[part]', apostrophes doubled. An empty part gives the table's own path.
    QString renameLiteral(const QString &part = {}) const;
    /// The table as exact statements name it by one word where that word means it: the bare name, as it is,
    /// in the login's default schema and without a schema, and otherwise both parts, each by escaped().
    QString exactName() const;
    /// Schema, dot and name as exact statements hold them, also without a schema: each part by escaped().
    QString exactPath() const;
    /// MSSQLQuoting::escapeTableNameIfRequired(), and empty for null.
    static QString escaped(const QString &name);
};
