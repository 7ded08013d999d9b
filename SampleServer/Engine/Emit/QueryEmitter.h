#pragma once

#include "Engine/Emit/ExpressionEmitter.h"
#include "Engine/Emit/SourceEmitter.h"

#include <string>
#include <vector>

namespace SampleServer {

/// Emits queries as SQLite's SQL.
class QueryEmitter
{
public:
    explicit QueryEmitter(StatementText &text)
        : m_text(text)
        , m_expressions(text, *this)
        , m_sources(text, *this)
    {
    }

    void query(const Bound::Query &query);
    ExpressionEmitter &expressions() { return m_expressions; }

    // The clauses of the SELECT with which UPDATE and DELETE find their rows
    void selection(const std::vector<std::string> &plainColumns,
                   const std::vector<Bound::ExpressionPtr> &expressions);
    void fromAndWhere(const std::vector<Bound::SourcePtr> &from, const Bound::ExpressionPtr &where);
    void limit(const Bound::ExpressionPtr &count);

private:
    void body(const Bound::Query &query);
    void rankedLimit(const Bound::Query &query);
    void rank(const Bound::Query &query);
    void outputs(const Bound::Query &query);
    void specification(const Bound::Query &query);
    void grouping(const Bound::Query &query);
    void groupInputs(const Bound::Query &query);
    void aggregate(const Bound::Aggregate &aggregate, std::size_t number);
    void combination(const Bound::Query &query);
    static bool isPlainCombination(const Bound::Query &query);
    void orderAndLimit(const Bound::Query &query);

    StatementText &m_text;
    ExpressionEmitter m_expressions;
    SourceEmitter m_sources;
    const Bound::Query *m_rankOf = nullptr; ///< whose rows get a rank column
};

} // namespace SampleServer
