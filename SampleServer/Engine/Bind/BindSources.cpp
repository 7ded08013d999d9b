#include "Engine/Bind/Binder.h"
#include "Engine/Emit/LateralQuery.h"
#include "Engine/Errors.h"
#include "Engine/Functions/RowGenerator.h"
#include "Engine/ScopedValue.h"
#include "Types/Collation.h"
#include "Types/Text.h"

#include <algorithm>
#include <set>

namespace SampleServer {

using namespace Bound;

namespace {

EngineError columnListMismatch(const std::string &name, bool more)
{
    return {more ? 8158 : 8159, 16, 1,
            '\'' + name + "' has " + (more ? "more" : "fewer") +
                " columns than were specified in the column list.",
            ErrorEffect::EndsBatch};
}

/// Renames the columns of a source to the names after its alias.
void rename(ScopeSource &source, const std::vector<std::string> &names)
{
    if (names.empty())
        return;
    if (names.size() != source.columns.size())
        throw columnListMismatch(source.name, names.size() < source.columns.size());
    for (std::size_t i = 0; i < names.size(); ++i)
        source.columns[i].info.name = names[i];
}

std::set<std::string> sourceNames(const std::vector<ScopeSource> &sources)
{
    std::set<std::string> names;
    for (const ScopeSource &source : sources)
        for (const ScopeColumn &column : source.columns)
            names.insert(column.source);
    return names;
}

void makeNullable(Scope &scope, std::size_t first, std::size_t last)
{
    for (std::size_t i = first; i < last; ++i)
        for (ScopeColumn &column : scope.sources[i].columns)
            column.info.nullable = true;
}

} // namespace

ScopeSource Binder::scopeOfTable(const TableScan &scan, const std::string &alias,
                                 const std::string &sqliteAlias)
{
    ScopeSource source;
    source.table = scan.table;
    source.name = alias.empty() ? scan.table->name : alias;
    if (alias.empty())
        source.schema = scan.table->schema;
    for (const TableColumn &column : scan.table->columns) {
        ScopeColumn entry;
        entry.info.name = column.name;
        entry.info.type = column.type;
        entry.info.nullable = column.nullable;
        entry.info.identity = column.identity;
        entry.info.computed = static_cast<bool>(column.computed);
        entry.info.updatable = !column.identity && !column.computed;
        entry.source = sqliteAlias;
        entry.column = column.physicalName();
        source.columns.push_back(std::move(entry));
    }
    bindComputedColumns(source);
    return source;
}

/// A computed column is not stored: references are replaced with its expression over the stored columns.
void Binder::bindComputedColumns(ScopeSource &source)
{
    Scope own;
    own.sources.push_back(source);
    const ScopedValue<Scope *> inner(m_scope, &own);
    for (std::size_t i = 0; i < source.columns.size(); ++i)
        if (const auto &computed = source.table->columns[i].computed)
            source.columns[i].computed = converted(bind(*computed.expression), source.columns[i].info.type);
}

std::vector<SourcePtr> Binder::bindFrom(const std::vector<Ast::TableSourcePtr> &from, Scope &scope)
{
    std::vector<SourcePtr> sources;
    for (const auto &source : from)
        sources.push_back(bindSource(*source, scope));
    return sources;
}

SourcePtr Binder::bindTarget(const TableScan &scan, const std::string &name, Scope &scope)
{
    const std::string alias = newAlias();
    ScopeSource source = scopeOfTable(scan, {}, alias);
    source.name = name;
    addSource(std::move(source), scope);
    return std::make_shared<const Source>(Source{alias, scan});
}

SourcePtr Binder::bindSource(const Ast::TableSource &source, Scope &scope, bool lateral)
{
    // A chain of common tables or views that each reference the previous one twice doubles at every step.
    constexpr int MostSources = 10'000;
    if (++m_context.boundSources > MostSources)
        throw Errors::outOfMemory();
    if (const auto *named = std::get_if<Ast::NamedTable>(&source.node)) {
        if (auto common = findCommon(source, named->name, scope))
            return common;
        return bindNamed(source, *named, scope);
    }
    if (const auto *derived = std::get_if<Ast::DerivedTable>(&source.node))
        return bindDerived(source, *derived, scope, lateral);
    if (const auto *values = std::get_if<Ast::ValuesTable>(&source.node))
        return bindValues(source, *values, scope, lateral);
    if (const auto *function = std::get_if<Ast::FunctionTable>(&source.node)) {
        // Only under APPLY may arguments of a function be columns of earlier sources.
        Scope neighbours{lateral ? scope.sources : std::vector<ScopeSource>(), scope.outer};
        const ScopedValue<Scope *> around(m_scope, &neighbours);
        return bindFunction(source, *function, scope);
    }
    return bindJoin(std::get<Ast::Join>(source.node), scope);
}

SourcePtr Binder::bindNamed(const Ast::TableSource &source, const Ast::NamedTable &table, Scope &scope)
{
    const NamedSource named = m_tables.findSource(table.name);
    if (named.module)
        return bindView(source, table.name, named, scope);
    if (named.provider)
        return bindCatalog(source, table.name, named, scope);
    const TableScan &scan = named.scan;
    m_tables.willRead(scan, table.readUncommitted);
    const std::string alias = newAlias();
    ScopeSource entry = scopeOfTable(scan, source.alias, alias);
    if (source.alias.empty() && !table.name.qualifier(2).empty())
        entry.database = table.name.qualifier(2);
    addSource(std::move(entry), scope);
    return std::make_shared<const Source>(Source{alias, scan});
}

SourcePtr Binder::bindDerived(const Ast::TableSource &source, const Ast::DerivedTable &table, Scope &scope,
                              bool lateral)
{
    // A derived table can reference the outer queries; earlier sources of the FROM clause only under APPLY.
    Scope neighbours{lateral ? scope.sources : std::vector<ScopeSource>(), scope.outer};
    const QueryPtr query = [&] {
        const ScopedValue<Scope *> around(m_scope, &neighbours);
        return bindSubquery(*table.query, true);
    }();
    ScopeSource entry;
    entry.name = source.alias;
    return addQuery(std::move(entry), query, source.columns, scope, lateral);
}

SourcePtr Binder::addQuery(ScopeSource entry, const QueryPtr &query, const std::vector<std::string> &names,
                           Scope &scope, bool lateral)
{
    const std::string alias = newAlias();
    for (std::size_t i = 0; i < query->columns.size(); ++i) {
        ScopeColumn column;
        column.info = query->columns[i].info;
        column.info.updatable = false;
        column.source = alias;
        column.column = 'c' + std::to_string(i + 1);
        entry.columns.push_back(std::move(column));
    }
    rename(entry, names);
    std::set<std::string> known;
    for (const ScopeColumn &column : entry.columns)
        if (const std::string &name = column.info.name;
            !name.empty() && !known.insert(foldedName(name)).second)
            throw EngineError(8156, 16, 1,
                              "The column '" + name + "' was specified multiple times for '" + entry.name +
                                  "'.",
                              ErrorEffect::EndsBatch);
    for (std::size_t i = 0; i < entry.columns.size(); ++i)
        if (entry.columns[i].info.name.empty())
            throw EngineError(8155, 16, 2,
                              "No column name was specified for column " + std::to_string(i + 1) + " of '" +
                                  entry.name + "'.",
                              ErrorEffect::EndsBatch);
    std::vector<ExpressionPtr> arguments;
    if (lateral) {
        std::set<std::string> outside = sourceNames(scope.sources);
        emitLateral(*query, outside, arguments);
        if (!arguments.empty()) {
            // SQLite runs it separately from the statement, so all columns it references are passed as
            // arguments.
            for (const Scope *outer = scope.outer; outer; outer = outer->outer) {
                outside.merge(sourceNames(outer->sources));
                if (outer->grouping)
                    outside.insert(outer->grouping->alias);
            }
            arguments.clear();
            Emitted statement = emitLateral(*query, outside, arguments);
            addSource(std::move(entry), scope);
            auto provider = std::make_shared<const LateralQuery>(query, std::move(statement));
            return std::make_shared<const Source>(Source{alias, ProvidedRows{provider, arguments}});
        }
    }
    addSource(std::move(entry), scope);
    return std::make_shared<const Source>(Source{alias, DerivedQuery{query}});
}

SourcePtr Binder::bindValues(const Ast::TableSource &source, const Ast::ValuesTable &table, Scope &scope,
                             bool lateral)
{
    Scope neighbours{lateral ? scope.sources : std::vector<ScopeSource>(), scope.outer};
    const ScopedValue<Scope *> around(m_scope, &neighbours);
    const std::size_t width = table.rows[0].size();
    std::vector<std::vector<ExpressionPtr>> columns(width);
    for (const auto &row : table.rows) {
        if (row.size() != width)
            throw EngineError(
                10709, 16, 1,
                "The number of columns for each row in a table value constructor must be the same.",
                ErrorEffect::EndsBatch);
        for (std::size_t i = 0; i < width; ++i)
            columns[i].push_back(bind(*row[i]));
    }
    if (source.columns.empty())
        throw EngineError(8155, 16, 2, "No column name was specified for column 1 of '" + source.alias + "'.",
                          ErrorEffect::EndsBatch);
    ValueRows values;
    values.rows.resize(table.rows.size());
    auto query = std::make_shared<Query>();
    const std::string alias = newAlias();
    for (std::size_t i = 0; i < width; ++i) {
        OutputColumn column;
        column.info.nullable = std::any_of(columns[i].begin(), columns[i].end(),
                                           [](const ExpressionPtr &value) { return value->nullable; });
        column.info.type = unify(columns[i]);
        column.expression = std::make_shared<const Expression>(Expression{
            column.info.type, column.info.nullable, Column{alias, "column" + std::to_string(i + 1)}});
        query->columns.push_back(std::move(column));
        for (std::size_t row = 0; row < table.rows.size(); ++row)
            values.rows[row].push_back(columns[i][row]);
    }
    query->from.push_back(std::make_shared<const Source>(Source{alias, std::move(values)}));
    ScopeSource entry;
    entry.name = source.alias;
    return addQuery(std::move(entry), query, source.columns, scope, lateral);
}

SourcePtr Binder::bindFunction(const Ast::TableSource &source, const Ast::FunctionTable &function,
                               Scope &scope)
{
    if (equalsIgnoringAsciiCase(function.name.toString(), "string_split"))
        return bindSplit(source, function, scope);
    DatabasePtr database;
    if (const ModulePtr module = m_tables.findFunction(function.name, database))
        return bindModuleFunction(source, function, module, database, scope);
    const bool isGenerator = equalsIgnoringAsciiCase(function.name.object(), "generate_rows");
    if (!isGenerator)
        throw Errors::invalidObject(function.name.toString());
    if (function.arguments.size() != 1)
        throw Errors::argumentCount("generate_rows", 1);
    GeneratedRows rows;
    rows.count = bindValueAs(*function.arguments[0], {TypeId::BigInt, 0, 0, 0});
    ScopeSource entry;
    entry.name = source.alias.empty() ? function.name.object() : source.alias;
    const std::string alias = newAlias();
    for (const ColumnInfo &info : RowGenerator::columns()) {
        ScopeColumn column;
        column.info = info;
        column.source = alias;
        column.column = info.name;
        entry.columns.push_back(std::move(column));
    }
    rename(entry, source.columns);
    addSource(std::move(entry), scope);
    return std::make_shared<const Source>(Source{alias, std::move(rows)});
}

SourcePtr Binder::bindJoin(const Ast::Join &join, Scope &scope)
{
    JoinedSources joined;
    joined.kind = join.kind;
    const std::size_t leftStart = scope.sources.size();
    joined.left = bindSource(*join.left, scope);
    const std::size_t rightStart = scope.sources.size();
    const bool outerApply = join.kind == Ast::JoinKind::OuterApply;
    joined.right = bindSource(*join.right, scope, outerApply || join.kind == Ast::JoinKind::CrossApply);
    if (join.condition)
        joined.condition = bind(*join.condition);
    if (join.kind == Ast::JoinKind::Left || join.kind == Ast::JoinKind::Full || outerApply)
        makeNullable(scope, rightStart, scope.sources.size());
    if (join.kind == Ast::JoinKind::Right || join.kind == Ast::JoinKind::Full)
        makeNullable(scope, leftStart, rightStart);
    return std::make_shared<const Source>(Source{{}, std::move(joined)});
}

} // namespace SampleServer
