#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"

/// How the tables of a database are ordered once one was added by the application: those of the default
/// schema, then the other schemas without regard to case; inside a schema by name, with regard to it. Schemas
/// that differ in case only are one. Entries that are no tables come first.
class MSSQLTableOrder
{
public:
    using List = KNDatabaseTreeEntry::List;

    /// `defaultSchema` may be null or empty: then none is preferred.
    explicit MSSQLTableOrder(QString defaultSchema)
        : m_defaultSchema(std::move(defaultSchema))
    {
    }

    /// Compares the names of schemas a few times for each schema, not for each table.
    List sorted(const List &entries) const;
    /// A list that came from here with one more entry at its place, found by halving.
    List inserted(const List &sortedEntries, const KNDatabaseTreeEntry::Ptr &entry) const;

private:
    bool prefersDefault(const List &entries) const;

    QString m_defaultSchema;
};
