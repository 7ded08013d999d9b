#pragma once

#include "Engine/Bind/NameResolver.h"
#include "Engine/Run/SessionContext.h"
#include "Engine/Run/TableStore.h"

#include <memory>
#include <string>
#include <vector>

namespace SampleServer {

/// Thrown when a statement has to be bound again, because the tables it was bound to are not there any more.
struct DefinitionsChanged
{
};

struct FoundObject
{
    ObjectPtr object; ///< null when there is none
    DatabasePtr database;
};

/// Where a new object goes.
struct NewPlace
{
    DatabasePtr database; ///< null for a temporary table
    std::string schema = "dbo";
};

/// Resolves names for the session, and notes which tables a statement uses, for their locks.
class NameLookup : public NameResolver
{
public:
    /// Also answers what expressions ask of names.
    NameLookup(SessionContext &session, TableStore &store);

    /// The current database for an empty name; null when there is none.
    DatabasePtr findDatabase(const std::string &name) const;
    /// Database, schema and name, as errors show them.
    std::string fullName(const Table &table) const;
    FoundObject findObject(const Ast::ObjectName &name, bool followSynonyms = true);
    /// A table; without one the result has none.
    Bound::TableScan findOrNull(const Ast::ObjectName &name);
    /// Throws EngineError 40515 and 40000 where the name leads out of what the session can reach.
    void requireReachable(const Ast::ObjectName &name) const;
    /// Throws 2714 when the name is taken, 2760 and 911 when schema or database are not there.
    NewPlace placeOfNew(const Ast::ObjectName &name, bool mayExist = false);
    /// The same for what #name does not make temporary: types.
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
    /// What the statement being bound is going to do with which tables.
    std::vector<TableUse> &uses() { return m_uses; }
    /// Waits for the locks of everything that was bound since the last call. Throws DefinitionsChanged when,
    /// by the time they were granted, a name had come to mean another table.
    void lockUses();

private:
    bool findSystemSource(const Ast::ObjectName &name, NamedSource &source);
    std::optional<std::int64_t> findId(const std::string &text);

    SessionContext &m_session;
    TableStore &m_store;
    std::vector<TableUse> m_uses;
};

} // namespace SampleServer
