#pragma once

#include "Catalog/MSSQLCatalogReader.h"

/// A key column of an index.
struct MSSQLIndexColumnEntry
{
    QString name;

    friend bool operator==(const MSSQLIndexColumnEntry &, const MSSQLIndexColumnEntry &) = default;
};

/// An index of a table, with its key columns in their order.
struct MSSQLIndexEntry
{
    static constexpr auto Title = "List_IndexesAndColumnsForTable";
    static MSSQLCatalogReader::Values values(const QString &schema, const QString &table);
    /// Rows whose names differ in case only become one entry.
    static QList<MSSQLIndexEntry> listFrom(DatabaseResultSet &rows);

    QString indexName; ///< "PRIMARY" for the primary key's index
    bool isUnique = false;
    bool isNonClustered = false;
    QList<MSSQLIndexColumnEntry> columns;

    friend bool operator==(const MSSQLIndexEntry &, const MSSQLIndexEntry &) = default;
};
