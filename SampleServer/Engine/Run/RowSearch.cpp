#include "Engine/Run/RowSearch.h"
#include "Engine/Emit/Emitter.h"
#include "Engine/Errors.h"
#include "Types/Collation.h"

#include <algorithm>
#include <set>

namespace SampleServer {

RowSearch::RowSearch(QueryExecutor &queries, const Ast::ObjectName &name,
                     const std::vector<Ast::TableSourcePtr> &from, const std::vector<Ast::CommonTable> &with,
                     const InsteadOf &instead, const char *verb)
    : m_queries(queries)
    , m_binder(queries.binder())
{
    for (const Ast::CommonTable &common : with)
        if (name.parts.size() == 1 && foldedName(common.name) == foldedName(name.object()))
            throw Errors::notSupported("changes of rows through common table expressions");
    m_binder.useCommonTables(with);
    m_binder.enterScope(m_scope);
    m_target.from = m_binder.bindFrom(from, m_scope);
    if (!findInFrom(name)) {
        m_target.scan = instead.isActive() ? instead.target() : queries.names().findTable(name);
        m_target.from.push_back(m_binder.bindTarget(
            m_target.scan, instead.isActive() ? name.object() : m_target.scan.table->name, m_scope));
        m_target.alias = m_target.from.back()->alias;
    }
    if (m_target.scan.database)
        queries.session().requireOutsideFunction(verb);
    queries.names().willWrite(m_target.scan);
}

std::vector<StoredRow> RowSearch::find(const std::vector<Bound::ExpressionPtr> &expressions,
                                       const Ast::ExpressionPtr &where, const std::optional<Ast::Top> &top)
{
    const auto condition = where ? m_binder.bindCondition(*where) : nullptr;
    if (top && top->percent)
        throw Errors::notSupported("TOP ... PERCENT in UPDATE and DELETE");
    const auto limit = top ? m_binder.bindValueAs(*top->count, BigIntType) : nullptr;
    m_queries.names().lockUses();
    return read(emitSelection({m_target.alias + ".rowid"}, expressions, m_target.from, condition, limit),
                expressions);
}

std::vector<StoredRow> RowSearch::read(const Emitted &emitted,
                                       const std::vector<Bound::ExpressionPtr> &expressions)
{
    SqliteStatement statement(m_queries.session().connection, emitted.sql);
    statement.bind(emitted.parameters);
    std::vector<StoredRow> rows;
    std::set<std::int64_t> seen; // a join may find a row more than once
    const bool joined = m_target.from.size() > 1 || m_scope.sources.size() > 1;
    const auto most = static_cast<std::size_t>(m_queries.session().options.rowLimit);
    while (statement.step()) {
        Value id;
        statement.read(0, BigIntType, id);
        StoredRow row;
        row.rowId = std::get<std::int64_t>(id);
        if (joined && !seen.insert(row.rowId).second)
            continue;
        row.values.resize(expressions.size());
        for (std::size_t i = 0; i < expressions.size(); ++i)
            statement.read(static_cast<int>(i) + 1, expressions[i]->type, row.values[i]);
        rows.push_back(std::move(row));
        if (most > 0 && rows.size() == most)
            break;
        if (rows.size() % 64 == 0)
            m_queries.session().checkAttention();
    }
    return rows;
}

void RowSearch::addWholeRow(std::vector<Bound::ExpressionPtr> &expressions) const
{
    for (const TableColumn &column : m_target.scan.table->columns) {
        if (column.computed) {
            expressions.push_back(Binder::null(column.type));
            continue;
        }
        Bound::Column reference{m_target.alias, column.physicalName()};
        expressions.push_back(std::make_shared<const Bound::Expression>(
            Bound::Expression{column.type, true, std::move(reference)}));
    }
}

/// UPDATE c ... FROM Customers AS c names its target by alias; a table of the FROM clause can also be named
/// directly.
bool RowSearch::findInFrom(const Ast::ObjectName &name)
{
    for (const ScopeSource &source : m_scope.sources) {
        if (!source.table || foldedName(source.name) != foldedName(name.object()))
            continue;
        m_target.alias = source.columns.front().source;
        for (const Bound::SourcePtr &from : m_target.from)
            findScan(*from);
        return true;
    }
    return false;
}

void RowSearch::findScan(const Bound::Source &source)
{
    if (const auto *join = std::get_if<Bound::JoinedSources>(&source.node)) {
        findScan(*join->left);
        findScan(*join->right);
    } else if (source.alias == m_target.alias) {
        m_target.scan = std::get<Bound::TableScan>(source.node);
    }
}

} // namespace SampleServer
