#pragma once

#include "Catalog/MSSQLCatalogReader.h"

#include <QList>

/// An object of a database that an export can include. A value type of any thread.
struct ExportSelectableEntry
{
    QString type; ///< the kind as the catalog names it
    QString name;

    friend bool operator==(const ExportSelectableEntry &, const ExportSelectableEntry &) = default;
};

/// The objects of one kind.
struct ExportSelectableGroup
{
    QString type;
    QList<ExportSelectableEntry> entries;

    /// The objects of the database in the catalog's order, which is by kind. A new group begins where the
    /// kind changes. Incomplete with an error, which is logged. Blocks on the server.
    static QList<ExportSelectableGroup> load(const VantorDBC &settings, KNError *error);
};
