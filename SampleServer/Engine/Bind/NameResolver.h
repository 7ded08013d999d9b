#pragma once

#include "Engine/Bind/Bound.h"
#include "Engine/Catalog/Catalog.h"

#include <memory>
#include <span>

namespace SampleServer {

/// A type as a name gives it: a system type, perhaps under an alias, or a table type.
struct NamedType
{
    SqlType type;
    UserTypePtr userType; ///< null for a system type
};

/// Makes names mean what they mean inside of a module, for as long as it lives.
class ModuleNames
{
public:
    virtual ~ModuleNames() = default;
};

/// What a name in a FROM clause refers to: a table, a module or rows of the catalog.
struct NamedSource
{
    Bound::TableScan scan;                            ///< of a table; its table is null otherwise
    ModulePtr module;                                 ///< a view or a table function
    DatabasePtr database;                             ///< where the module was found
    std::shared_ptr<const RowProvider> provider;      ///< rows of the catalog
    const std::vector<ColumnInfo> *columns = nullptr; ///< of the provider's rows
};

/// Resolves the names of the statement that runs.
class NameResolver
{
public:
    virtual ~NameResolver() = default;
    /// Throws EngineError 208 when there is no such table.
    virtual Bound::TableScan findTable(const Ast::ObjectName &name) = 0;
    /// Likewise for everything that rows can be read of.
    virtual NamedSource findSource(const Ast::ObjectName &name) = 0;
    /// Null when there is no such function; `database` is set to where it was found.
    virtual ModulePtr findFunction(const Ast::ObjectName &name, DatabasePtr &database) = 0;
    /// Throws EngineError 2715; `position` is the number it shows.
    virtual NamedType findType(const Ast::TypeName &name, int position) = 0;
    virtual std::unique_ptr<ModuleNames> enterModule(const Module &module, const DatabasePtr &database) = 0;
    /// The rows that a multi-statement function returns.
    virtual std::shared_ptr<const RowProvider> functionRows(const ModulePtr &module,
                                                            const DatabasePtr &database) = 0;
    /// Called for every table whose rows will be read; `readUncommitted` when that takes no lock.
    virtual void willRead(const Bound::TableScan &scan, bool readUncommitted) = 0;
};

} // namespace SampleServer
