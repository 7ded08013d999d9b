#include "Engine/Bind/TypeRules.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Conversion.h"
#include "Engine/Run/CollectingSink.h"
#include "Engine/Run/InsteadOf.h"
#include "Engine/Run/Interpreter.h"
#include "Engine/Run/TableChange.h"
#include "Engine/ScopedValue.h"
#include "Types/DecimalMath.h"
#include "Types/TypeTraits.h"

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

/// The places of the columns that an INSERT fills, in its order.
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

} // namespace

/// Fills and writes the rows of one INSERT statement.
class InsertRun
{
public:
    InsertRun(Interpreter &interpreter, const Bound::TableScan &scan, std::vector<std::size_t> targets,
              bool keepsRows)
        : m_interpreter(interpreter)
        , m_table(*scan.table)
        , m_targets(std::move(targets))
        , m_change(interpreter, scan, TableChange::Event::Insert)
    {
        if (keepsRows)
            m_change.keepRows();
    }

    const TableChange &change() const { return m_change; }
    /// Rows beyond this many are left out.
    void limit(std::int64_t most) { m_most = most; }

    /// `values` and `types` belong to the target columns.
    void write(std::span<const Value> values, const std::vector<SqlType> &types)
    {
        if (static_cast<std::int64_t>(m_count) >= m_most)
            return;
        std::vector<Value> row(m_table.columns.size());
        std::vector<bool> given(row.size());
        for (std::size_t i = 0; i < m_targets.size(); ++i) {
            row[m_targets[i]] = m_change.writer().assigned(m_targets[i], values[i], types[i]);
            given[m_targets[i]] = true;
        }
        store(row, given);
    }

    /// A row of expressions, null ones standing for the columns' defaults.
    void writeExpressions(const std::vector<Ast::ExpressionPtr> &expressions)
    {
        if (static_cast<std::int64_t>(m_count) >= m_most)
            return;
        std::vector<Value> row(m_table.columns.size());
        std::vector<bool> given(row.size());
        for (std::size_t i = 0; i < m_targets.size(); ++i) {
            const std::size_t column = m_targets[i];
            const SqlType &type = m_table.columns[column].type;
            if (!expressions[i])
                continue;
            const auto bound = m_interpreter.binder().bindValue(*expressions[i]);
            if (!Bound::isNullLiteral(*bound))
                requireConversion(bound->type, type, false);
            row[column] = m_change.writer().assigned(column, m_interpreter.evaluate(*bound), bound->type);
            given[column] = true;
        }
        store(row, given);
    }

    /// What follows from the new rows; returns how many there are.
    std::uint64_t finish()
    {
        if (m_ignored)
            m_interpreter.m_sink->message({3604, 1, 0, "Duplicate key was ignored.",
                                           m_interpreter.m_frame->procedure, m_interpreter.m_line});
        const std::uint64_t count = m_count;
        m_change.finish();
        return count;
    }

private:
    void store(std::vector<Value> &row, const std::vector<bool> &given)
    {
        complete(row, given);
        if (!m_change.insert(row)) {
            m_ignored = true;
            return;
        }
        ++m_count;
        for (std::size_t i = 0; i < row.size(); ++i)
            if (m_table.columns[i].identity)
                m_interpreter.m_context.lastIdentity = m_interpreter.m_context.scopeIdentity =
                    std::get<Decimal>(convertValue(row[i], m_table.columns[i].type,
                                                   {TypeId::Decimal, 0, Decimal::MaxDigits, 0}));
    }

    void complete(std::vector<Value> &row, const std::vector<bool> &given)
    {
        for (std::size_t i = 0; i < row.size(); ++i) {
            const TableColumn &column = m_table.columns[i];
            if (column.rowVersion && given[i])
                throw EngineError(
                    273, 16, 1,
                    "Cannot insert an explicit value into a timestamp column. Use INSERT with a "
                    "column list to exclude the timestamp column, or insert a DEFAULT into the "
                    "timestamp column.",
                    ErrorEffect::EndsBatch);
            if (column.rowVersion)
                row[i] = nextRowVersion();
            else if (column.identity)
                completeIdentity(row[i], given[i], column);
            else if (!given[i] && column.defaultValue) {
                const auto bound = m_interpreter.binder().bindValue(*column.defaultValue.expression);
                row[i] = m_change.writer().assigned(i, m_interpreter.evaluate(*bound), bound->type);
            }
        }
    }

    void completeIdentity(Value &value, bool given, const TableColumn &column)
    {
        if (!given) {
            const std::int64_t number = m_table.identity->take();
            try {
                value = convertValue(number, {TypeId::BigInt, 0, 0, 0}, column.type);
            } catch (const EngineError &) {
                throw Errors::overflow("IDENTITY", baseTypeName(column.type.id), 1);
            }
        } else if (!isNull(value)) {
            const auto number = convertValue(value, column.type, {TypeId::BigInt, 0, 0, 0});
            m_table.identity->sawExplicit(std::get<std::int64_t>(number));
        }
    }

    Interpreter &m_interpreter;
    const Table &m_table;
    const std::vector<std::size_t> m_targets;
    std::uint64_t m_count = 0;
    std::int64_t m_most = 0;
    bool m_ignored = false; ///< an index with IGNORE_DUP_KEY left a row out
    TableChange m_change;
};

void Interpreter::endChange(std::uint64_t count, std::uint16_t command)
{
    m_context.rowCount = static_cast<std::int64_t>(count);
    if (m_callbacks > 0)
        return; // nobody is told what a function does
    StatementEnd end;
    end.inProcedure = m_frame->module != nullptr;
    end.currentCommand = command;
    if (!m_options.noCount)
        end.rowCount = count;
    m_sink->endStatement(end);
}

Interpreter::Flow Interpreter::run(const Ast::Insert &node)
{
    constexpr std::uint16_t command = 0xC3;
    std::vector<CollectingSink::Row> collected;
    if (node.execute)
        collected = collectExecuted(std::get<Ast::Execute>(node.execute->node));
    InsteadOf instead(*this, node.table, TableChange::Event::Insert);
    const Bound::TableScan scan = instead.isActive() ? instead.target() : findTable(node.table);
    const bool identityInsert = m_options.identityInsertTable == scan.table->id;
    std::vector<std::size_t> targets;
    if (!node.defaultValues)
        targets = targetColumns(node, *scan.table, identityInsert);
    for (const auto &row : node.rows) {
        if (row.size() != targets.size())
            throw node.columns.empty() ? definitionMismatch() : columnCount(row.size() < targets.size());
    }
    if (m_options.formatOnly)
        return Flow::Next;
    if (scan.database)
        requireOutsideFunction("INSERT");
    willWrite(scan);
    const Bound::QueryPtr query = node.query ? binder().bindSelect(*node.query) : nullptr;
    const bool readsItself = std::count_if(m_uses.begin(), m_uses.end(), [&scan](const TableUse &use) {
                                 const bool reads = use.access == TableUse::Access::Read ||
                                                    use.access == TableUse::Access::ReadUncommitted;
                                 return reads && use.table->id == scan.table->id;
                             }) > 0;
    lockUses();
    Transactions::Change change(m_transactions);
    InsertRun insert(*this, scan, targets, instead.isActive());
    if (node.top && node.top->percent)
        throw Errors::notSupported("INSERT TOP ... PERCENT");
    constexpr SqlType bigint{TypeId::BigInt, 0, 0, 0};
    const Value most = node.top ? evaluate(*node.top->count, bigint) : Value();
    insert.limit(isNull(most) ? std::numeric_limits<std::int64_t>::max() : std::get<std::int64_t>(most));
    if (node.defaultValues)
        insert.writeExpressions({});
    for (const auto &row : node.rows) {
        insert.writeExpressions(row);
        checkAttention();
    }
    if (query)
        insertFrom(*query, *scan.table, insert, targets, readsItself);
    if (node.execute)
        insertCollected(collected, *scan.table, insert, targets);
    const std::uint64_t count = insert.finish();
    if (instead.isActive())
        instead.fire(insert.change());
    change.finish();
    endChange(count, command);
    return Flow::Next;
}

void Interpreter::insertFrom(const Bound::Query &query, const Table &table, InsertRun &insert,
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
    // Reading a table while it grows would never end: then the rows are collected first.
    if (!readsItself) {
        fetch(query, [&](std::span<const Value> row) { insert.write(row, types); });
        return;
    }
    std::vector<std::vector<Value>> rows;
    fetch(query, [&rows](std::span<const Value> row) { rows.emplace_back(row.begin(), row.end()); });
    for (const auto &row : rows)
        insert.write(row, types);
}

/// INSERT ... EXEC: what the text or procedure returns, once all of it has run.
std::vector<CollectingSink::Row> Interpreter::collectExecuted(const Ast::Execute &node)
{
    if (dynamic_cast<CollectingSink *>(m_sink))
        throw EngineError(8164, 16, 1, "An INSERT EXEC statement cannot be nested.", ErrorEffect::EndsBatch);
    CollectingSink collector(*m_sink);
    const ScopedValue<ResultSink *> current(m_sink, &collector);
    run(node);
    return collector.take();
}

void Interpreter::insertCollected(const std::vector<CollectingSink::Row> &rows, const Table &table,
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

} // namespace SampleServer
