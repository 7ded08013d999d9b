#include "Engine/Run/InsertRun.h"
#include "Engine/Bind/TypeRules.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Conversion.h"
#include "Engine/Run/TriggerRunner.h"
#include "Types/DecimalMath.h"
#include "Types/TypeTraits.h"

namespace SampleServer {

InsertRun::InsertRun(QueryExecutor &queries, TriggerRunner &triggers, const Bound::TableScan &scan,
                     std::vector<std::size_t> targets, bool keepsRows)
    : m_queries(queries)
    , m_table(*scan.table)
    , m_targets(std::move(targets))
    , m_change(queries, triggers, scan, TableChange::Event::Insert)
{
    if (keepsRows)
        m_change.keepRows();
}

void InsertRun::write(std::span<const Value> values, const std::vector<SqlType> &types)
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

void InsertRun::writeExpressions(const std::vector<Ast::ExpressionPtr> &expressions)
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
        const auto bound = m_queries.binder().bindValue(*expressions[i]);
        if (!Bound::isNullLiteral(*bound))
            requireConversion(bound->type, type, false);
        row[column] = m_change.writer().assigned(column, m_queries.evaluate(*bound), bound->type);
        given[column] = true;
    }
    store(row, given);
}

std::uint64_t InsertRun::finish()
{
    if (m_ignored)
        m_queries.session().sink->message({3604, 1, 0, "Duplicate key was ignored.",
                                           m_queries.session().frame->procedure, m_queries.session().line});
    const std::uint64_t count = m_count;
    m_change.finish();
    return count;
}

void InsertRun::store(std::vector<Value> &row, const std::vector<bool> &given)
{
    EvaluationContext &evaluation = m_queries.session().evaluation;
    complete(row, given);
    if (!m_change.insert(row)) {
        m_ignored = true;
        return;
    }
    ++m_count;
    for (std::size_t i = 0; i < row.size(); ++i)
        if (m_table.columns[i].identity)
            evaluation.lastIdentity = evaluation.scopeIdentity = std::get<Decimal>(
                convertValue(row[i], m_table.columns[i].type, {TypeId::Decimal, 0, Decimal::MaxDigits, 0}));
}

void InsertRun::complete(std::vector<Value> &row, const std::vector<bool> &given)
{
    for (std::size_t i = 0; i < row.size(); ++i) {
        const TableColumn &column = m_table.columns[i];
        if (column.rowVersion && given[i])
            throw EngineError(273, 16, 1,
                              "Cannot insert an explicit value into a timestamp column. Use INSERT with a "
                              "column list to exclude the timestamp column, or insert a DEFAULT into the "
                              "timestamp column.",
                              ErrorEffect::EndsBatch);
        if (column.rowVersion)
            row[i] = nextRowVersion();
        else if (column.identity)
            completeIdentity(row[i], given[i], column);
        else if (!given[i] && column.defaultValue) {
            const auto bound = m_queries.binder().bindValue(*column.defaultValue.expression);
            row[i] = m_change.writer().assigned(i, m_queries.evaluate(*bound), bound->type);
        }
    }
}

void InsertRun::completeIdentity(Value &value, bool given, const TableColumn &column)
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

} // namespace SampleServer
