#include "Engine/Run/ChangeExecutor.h"
#include "Engine/Bind/TypeRules.h"
#include "Engine/Errors.h"
#include "Engine/Run/InsertRun.h"
#include "Engine/Run/InsteadOf.h"
#include "Engine/Run/RowSearch.h"
#include "Engine/Run/TableChange.h"
#include "Types/Collation.h"

#include <algorithm>
#include <limits>

namespace SampleServer {

namespace {

EngineError columnCount(bool moreColumns)
{
    return {moreColumns ? 109 : 110, 15, 1,
            std::string("There are ") + (moreColumns ? "more" : "fewer") +
                " columns in the INSERT statement than values specified in the VALUES clause. The number of "
                "values in "
                "the VALUES clause must match the number of columns specified in the INSERT statement.",
            ErrorEffect::EndsBatch};
}

EngineError definitionMismatch()
{
    return {213, 16, 1, "Column name or number of supplied values does not match table definition.",
            ErrorEffect::EndsBatch};
}

/// The positions of the columns that an INSERT fills, in its order.
std::vector<std::size_t> targetColumns(const Ast::Insert &node, const Table &table, bool identityInsert)
{
    std::vector<std::size_t> targets;
    for (std::size_t i = 0; i < table.columns.size() && node.columns.empty(); ++i)
        if (!table.columns[i].computed && (!table.columns[i].identity || identityInsert))
            targets.push_back(i);
    for (const std::string &name : node.columns) {
        const auto column = table.findColumn(name);
        if (!column)
            throw Errors::invalidColumn(name);
        if (std::find(targets.begin(), targets.end(), *column) != targets.end())
            throw assignedTwice(name);
        if (table.columns[*column].computed)
            throw EngineError(
                271, 16, 1,
                "The column \"" + name +
                    "\" cannot be modified because it is either a computed column or is the result of a "
                    "UNION operator.",
                ErrorEffect::EndsBatch);
        if (table.columns[*column].identity && !identityInsert)
            throw EngineError(544, 16, 1,
                              "Cannot insert explicit value for identity column in table '" + table.name +
                                  "' when IDENTITY_INSERT is set to OFF.");
        targets.push_back(*column);
    }
    const bool givesIdentity =
        std::any_of(targets.begin(), targets.end(), [&](std::size_t i) { return table.columns[i].identity; });
    if (identityInsert && !givesIdentity)
        throw EngineError(545, 16, 1,
                          "Explicit value must be specified for identity column in table '" + table.name +
                              "' either when IDENTITY_INSERT is set to ON or when a replication user is "
                              "inserting into a NOT FOR REPLICATION identity column.");
    if (identityInsert && node.columns.empty())
        throw EngineError(
            8101, 16, 1,
            "An explicit value for the identity column in table '" + table.name +
                "' can only be specified when a column list is used and IDENTITY_INSERT is ON.");
    return targets;
}

/// One column that UPDATE sets.
struct Setting
{
    std::optional<std::size_t> column; ///< empty when only a variable is assigned
    std::string variable;
    Bound::ExpressionPtr value;
};

Setting bindSetting(RowSearch &search, const Ast::Assignment &assignment)
{
    const Table &table = *search.target().scan.table;
    Setting setting;
    setting.variable = assignment.variable;
    if (!assignment.column.empty()) {
        setting.column = table.findColumn(assignment.column);
        if (!setting.column)
            throw Errors::invalidColumn(assignment.column);
        const TableColumn &column = table.columns[*setting.column];
        if (column.identity)
            throw EngineError(8102, 16, 1, "Cannot update identity column '" + column.name + "'.",
                              ErrorEffect::EndsBatch);
        if (column.rowVersion)
            throw EngineError(272, 16, 1, "Cannot update a timestamp column.", ErrorEffect::EndsBatch);
        if (column.computed)
            throw EngineError(
                271, 16, 1,
                "The column \"" + column.name +
                    "\" cannot be modified because it is either a computed column or is the result of a "
                    "UNION operator.",
                ErrorEffect::EndsBatch);
    }
    if (assignment.value)
        setting.value = search.binder().bindValue(*assignment.value);
    else if (const auto &defaultValue = table.columns[*setting.column].defaultValue)
        setting.value = search.binder().bindValue(*defaultValue.expression);
    else
        setting.value = Binder::null(table.columns[*setting.column].type);
    if (setting.column && !Bound::isNullLiteral(*setting.value))
        requireConversion(setting.value->type, table.columns[*setting.column].type, false);
    return setting;
}

} // namespace

void ChangeExecutor::run(const Ast::Insert &node)
{
    constexpr std::uint16_t command = 0xC3;
    std::vector<CollectingSink::Row> collected;
    if (node.execute)
        collected = m_modules.collectExecuted(std::get<Ast::Execute>(node.execute->node));
    InsteadOf instead(m_queries, m_triggers, node.table, TableChange::Event::Insert);
    const Bound::TableScan scan = instead.isActive() ? instead.target() : m_names.findTable(node.table);
    const bool identityInsert = m_session.options.identityInsertTable == scan.table->id;
    std::vector<std::size_t> targets;
    if (!node.defaultValues)
        targets = targetColumns(node, *scan.table, identityInsert);
    for (const auto &row : node.rows) {
        if (row.size() != targets.size())
            throw node.columns.empty() ? definitionMismatch() : columnCount(row.size() < targets.size());
    }
    if (m_session.options.formatOnly)
        return;
    if (scan.database)
        m_session.requireOutsideFunction("INSERT");
    m_names.willWrite(scan);
    const Bound::QueryPtr query = node.query ? m_queries.binder().bindSelect(*node.query) : nullptr;
    const bool readsItself =
        std::count_if(m_names.uses().begin(), m_names.uses().end(), [&scan](const TableUse &use) {
            const bool reads =
                use.access == TableUse::Access::Read || use.access == TableUse::Access::ReadUncommitted;
            return reads && use.table->id == scan.table->id;
        }) > 0;
    m_names.lockUses();
    Transactions::Change change(m_session.transactions);
    InsertRun insert(m_queries, m_triggers, scan, targets, instead.isActive());
    if (node.top && node.top->percent)
        throw Errors::notSupported("INSERT TOP ... PERCENT");
    constexpr SqlType bigint{TypeId::BigInt, 0, 0, 0};
    const Value most = node.top ? m_queries.evaluate(*node.top->count, bigint) : Value();
    insert.limit(isNull(most) ? std::numeric_limits<std::int64_t>::max() : std::get<std::int64_t>(most));
    if (node.defaultValues)
        insert.writeExpressions({});
    for (const auto &row : node.rows) {
        insert.writeExpressions(row);
        m_session.checkAttention();
    }
    if (query)
        insertFrom(*query, *scan.table, insert, targets, readsItself);
    if (node.execute)
        insertCollected(collected, *scan.table, insert, targets);
    const std::uint64_t count = insert.finish();
    if (instead.isActive())
        instead.fire(insert.change());
    change.finish();
    m_session.endChange(count, command);
}

void ChangeExecutor::insertFrom(const Bound::Query &query, const Table &table, InsertRun &insert,
                                const std::vector<std::size_t> &targets, bool readsItself)
{
    if (query.columns.size() != targets.size())
        throw query.columns.size() < targets.size()
            ? EngineError(
                  120, 15, 1,
                  "The select list for the INSERT statement contains fewer items than the insert list. The "
                  "number of SELECT values must match the number of INSERT columns.",
                  ErrorEffect::EndsBatch)
            : EngineError(
                  121, 15, 1,
                  "The select list for the INSERT statement contains more items than the insert list. The "
                  "number of SELECT values must match the number of INSERT columns.",
                  ErrorEffect::EndsBatch);
    std::vector<SqlType> types;
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const Bound::OutputColumn &column = query.columns[i];
        types.push_back(column.info.type);
        if (!column.expression || !Bound::isNullLiteral(*column.expression))
            requireConversion(column.info.type, table.columns[targets[i]].type, false);
    }
    // Reading a table while inserting into it would never end, so the rows are collected first.
    if (!readsItself) {
        m_queries.fetch(query, [&](std::span<const Value> row) { insert.write(row, types); });
        return;
    }
    std::vector<std::vector<Value>> rows;
    m_queries.fetch(query,
                    [&rows](std::span<const Value> row) { rows.emplace_back(row.begin(), row.end()); });
    for (const auto &row : rows)
        insert.write(row, types);
}

void ChangeExecutor::insertCollected(const std::vector<CollectingSink::Row> &rows, const Table &table,
                                     InsertRun &insert, const std::vector<std::size_t> &targets)
{
    for (const auto &row : rows) {
        if (row.values.size() != targets.size())
            throw definitionMismatch();
        std::vector<SqlType> types;
        for (std::size_t i = 0; i < targets.size(); ++i) {
            types.push_back((*row.columns)[i].type);
            requireConversion(types.back(), table.columns[targets[i]].type, false);
        }
        insert.write(row.values, types);
    }
}

void ChangeExecutor::run(const Ast::Update &node)
{
    InsteadOf instead(m_queries, m_triggers, node.table, TableChange::Event::Update);
    RowSearch search(m_queries, node.table, node.from, node.with, instead, "UPDATE");
    std::vector<Setting> settings;
    std::vector<Bound::ExpressionPtr> expressions;
    std::vector<std::size_t> columns;
    for (const Ast::Assignment &assignment : node.assignments) {
        settings.push_back(bindSetting(search, assignment));
        expressions.push_back(settings.back().value);
        const auto column = settings.back().column;
        if (column && std::find(columns.begin(), columns.end(), *column) != columns.end())
            throw assignedTwice(assignment.column);
        if (column)
            columns.push_back(*column);
    }
    const auto &tableColumns = search.target().scan.table->columns;
    const auto version = std::find_if(tableColumns.begin(), tableColumns.end(),
                                      [](const TableColumn &column) { return column.rowVersion; });
    if (version != tableColumns.end())
        columns.push_back(static_cast<std::size_t>(version - tableColumns.begin()));
    TableChange rows(m_queries, m_triggers, search.target().scan, TableChange::Event::Update, columns);
    const std::size_t firstOld = expressions.size();
    search.addWholeRow(expressions);
    const std::vector<StoredRow> found = search.find(expressions, node.where, node.top);
    if (m_session.options.formatOnly)
        return;
    Transactions::Change change(m_session.transactions);
    std::vector<StoredRow> before;
    std::vector<std::vector<Value>> after;
    for (const StoredRow &row : found) {
        before.push_back(
            {row.rowId, {row.values.begin() + static_cast<std::ptrdiff_t>(firstOld), row.values.end()}});
        after.push_back(before.back().values);
        if (version != tableColumns.end())
            after.back()[columns.back()] = nextRowVersion();
        for (std::size_t i = 0; i < settings.size(); ++i) {
            if (!settings[i].variable.empty())
                m_queries.assign(settings[i].variable, row.values[i], settings[i].value->type);
            if (settings[i].column)
                after.back()[*settings[i].column] =
                    rows.writer().assigned(*settings[i].column, row.values[i], settings[i].value->type);
        }
    }
    if (instead.isActive())
        rows.keepRows();
    rows.update(before, after);
    rows.finish();
    if (instead.isActive())
        instead.fire(rows);
    change.finish();
    if (!node.isSilent)
        m_session.endChange(found.size(), 0xC5);
}

void ChangeExecutor::run(const Ast::Delete &node)
{
    InsteadOf instead(m_queries, m_triggers, node.table, TableChange::Event::Delete);
    RowSearch search(m_queries, node.table, node.from, node.with, instead, "DELETE");
    TableChange rows(m_queries, m_triggers, search.target().scan, TableChange::Event::Delete);
    std::vector<Bound::ExpressionPtr> expressions;
    if (instead.isActive())
        rows.keepRows();
    if (rows.needsOldRows())
        search.addWholeRow(expressions);
    const std::vector<StoredRow> found = search.find(expressions, node.where, node.top);
    if (m_session.options.formatOnly)
        return;
    Transactions::Change change(m_session.transactions);
    for (const StoredRow &row : found) {
        rows.remove(row);
        m_session.checkAttention();
    }
    rows.finish();
    if (instead.isActive())
        instead.fire(rows);
    change.finish();
    m_session.endChange(found.size(), 0xC4);
}

void ChangeExecutor::run(const Ast::TruncateTable &node)
{
    const Bound::TableScan scan = m_names.findOrNull(node.table);
    if (!scan.table)
        throw EngineError(4701, 16, 1,
                          "Cannot find the object \"" + node.table.object() +
                              "\" because it does not exist or you do not have permissions.",
                          ErrorEffect::EndsBatch);
    if (scan.database)
        for (const TablePtr &other : scan.database->referencing(scan.table->id))
            if (other->id != scan.table->id)
                throw EngineError(4712, 16, 1,
                                  "Cannot truncate table '" + node.table.object() +
                                      "' because it is being referenced by a FOREIGN KEY constraint.");
    if (scan.database)
        m_session.requireOutsideFunction("TRUNCATE TABLE");
    m_names.willWrite(scan);
    m_names.lockUses();
    Transactions::Change change(m_session.transactions);
    m_session.connection.execute("DELETE FROM " + scan.schema + '.' + scan.table->physicalName());
    change.finish();
    if (scan.table->identity)
        scan.table->identity->restart();
    m_session.evaluation.rowCount = 0;
}

} // namespace SampleServer
