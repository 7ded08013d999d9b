#pragma once

#include "Catalog/MSSQLCatalogReader.h"

/// A trigger of a table.
struct MSSQLTriggerEntry
{
    static constexpr auto Title = "List_TriggersForTableWithDetails";
    static MSSQLCatalogReader::Values values(const QString &schema, const QString &table);
    /// By name.
    static QList<MSSQLTriggerEntry> listFrom(DatabaseResultSet &rows);

    bool enabled = true;
    QString triggerName;
    QString timing;    ///< "AFTER" or "INSTEAD OF"
    QString event;     ///< such as "INSERT, UPDATE"
    QString statement; ///< the definition; null when it is encrypted or this login may not see it
};
