#pragma once

#include "Engine/Bind/Bound.h"
#include "Engine/Catalog/Catalog.h"

#include <memory>
#include <span>

namespace SampleServer {

/// A named type: a system type, an alias type or a table type.
struct NamedType
{
    SqlType type;
    UserTypePtr userType; ///< null for a system type
};

/// Resolves names in the context of a module as long as it exists.
class ModuleNames
{
public:
    virtual ~ModuleNames() = default;
};

/// The target of a name in a FROM clause: a table, a module or catalog rows.
struct NamedSource
{
    Bound::TableScan scan;                            ///< of a table; its table is null otherwise
    ModulePtr module;                                 ///< a view or a table function
    DatabasePtr database;                             ///< contains the module
    std::shared_ptr<const RowProvider> provider;      ///< rows of the catalog
    const std::vector<ColumnInfo> *columns = nullptr; ///< of the provider's rows
};

/// Resolves the names of the current statement.
class NameResolver
{
public:
    virtual ~NameResolver() = default;
    /// Throws EngineError 208 if the table does not exist.
    virtual Bound::TableScan findTable(const Ast::ObjectName &name) = 0;
    /// The same for every source of rows.
    virtual NamedSource findSource(const Ast::ObjectName &name) = 0;
    /// Returns null if the function does not exist; sets `database` to the one that contains it.
    virtual ModulePtr findFunction(const Ast::ObjectName &name, DatabasePtr &database) = 0;
    /// Throws EngineError 2715; `position` is the number in its text.
    virtual NamedType findType(const Ast::TypeName &name, int position) = 0;
    virtual std::unique_ptr<ModuleNames> enterModule(const Module &module, const DatabasePtr &database) = 0;
    /// Returns the rows of a multi-statement function.
    virtual std::shared_ptr<const RowProvider> functionRows(const ModulePtr &module,
                                                            const DatabasePtr &database) = 0;
    /// Called for every table to be read; `readUncommitted` if that takes no lock.
    virtual void willRead(const Bound::TableScan &scan, bool readUncommitted) = 0;
};

} // namespace SampleServer
