#pragma once

#include "Engine/Emit/StatementText.h"

#include <vector>

namespace SampleServer {

class QueryEmitter;

/// Emits expressions as SQLite's SQL.
class ExpressionEmitter
{
public:
    /// `queries` emits subqueries.
    ExpressionEmitter(StatementText &text, QueryEmitter &queries)
        : m_text(text)
        , m_queries(queries)
    {
    }

    void write(const Bound::Expression &expression);
    void writeList(const std::vector<Bound::ExpressionPtr> &items);
    /// Emits an ORDER BY item with its collation and direction.
    void writeOrder(const Bound::Expression &key, const Bound::OrderItem &item);

private:
    void emit(const Bound::Constant &node, const Bound::Expression &expression);
    void emit(const Bound::Column &node, const Bound::Expression &expression);
    void emit(const Bound::Call &node, const Bound::Expression &);
    void emit(const Bound::WindowCall &node, const Bound::Expression &);
    void emit(const Bound::XmlText &node, const Bound::Expression &);
    void emit(const Bound::Comparison &node, const Bound::Expression &);
    void emit(const Bound::Logical &node, const Bound::Expression &);
    void emit(const Bound::Not &node, const Bound::Expression &);
    void emit(const Bound::IsNull &node, const Bound::Expression &);
    void emit(const Bound::In &node, const Bound::Expression &);
    void emit(const Bound::InQuery &node, const Bound::Expression &);
    void emit(const Bound::Case &node, const Bound::Expression &);
    void emit(const Bound::Coalesce &node, const Bound::Expression &);
    void emit(const Bound::Exists &node, const Bound::Expression &);
    void emit(const Bound::ScalarQuery &node, const Bound::Expression &);
    void writeLeaves(const Bound::Call &call);
    void writeOperands(const Bound::Logical &node);

    StatementText &m_text;
    QueryEmitter &m_queries;
};

} // namespace SampleServer
