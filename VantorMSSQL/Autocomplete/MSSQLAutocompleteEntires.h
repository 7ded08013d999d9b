#pragma once

#include "Autocomplete/KNDatabaseAutocompleteEntry.h"

#include <QHash>
#include <QSet>
#include <QStringList>

#include <deque>
#include <mutex>
#include <unordered_set>

/// The schemas, tables and columns of one database with indexes for completion. Filled on one thread and
/// indexed by createCache(); constant and readable by any thread from then on.
class MSSQLAutocompleteEntires
{
public:
    using Entry = KNDatabaseAutocompleteEntry;
    using List = Entry::List;
    using Lookup = QHash<QString, List>;

    MSSQLAutocompleteEntires() = default;
    MSSQLAutocompleteEntires(const MSSQLAutocompleteEntires &) = delete;
    MSSQLAutocompleteEntires &operator=(const MSSQLAutocompleteEntires &) = delete;

    /// Adds a column with its displayed type. Columns must arrive ordered by schema, then by table.
    /// Returns its entry.
    Entry &addColumn(const QString &schema, const QString &table, const QString &column, const QString &type);
    /// Indexes what was added. Tables of the default schema are found by their bare names, too; every table
    /// is if the default schema is null.
    void createCache(const QString &defaultSchema);

    /// The entries in the order in which they were added.
    const List &schemas() const { return m_schemas; }
    const List &tables() const { return m_tables; }
    const List &columns() const { return m_columns; }
    /// The names without duplicates, sorted by the user's locale without regard to case.
    const QStringList &schemaNames() const { return m_cachedSchemaNames; }
    const QStringList &tableNames() const { return m_cachedTableNames; }
    QStringList columnNames() const;
    /// One column for each of these names, in the same order.
    const List &columnsByName() const { return m_columnsByName; }
    /// Every key of entriesForTableAndOrSchema(), sorted likewise.
    const QStringList &allPossibleNamesForAlias() const;
    /// The columns of a table, by schema.table or by its bare name; in any case, without brackets.
    List columnsForTableAndOrSchema(const QString &name) const;
    /// The same, or the tables of a schema.
    List entriesForTableAndOrSchema(const QString &name) const;

    /// Whether both have the same names. Types are not compared.
    bool isEqualTo(const MSSQLAutocompleteEntires &other) const;

private:
    Entry *newEntry(const QString &name, Entry::Kind kind, const QString *details = nullptr);
    void addCachedEntries(const List &entries, const QString &parent);

    std::deque<Entry> m_entries;         ///< owns all entries
    QSet<QString> m_names;               ///< each once; empty after createCache()
    std::unordered_set<QString> m_types; ///< each once; their addresses stay
    List m_schemas;
    List m_tables;
    List m_columns;
    QStringList m_cachedSchemaNames;
    QStringList m_cachedTableNames;
    List m_columnsByName;                      ///< instead of the names, which would need more memory
    Lookup m_entriesLookupForTableAndOrSchema; ///< by lower-cased name
    /// The keys of the lookup, sorted when they are first asked for: that takes longer than the other
    /// indexes.
    mutable QStringList m_cachedPossibleNamesForAlias;
    mutable std::once_flag m_possibleNamesOnce; ///< guards them
};
