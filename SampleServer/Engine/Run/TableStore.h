#pragma once

#include "Engine/Bind/Bound.h"
#include "Engine/Run/SessionContext.h"

#include <string>

namespace SampleServer {

/// Creates tables and replaces definitions; a rollback reverts each change. Manages the session's temporary
/// tables.
class TableStore
{
public:
    explicit TableStore(SessionContext &session)
        : m_session(session)
    {
    }

    static Bound::TableScan scanOf(const TablePtr &table, const DatabasePtr &database);

    /// Creates a table with its storage; a temporary one if `database` is null.
    Bound::TableScan createTable(Table definition, const DatabasePtr &database);
    /// Creates a table variable; `name` includes the @.
    void declareTable(const std::string &name, Table definition);
    /// Returns the table after creating its storage if necessary. Null if it was dropped meanwhile.
    TablePtr stored(const TablePtr &table, const DatabasePtr &database);
    /// Creates SQLite's index for an index of the table. Throws SqliteConstraintError if rows have equal
    /// keys.
    void createPhysicalIndex(const Bound::TableScan &scan, TableIndex &index);

    /// Replaces the definition of a table.
    void replaceTable(const Bound::TableScan &scan, Table changed);
    /// The same for any object; null for none.
    void replaceObject(const DatabasePtr &database, const ObjectPtr &before, ObjectPtr after);

    /// Finds a temporary table of this text or of a calling one, or a table variable (with its @) of this
    /// text.
    TablePtr findTemporary(const std::string &name) const;
    void eraseTemporary(const Table &table);
    /// Drops the temporary tables of a frame, or only its table variables with `variablesOnly`.
    void dropTables(TableMap &tables, bool variablesOnly);

private:
    void createStorage(Table &definition, const DatabasePtr &database);

    SessionContext &m_session;
};

} // namespace SampleServer
