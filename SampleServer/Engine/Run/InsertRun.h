#pragma once

#include "Engine/Run/TableChange.h"

#include <span>
#include <vector>

namespace SampleServer {

/// Completes and writes the rows of one INSERT statement.
class InsertRun
{
public:
    /// `targets` are the positions of the columns with explicit values.
    InsertRun(QueryExecutor &queries, TriggerRunner &triggers, const Bound::TableScan &scan,
              std::vector<std::size_t> targets, bool keepsRows);

    const TableChange &change() const { return m_change; }
    /// Limits the number of rows; further rows are ignored.
    void limit(std::int64_t most) { m_most = most; }

    /// Writes a row; `values` and `types` belong to the target columns.
    void write(std::span<const Value> values, const std::vector<SqlType> &types);
    /// Writes a row of expressions; null means the column's default.
    void writeExpressions(const std::vector<Ast::ExpressionPtr> &expressions);
    /// Checks constraints and fires triggers; returns the number of rows.
    std::uint64_t finish();

private:
    void store(std::vector<Value> &row, const std::vector<bool> &given);
    void complete(std::vector<Value> &row, const std::vector<bool> &given);
    void completeIdentity(Value &value, bool given, const TableColumn &column);

    QueryExecutor &m_queries;
    const Table &m_table;
    const std::vector<std::size_t> m_targets;
    std::uint64_t m_count = 0;
    std::int64_t m_most = 0;
    bool m_ignored = false; ///< an index with IGNORE_DUP_KEY skipped a row
    TableChange m_change;
};

} // namespace SampleServer
