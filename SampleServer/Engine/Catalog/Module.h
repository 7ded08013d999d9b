#pragma once

#include "Engine/Catalog/Table.h"
#include "Engine/Parse/AstDefinitions.h"

namespace SampleServer {

struct ModuleParameter
{
    std::string name; ///< with its @
    SqlType type;
    UserTypePtr userType; ///< alias or table type; null for a system type
    std::shared_ptr<const Ast::Expression> defaultValue;
    bool hasDefault = false;
    bool output = false;
};

/// A view, procedure, function or trigger.
struct Module : SchemaObject
{
    explicit Module(ObjectKind objectKind)
        : SchemaObject(objectKind)
    {
    }

    std::shared_ptr<const Ast::ModuleDefinition> definition;
    std::string text; ///< as the catalog shows it
    bool quotedIdentifiers = true;
    std::vector<ModuleParameter> parameters;
    SqlType result;                   ///< of a scalar function
    std::vector<TableColumn> columns; ///< of a view or table function, as of its creation
    TablePtr resultTable;             ///< filled by a multi-statement function
    TablePtr indexed;                 ///< of a view: its columns and indexes as a table; null without indexes

    // Triggers
    std::int64_t parent = 0; ///< object id of the table or view
    bool disabled = false;
};
using ModulePtr = std::shared_ptr<const Module>;

} // namespace SampleServer
