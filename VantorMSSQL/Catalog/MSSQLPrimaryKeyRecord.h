#pragma once

#include "Catalog/MSSQLCatalogReader.h"

/// The primary key of a table, as the catalog describes it.
struct MSSQLPrimaryKeyRecord
{
    struct Column
    {
        QString name;
        bool isDescending = false;
    };

    static constexpr auto Title = "List_PrimaryKeysForTable";
    static MSSQLCatalogReader::Values values(const QString &schema, const QString &table);
    /// At most one.
    static QList<MSSQLPrimaryKeyRecord> listFrom(DatabaseResultSet &rows);

    QString name; ///< null if the server made it up
    bool isClustered = true;
    QList<Column> columns; ///< in the key's order; none if there is no key
};
