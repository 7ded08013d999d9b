#pragma once

#include "Catalog/MSSQLCatalogReader.h"

/// A foreign key of a table, with its columns.
struct MSSQLForeignKeyEntry
{
    static constexpr auto Title = "List_ForeignKeysForTable";
    static MSSQLCatalogReader::Values values(const QString &schema, const QString &table);
    /// By name; the rows of one key become one entry.
    static QList<MSSQLForeignKeyEntry> listFrom(DatabaseResultSet &rows);

    QString keyName;
    QString targetTable; ///< null when this login may not see the table
    QString targetTableSchema;
    QStringList localColumns;
    QStringList targetColumns; ///< one for each of localColumns
    qint64 deleteRule = 0;     ///< 0 no action, 1 cascade, 2 set null, 3 set default
    qint64 updateRule = 0;
    bool isEnabled = true;
    bool isTrusted = true; ///< whether all rows have been checked
    bool isNotForReplication = false;

    /// "No Action", "Cascade", "SET NULL" or "SET DEFAULT"; empty for any other rule.
    QString deleteRuleDisplay() const;
    QString updateRuleDisplay() const;

    friend bool operator==(const MSSQLForeignKeyEntry &, const MSSQLForeignKeyEntry &) = default;
};
