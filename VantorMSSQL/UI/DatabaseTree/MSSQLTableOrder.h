#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"

/// The order of a database's tables after the application has added one: those of the default schema, then
/// other schemas without regard to case; within a schema by name, case-sensitively. Schemas that differ in
/// case only are equal. Entries that are no tables come first.
class MSSQLTableOrder
{
public:
    using List = KNDatabaseTreeEntry::List;

    /// `defaultSchema` may be null or empty: no schema is preferred then.
    explicit MSSQLTableOrder(QString defaultSchema)
        : m_defaultSchema(std::move(defaultSchema))
    {
    }

    /// Compares schema names a few times for each schema, not for each table.
    List sorted(const List &entries) const;
    /// Inserts an entry into a list that sorted() or inserted() returned, by binary search.
    List inserted(const List &sortedEntries, const KNDatabaseTreeEntry::Ptr &entry) const;

private:
    bool prefersDefault(const List &entries) const;

    QString m_defaultSchema;
};
