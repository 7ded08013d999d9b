#pragma once

#include "Engine/Bind/Bound.h"

#include <span>
#include <vector>

namespace SampleServer {

/// Runs the COMPUTE clauses of a query: adds up its rows as they are sent and sends the totals between and
/// after them.
class ComputeRows
{
public:
    /// Throws EngineError 411 and others if a clause references a column that is not in the select list.
    ComputeRows(const Ast::Select &select, const Bound::Query &query, ResultSink &sink);

    /// Announces the totals to the sink. Call after its columns().
    void announce();
    /// Sends the totals of groups that end before this row. Call before sending the row.
    void beforeRow(std::span<const Value> row);
    /// Adds the row to the totals. Call after sending the row.
    void afterRow(std::span<const Value> row);
    /// Sends the totals of the last groups and the grand totals.
    void finish();

private:
    struct Total
    {
        ComputeColumn column;
        SqlType operandType;
        std::int64_t count = 0;
        Value value; ///< the sum, minimum or maximum so far, of sumType for sums
        SqlType sumType;
    };
    struct Clause
    {
        std::vector<Total> totals;
        std::vector<std::uint16_t> by;
        std::vector<Value> group; ///< of the rows added so far
        bool hasRows = false;
    };

    static Total makeTotal(const Ast::ComputeItem &item, std::size_t operand, const SqlType &type);
    static void add(Total &total, const Value &value);
    static Value result(const Total &total);
    void send(std::size_t clause);
    static bool sameGroup(const Clause &clause, std::span<const Value> row);

    ResultSink &m_sink;
    std::vector<Clause> m_clauses;
};

} // namespace SampleServer
