#pragma once

#include "Engine/Run/TableChange.h"

#include <span>
#include <vector>

namespace SampleServer {

/// Fills and writes the rows of one INSERT statement.
class InsertRun
{
public:
    /// `targets` are the positions of the columns that the statement gives values for.
    InsertRun(QueryExecutor &queries, TriggerRunner &triggers, const Bound::TableScan &scan,
              std::vector<std::size_t> targets, bool keepsRows);

    const TableChange &change() const { return m_change; }
    /// Rows beyond this many are left out.
    void limit(std::int64_t most) { m_most = most; }

    /// `values` and `types` belong to the target columns.
    void write(std::span<const Value> values, const std::vector<SqlType> &types);
    /// A row of expressions, null ones standing for the columns' defaults.
    void writeExpressions(const std::vector<Ast::ExpressionPtr> &expressions);
    /// Checks constraints and fires triggers; returns how many rows there are.
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
    bool m_ignored = false; ///< an index with IGNORE_DUP_KEY left a row out
    TableChange m_change;
};

} // namespace SampleServer
