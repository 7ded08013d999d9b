#pragma once

#include "Engine/Bind/Bound.h"

#include <span>
#include <vector>

namespace SampleServer {

/// The COMPUTE clauses of a query: adds up its rows as they pass and sends the totals between and after them.
class ComputeRows
{
public:
    /// Throws EngineError 411 and others where a clause names what is not in the select list.
    ComputeRows(const Ast::Select &select, const Bound::Query &query, ResultSink &sink);

    /// Tells the sink of the totals to come; after its columns().
    void announce();
    /// Sends the totals of groups that end before this row. Call before the row is sent.
    void beforeRow(std::span<const Value> row);
    /// Adds the row to the totals. Call after the row was sent.
    void afterRow(std::span<const Value> row);
    /// Sends the totals of the last groups and of the whole.
    void finish();

private:
    struct Total
    {
        ComputeColumn column;
        SqlType operandType;
        std::int64_t count = 0;
        Value value; ///< the sum, least or greatest so far, of sumType for sums
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
