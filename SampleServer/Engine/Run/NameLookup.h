#pragma once

#include "Engine/Bind/NameResolver.h"
#include "Engine/Run/SessionContext.h"
#include "Engine/Run/TableStore.h"

#include <memory>
#include <string>
#include <vector>

namespace SampleServer {

/// Thrown if a statement must be bound again because its tables were dropped or replaced.
struct DefinitionsChanged
{
};

struct FoundObject
{
    ObjectPtr object; ///< null if there is none
    DatabasePtr database;
};

/// The location of a new object.
struct NewPlace
{
    DatabasePtr database; ///< null for a temporary table
    std::string schema = "dbo";
};

/// Resolves names for the session, and records the tables that a statement uses, for their locks.
class NameLookup : public NameResolver
{
public:
    /// Also registers the callbacks for names in expressions.
    NameLookup(SessionContext &session, TableStore &store);

    /// Returns the current database for an empty name; null if it does not exist.
    DatabasePtr findDatabase(const std::string &name) const;
    /// Database, schema and name, as in errors.
    std::string fullName(const Table &table) const;
    FoundObject findObject(const Ast::ObjectName &name, bool followSynonyms = true);
    /// Finds a table; the result's table is null if there is none.
    Bound::TableScan findOrNull(const Ast::ObjectName &name);
    /// Throws EngineError 40515 and 40000 if the session cannot access the name's database or server.
    void requireReachable(const Ast::ObjectName &name) const;
    /// Throws 2714 if the name is taken, 2760 and 911 if schema or database do not exist.
    NewPlace placeOfNew(const Ast::ObjectName &name, bool mayExist = false);
    /// The same for types, which #name does not make temporary.
    NewPlace placeOfPermanent(const Ast::ObjectName &name, bool mayExist);

    Bound::TableScan findTable(const Ast::ObjectName &name) override;
    NamedSource findSource(const Ast::ObjectName &name) override;
    ModulePtr findFunction(const Ast::ObjectName &name, DatabasePtr &database) override;
    NamedType findType(const Ast::TypeName &name, int position) override;
    std::unique_ptr<ModuleNames> enterModule(const Module &module, const DatabasePtr &database) override;
    std::shared_ptr<const RowProvider> functionRows(const ModulePtr &module,
                                                    const DatabasePtr &database) override;
    void willRead(const Bound::TableScan &scan, bool readUncommitted) override;
    void willWrite(const Bound::TableScan &scan);
    /// The tables and operations of the statement being bound.
    std::vector<TableUse> &uses() { return m_uses; }
    /// Waits for the locks of everything bound since the last call. Throws DefinitionsChanged if a name
    /// refers to another table by the time they are granted.
    void lockUses();

private:
    bool findSystemSource(const Ast::ObjectName &name, NamedSource &source);
    std::optional<std::int64_t> findId(const std::string &text);

    SessionContext &m_session;
    TableStore &m_store;
    std::vector<TableUse> m_uses;
};

} // namespace SampleServer
