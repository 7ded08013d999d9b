#include "Engine/Binder.h"
#include "Engine/Errors.h"
#include "Engine/RowGenerator.h"
#include "Engine/ScopedValue.h"
#include "Types/Collation.h"
#include "Types/Text.h"

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

/// Gives the columns of a source the names that were written after its alias.
void rename(ScopeSource &source, const std::vector<std::string> &names)
{
    if (names.empty())
        return;
    if (names.size() != source.columns.size())
        throw columnListMismatch(source.name, names.size() < source.columns.size());
    for (std::size_t i = 0; i < names.size(); ++i)
        source.columns[i].info.name = names[i];
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
        entry.info.computed = column.computed != nullptr;
        entry.info.updatable = !column.identity && !column.computed;
        entry.source = sqliteAlias;
        entry.column = column.physicalName();
        source.columns.push_back(std::move(entry));
    }
    bindComputedColumns(source);
    return source;
}

/// A computed column is not stored: wherever it is named, its expression over the stored columns stands.
void Binder::bindComputedColumns(ScopeSource &source)
{
    Scope own;
    own.sources.push_back(source);
    const ScopedValue<Scope *> inner(m_scope, &own);
    for (std::size_t i = 0; i < source.columns.size(); ++i)
        if (const auto &computed = source.table->columns[i].computed)
            source.columns[i].computed = converted(bind(*computed), source.columns[i].info.type);
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

SourcePtr Binder::bindSource(const Ast::TableSource &source, Scope &scope)
{
    if (const auto *named = std::get_if<Ast::NamedTable>(&source.node))
        return bindNamed(source, *named, scope);
    if (const auto *derived = std::get_if<Ast::DerivedTable>(&source.node))
        return bindDerived(source, *derived, scope);
    if (const auto *values = std::get_if<Ast::ValuesTable>(&source.node))
        return bindValues(source, *values, scope);
    if (const auto *function = std::get_if<Ast::FunctionTable>(&source.node))
        return bindFunction(source, *function, scope);
    return bindJoin(std::get<Ast::Join>(source.node), scope);
}

SourcePtr Binder::bindNamed(const Ast::TableSource &source, const Ast::NamedTable &table, Scope &scope)
{
    const TableScan scan = m_tables.findTable(table.name);
    m_tables.willRead(scan, table.readUncommitted);
    const std::string alias = newAlias();
    ScopeSource entry = scopeOfTable(scan, source.alias, alias);
    if (source.alias.empty() && !table.name.qualifier(2).empty())
        entry.database = table.name.qualifier(2);
    addSource(std::move(entry), scope);
    return std::make_shared<const Source>(Source{alias, scan});
}

SourcePtr Binder::bindDerived(const Ast::TableSource &source, const Ast::DerivedTable &table, Scope &scope)
{
    // A derived table sees the queries around this one, but not its neighbours in the FROM clause.
    const QueryPtr query = [&] {
        const ScopedValue<Scope *> around(m_scope, scope.outer);
        return bindSubquery(*table.query, true);
    }();
    ScopeSource entry;
    entry.name = source.alias;
    const std::string alias = newAlias();
    for (std::size_t i = 0; i < query->columns.size(); ++i) {
        ScopeColumn column;
        column.info = query->columns[i].info;
        column.info.updatable = false;
        column.source = alias;
        column.column = 'c' + std::to_string(i + 1);
        entry.columns.push_back(std::move(column));
    }
    rename(entry, source.columns);
    for (std::size_t i = 0; i < entry.columns.size(); ++i)
        if (entry.columns[i].info.name.empty())
            throw EngineError(8155, 16, 2,
                              "No column name was specified for column " + std::to_string(i + 1) + " of '" +
                                  entry.name + "'.",
                              ErrorEffect::EndsBatch);
    addSource(std::move(entry), scope);
    return std::make_shared<const Source>(Source{alias, DerivedQuery{query}});
}

SourcePtr Binder::bindValues(const Ast::TableSource &source, const Ast::ValuesTable &table, Scope &scope)
{
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
    ScopeSource entry;
    entry.name = source.alias;
    const std::string alias = newAlias();
    ValueRows values;
    values.rows.resize(table.rows.size());
    for (std::size_t i = 0; i < width; ++i) {
        ScopeColumn column;
        column.info.type = unify(columns[i]);
        column.source = alias;
        column.column = "column" + std::to_string(i + 1);
        entry.columns.push_back(std::move(column));
        for (std::size_t row = 0; row < table.rows.size(); ++row)
            values.rows[row].push_back(columns[i][row]);
    }
    rename(entry, source.columns);
    addSource(std::move(entry), scope);
    return std::make_shared<const Source>(Source{alias, std::move(values)});
}

SourcePtr Binder::bindFunction(const Ast::TableSource &source, const Ast::FunctionTable &function,
                               Scope &scope)
{
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
    joined.right = bindSource(*join.right, scope);
    if (join.condition)
        joined.condition = bind(*join.condition);
    if (join.kind == Ast::JoinKind::Left || join.kind == Ast::JoinKind::Full)
        makeNullable(scope, rightStart, scope.sources.size());
    if (join.kind == Ast::JoinKind::Right || join.kind == Ast::JoinKind::Full)
        makeNullable(scope, leftStart, rightStart);
    return std::make_shared<const Source>(Source{{}, std::move(joined)});
}

} // namespace SampleServer
