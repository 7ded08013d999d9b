#include "Engine/Bind/Binder.h"
#include "Engine/Errors.h"
#include "Engine/ScopedValue.h"
#include "Types/Collation.h"

// Binds user-defined views and functions in queries.
namespace SampleServer {

using namespace Bound;

namespace {

constexpr int MaxNesting = 32;

Value callUserFunction(EvaluationContext &context, const Operation &operation,
                       std::span<const Value> arguments)
{
    return context.callFunction(*operation.module, arguments);
}

std::string fullName(const Module &module)
{
    return module.schema + '.' + module.name;
}

} // namespace

/// The query of a view or inline function with its parameters replaced by bound arguments.
QueryPtr Binder::moduleQuery(const Module &module, const DatabasePtr &database,
                             const std::vector<ExpressionPtr> &arguments)
{
    if (m_moduleDepth >= MaxNesting)
        throw EngineError(
            217, 16, 1,
            "Maximum stored procedure, function, trigger, or view nesting level exceeded (limit 32).",
            ErrorEffect::EndsAll);
    std::map<std::string, ExpressionPtr> parameters;
    for (std::size_t i = 0; i < arguments.size(); ++i)
        parameters[foldedName(module.parameters[i].name)] = arguments[i];
    const auto names = m_tables.enterModule(module, database);
    const ScopedValue<int> depth(m_moduleDepth, m_moduleDepth + 1);
    const ScopedValue<Scope *> alone(m_scope, nullptr);
    const ScopedValue<const CommonTableScope *> ownTables(m_common, nullptr);
    const ScopedValue<const std::map<std::string, ExpressionPtr> *> own(m_parameters, &parameters);
    return bindSubquery(*module.definition->query, true);
}

std::vector<ColumnInfo> Binder::describeModule(const Module &module)
{
    std::vector<ExpressionPtr> arguments;
    for (const ModuleParameter &parameter : module.parameters)
        arguments.push_back(null(parameter.type));
    const QueryPtr query = moduleQuery(module, nullptr, arguments);
    const auto &names = module.definition->columns;
    if (!names.empty() && names.size() != query->columns.size())
        throw EngineError(names.size() > query->columns.size() ? 4502 : 4501, 16, 1,
                          "View or function '" + module.name + "' has " +
                              (names.size() > query->columns.size()
                                   ? "more column names specified than columns defined."
                                   : "more columns defined than column names given."),
                          ErrorEffect::EndsBatch);
    std::vector<ColumnInfo> columns;
    for (const OutputColumn &column : query->columns) {
        columns.push_back(column.info);
        if (!names.empty())
            columns.back().name = names[columns.size() - 1];
    }
    return columns;
}

SourcePtr Binder::bindView(const Ast::TableSource &source, const Ast::ObjectName &name,
                           const NamedSource &view, Scope &scope)
{
    const QueryPtr query = [&] {
        try {
            return moduleQuery(*view.module, view.database, {});
        } catch (EngineError &error) {
            const std::int32_t number = error.message.number;
            if ((number != 207 && number != 208) || !error.message.procedure.empty())
                throw;
            error.message.procedure = view.module->name;
            throw error.followedBy(4413, 1,
                                   "Could not use view or function '" + name.toString() +
                                       "' because of binding errors.");
        }
    }();
    ScopeSource entry;
    entry.name = source.alias.empty() ? name.object() : source.alias;
    if (source.alias.empty()) {
        entry.schema = view.module->schema;
        entry.database = name.qualifier(2);
    }
    std::vector<std::string> columns = view.module->definition->columns;
    if (!source.columns.empty())
        columns = source.columns;
    return addQuery(std::move(entry), query, columns, scope, false);
}

SourcePtr Binder::provided(const Ast::TableSource &source, ScopeSource entry,
                           const std::vector<ColumnInfo> &columns, ProvidedRows rows, Scope &scope)
{
    const std::string alias = newAlias();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        ScopeColumn column;
        column.info = columns[i];
        if (i < source.columns.size())
            column.info.name = source.columns[i];
        column.source = alias;
        column.column = 'c' + std::to_string(i + 1);
        entry.columns.push_back(std::move(column));
    }
    addSource(std::move(entry), scope);
    return std::make_shared<const Source>(Source{alias, std::move(rows)});
}

SourcePtr Binder::bindCatalog(const Ast::TableSource &source, const Ast::ObjectName &name,
                              const NamedSource &rows, Scope &scope)
{
    ScopeSource entry;
    entry.name = source.alias.empty() ? name.object() : source.alias;
    if (source.alias.empty())
        entry.schema = name.qualifier(1);
    return provided(source, std::move(entry), *rows.columns, {rows.provider, {}}, scope);
}

/// Converts the arguments of a function to the types of its parameters; DEFAULT is the default value.
std::vector<ExpressionPtr> Binder::moduleArguments(const Module &module,
                                                   const std::vector<Ast::ExpressionPtr> &arguments)
{
    if (arguments.size() < module.parameters.size())
        throw EngineError(313, 16, 3,
                          "An insufficient number of arguments were supplied for the procedure or function " +
                              fullName(module) + '.',
                          ErrorEffect::EndsBatch);
    if (arguments.size() > module.parameters.size())
        throw EngineError(8144, 16, 3,
                          "Procedure or function " + fullName(module) + " has too many arguments specified.",
                          ErrorEffect::EndsBatch);
    std::vector<ExpressionPtr> bound;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const ModuleParameter &parameter = module.parameters[i];
        if (arguments[i])
            bound.push_back(converted(bind(*arguments[i]), parameter.type));
        else if (parameter.hasDefault)
            bound.push_back(converted(bind(*parameter.defaultValue), parameter.type));
        else
            bound.push_back(null(parameter.type));
    }
    return bound;
}

SourcePtr Binder::bindModuleFunction(const Ast::TableSource &source, const Ast::FunctionTable &function,
                                     const ModulePtr &module, const DatabasePtr &database, Scope &scope)
{
    if (module->kind == ObjectKind::ScalarFunction)
        throw Errors::invalidObject(function.name.toString());
    std::vector<ExpressionPtr> arguments = moduleArguments(*module, function.arguments);
    ScopeSource entry;
    entry.name = source.alias.empty() ? function.name.object() : source.alias;
    if (source.alias.empty())
        entry.schema = module->schema;
    if (module->kind == ObjectKind::InlineFunction)
        return addQuery(std::move(entry), moduleQuery(*module, database, arguments), source.columns, scope,
                        true);
    std::vector<ColumnInfo> columns;
    for (const TableColumn &column : module->columns) {
        ColumnInfo info;
        info.name = column.name;
        info.type = column.type;
        info.nullable = column.nullable;
        columns.push_back(std::move(info));
    }
    return provided(source, std::move(entry), columns,
                    {m_tables.functionRows(module, database), std::move(arguments)}, scope);
}

/// schema.function(arguments)
ExpressionPtr Binder::callModule(const Ast::FunctionCall &node)
{
    DatabasePtr database;
    const ModulePtr module = m_tables.findFunction(node.name, database);
    if (!module || module->kind != ObjectKind::ScalarFunction)
        throw EngineError(4121, 16, 1,
                          "Cannot find either column \"" + node.name.qualifier(1) +
                              "\" or the user-defined function or aggregate \"" + node.name.toString() +
                              "\", or the name is ambiguous.",
                          ErrorEffect::EndsBatch);
    Operation operation;
    operation.function = callUserFunction;
    operation.result = module->result;
    operation.module = module;
    operation.nullPropagates = false;
    operation.foldable = false;
    return call(std::move(operation), moduleArguments(*module, node.arguments));
}

} // namespace SampleServer
