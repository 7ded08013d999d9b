#pragma once

#include "Engine/Bind/Bound.h"
#include "Engine/Run/SessionContext.h"

#include <string>

namespace SampleServer {

/// Makes tables and puts changed definitions in the place of others, each of which a rollback takes back.
/// Knows the session's temporary tables.
class TableStore
{
public:
    explicit TableStore(SessionContext &session)
        : m_session(session)
    {
    }

    static Bound::TableScan scanOf(const TablePtr &table, const DatabasePtr &database);

    /// Makes a table with its storage; a temporary one where `database` is null.
    Bound::TableScan createTable(Table definition, const DatabasePtr &database);
    /// Makes a table variable of a name with its @.
    void declareTable(const std::string &name, Table definition);
    /// The table with its storage, which it may not have had yet. Null when it was dropped meanwhile.
    TablePtr stored(const TablePtr &table, const DatabasePtr &database);
    /// Makes SQLite's index for one of a table's. Throws SqliteConstraintError when rows have the same key.
    void createPhysicalIndex(const Bound::TableScan &scan, TableIndex &index);

    /// Puts a changed definition in the place of a table's.
    void replaceTable(const Bound::TableScan &scan, Table changed);
    /// Likewise for any object; null for none.
    void replaceObject(const DatabasePtr &database, const ObjectPtr &before, ObjectPtr after);

    /// A temporary table of this text or of one that runs it, or a table variable (with its @) of this text.
    TablePtr findTemporary(const std::string &name) const;
    void eraseTemporary(const Table &table);
    /// Drops the temporary tables of a frame; with `variablesOnly` its table variables.
    void dropTables(TableMap &tables, bool variablesOnly);

private:
    void createStorage(Table &definition, const DatabasePtr &database);

    SessionContext &m_session;
};

} // namespace SampleServer
