#include "Engine/Catalog/SystemCatalog.h"
#include "Engine/Bind/TypeRules.h"
#include "Engine/Catalog/CatalogTable.h"
#include "Engine/Catalog/SystemViewColumns.h"
#include "Engine/Parse/Parser.h"
#include "Types/Collation.h"

#include <algorithm>
#include <map>

namespace SampleServer {

namespace {

/// The columns added to views after SQL Server 2008.
const std::map<std::string_view, std::vector<std::string_view>> laterColumns = {
    {"tables",
     {"is_filetable", "is_memory_optimized", "durability", "temporal_type", "temporal_type_desc",
      "history_table_id", "is_external", "is_node", "is_edge"}},
    {"all_columns", {"generated_always_type", "generated_always_type_desc", "is_hidden", "is_masked"}},
    {"computed_columns", {"generated_always_type", "generated_always_type_desc", "is_hidden", "is_masked"}},
    {"identity_columns", {"generated_always_type", "generated_always_type_desc", "is_hidden", "is_masked"}},
    {"indexes",
     {"compression_delay", "suppress_dup_key_messages", "auto_created", "optimize_for_sequential_key"}},
    {"index_columns", {"column_store_order_ordinal"}},
    {"sql_modules", {"uses_native_compilation"}},
    {"all_sql_modules", {"uses_native_compilation"}},
    {"table_types", {"is_memory_optimized"}},
    {"all_parameters", {"is_nullable"}},
    {"stats", {"is_temporary", "is_incremental"}},
    {"databases", {"is_query_store_on"}},
    {"dm_exec_sessions", {"database_id", "open_transaction_count"}},
    {"dm_os_sys_info", {"physical_memory_kb"}}};

constexpr std::string_view viewsAfter2008[] = {"dm_server_services", "masked_columns", "sequences"};
constexpr std::string_view viewsNotInAzure[] = {"dm_server_services",  "master_files", "server_principals",
                                                "server_role_members", "servers",      "syslogins",
                                                "sysservers"};

void dropLaterColumns(const std::string &view, Ast::Select &query)
{
    const auto later = laterColumns.find(view);
    if (later == laterColumns.end())
        return;
    std::erase_if(query.query->specification.items, [&](const Ast::SelectItem &item) {
        const auto *column =
            item.expression ? std::get_if<Ast::ColumnReference>(&item.expression->node) : nullptr;
        const std::string name = item.alias.empty() && column ? column->name.object() : item.alias;
        return std::find(later->second.begin(), later->second.end(), name) != later->second.end();
    });
}

struct SystemViews
{
    explicit SystemViews(Edition edition)
    {
        for (const SystemViewScript &script : systemViewScripts())
            for (std::size_t at = 0; at < script.text.size();) {
                const std::size_t end = std::min(script.text.find("\nGO\n", at), script.text.size());
                add(script.text.substr(at, end - at), edition);
                at = end + 4;
            }
    }

    void add(std::string_view text, Edition edition)
    {
        auto statements = parseBatch(text, {});
        auto &node = std::get<Ast::CreateModule>(statements.at(0)->node);
        auto view = std::make_shared<Module>(node.definition->kind);
        view->id = -static_cast<std::int64_t>(all.size()) - 1;
        view->schema = node.definition->name.qualifier(1);
        view->name = node.definition->name.object();
        view->text = node.text;
        if (edition == Edition::Sql2008)
            dropLaterColumns(view->name, *node.definition->query);
        view->definition = node.definition;
        for (const Ast::ParameterDefinition &parameter : node.definition->parameters)
            view->parameters.push_back({parameter.name, resolveType(parameter.type, TypePlace::Declaration),
                                        nullptr, nullptr, false, false});
        view->columns = systemViewColumns(*node.definition->query,
                                          [this](const Ast::ObjectName &name) { return columnsOf(name); });
        byName[foldedName(view->schema) + '.' + foldedName(view->name)] = view;
        all.push_back(std::move(view));
    }

    std::vector<TableColumn> columnsOf(const Ast::ObjectName &name) const
    {
        std::vector<TableColumn> columns;
        if (const CatalogTable *table = findCatalogTable(name.object())) {
            for (const ColumnInfo &info : table->columns()) {
                columns.emplace_back();
                columns.back().name = info.name;
                columns.back().type = info.type;
            }
        } else {
            const auto view = byName.find(foldedName(name.qualifier(1)) + '.' + foldedName(name.object()));
            if (view != byName.end())
                columns = view->second->columns;
        }
        return columns;
    }

    std::map<std::string, ModulePtr> byName;
    std::vector<ModulePtr> all;
};

const SystemViews &views(Edition edition)
{
    if (edition == Edition::Sql2008) {
        static const SystemViews older(edition);
        return older;
    }
    static const SystemViews latest(Edition::Sql2022);
    return latest;
}

} // namespace

ModulePtr findSystemView(Edition edition, std::string_view schema, std::string_view name)
{
    const auto &byName = views(edition).byName;
    const auto found = byName.find(foldedName(schema) + '.' + foldedName(name));
    return found == byName.end() ? nullptr : found->second;
}

const std::vector<ModulePtr> &systemViews(Edition edition)
{
    return views(edition).all;
}

bool showsSystemView(Edition edition, const Module &view, bool inSchema)
{
    const auto isOneOf = [&](const auto &names) {
        return std::find(std::begin(names), std::end(names), view.name) != std::end(names);
    };
    if (view.name == "sysproperties" && edition != Edition::Sql2000)
        return false;
    switch (edition) {
    case Edition::Sql2000:
        return !inSchema || view.schema != "sys";
    case Edition::Sql2008:
        return !isOneOf(viewsAfter2008);
    case Edition::Azure:
        return !isOneOf(viewsNotInAzure);
    case Edition::Sql2022:
        break;
    }
    return true;
}

} // namespace SampleServer
