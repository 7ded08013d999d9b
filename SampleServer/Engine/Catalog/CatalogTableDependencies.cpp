#include "Engine/Catalog/CatalogTable.h"
#include "Engine/Catalog/CatalogValues.h"

// The table on which sys.sql_expression_dependencies is based.
namespace SampleServer {

using namespace CatalogValues;

namespace {

struct DependencyRow
{
    ModulePtr module;
    const Ast::ObjectName *name; ///< as the module's text has it
    ObjectPtr object;
};

/// A name without schema is looked up in the module's schema, then in dbo, as when the module runs.
ObjectPtr findReferenced(const Database &database, const Module &module, const Ast::ObjectName &name)
{
    const std::string schema = name.qualifier(1);
    if (!schema.empty())
        return database.find(schema, name.object());
    const ObjectPtr object = database.find(module.schema, name.object());
    return object ? object : database.find("dbo", name.object());
}

/// The names that views, procedures, functions and triggers give to tables and procedures of their database.
/// Names that do not resolve (aliases, common tables, other databases, objects that do not exist yet) are
/// left out.
std::vector<DependencyRow> listDependencies(const Context &context)
{
    std::vector<DependencyRow> rows;
    for (const ObjectPtr &object : context.database->objects()) {
        const auto module = std::dynamic_pointer_cast<const Module>(object);
        if (!module)
            continue;
        for (const Ast::ObjectName &name : module->definition->references)
            if (name.qualifier(2).empty())
                if (const ObjectPtr referenced = findReferenced(*context.database, *module, name))
                    rows.push_back({module, &name, referenced});
    }
    return rows;
}

} // namespace

const CatalogTable &dependenciesTable()
{
    using Row = DependencyRow;
    static const TypedCatalogTable<Row> table(
        listDependencies,
        {{"referencing_id", Int, [](const Row &r, const Context &) { return number(r.module->id); }},
         {"is_schema_bound_reference", Bit,
          [](const Row &r, const Context &) { return flag(r.module->definition->schemaBound); }},
         {"referenced_schema_name", Name,
          [](const Row &r, const Context &) { return textOrNull(r.name->qualifier(1)); }},
         {"referenced_entity_name", Name,
          [](const Row &r, const Context &) { return text(r.name->object()); }},
         {"referenced_id", Int, [](const Row &r, const Context &) { return number(r.object->id); }}});
    return table;
}

} // namespace SampleServer
