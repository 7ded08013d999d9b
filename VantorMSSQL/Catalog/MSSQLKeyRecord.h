#pragma once

#include "Catalog/MSSQLCatalogReader.h"

/// A primary, unique or foreign key of a table.
struct MSSQLKeyRecord
{
    static constexpr auto Title = "List_KeysForTable";
    static MSSQLCatalogReader::Values values(const QString &schema, const QString &table);
    /// The primary key first, then unique and foreign keys by name.
    static QList<MSSQLKeyRecord> listFrom(DatabaseResultSet &rows);

    QString keyName;
    bool isPrimaryKey = false;
};
