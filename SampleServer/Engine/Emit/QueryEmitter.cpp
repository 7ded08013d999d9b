#include "Engine/Emit/QueryEmitter.h"

namespace SampleServer {

using namespace Bound;

void QueryEmitter::query(const Query &query)
{
    if (query.withTies || query.percent)
        return rankedLimit(query);
    body(query);
    orderAndLimit(query);
}

void QueryEmitter::selection(const std::vector<std::string> &plainColumns,
                             const std::vector<ExpressionPtr> &expressions)
{
    m_text.text("SELECT ");
    const char *separator = "";
    for (const std::string &column : plainColumns) {
        m_text.text(separator + column);
        separator = ", ";
    }
    for (const ExpressionPtr &item : expressions) {
        m_text.text(separator);
        m_expressions.write(*item);
        separator = ", ";
    }
}

void QueryEmitter::fromAndWhere(const std::vector<SourcePtr> &from, const ExpressionPtr &where)
{
    const char *separator = " FROM ";
    for (const SourcePtr &item : from) {
        m_text.text(separator);
        m_sources.write(*item, item != from.front());
        separator = ", ";
    }
    if (where) {
        m_text.text(" WHERE ");
        m_expressions.write(*where);
    }
}

void QueryEmitter::limit(const ExpressionPtr &count)
{
    if (!count)
        return;
    m_text.text(" LIMIT ");
    m_expressions.write(*count);
}

void QueryEmitter::body(const Query &query)
{
    if (query.op)
        combination(query);
    else if (query.grouped)
        grouping(query);
    else
        specification(query);
}

/// TOP ... WITH TIES and PERCENT: adds the rank or number of each row and filters out those above the limit.
void QueryEmitter::rankedLimit(const Query &query)
{
    m_text.text("SELECT ");
    for (std::size_t i = 0; i < query.columns.size(); ++i)
        m_text.text((i == 0 ? "c" : ", c") + std::to_string(i + 1));
    m_text.text(" FROM (");
    m_rankOf = &query;
    body(query);
    m_text.text(") WHERE place <= ");
    if (query.percent) {
        m_text.text("tsql_ceiling(total * ");
        m_expressions.write(*query.limit);
        m_text.text(" / 100.0)");
    } else {
        m_expressions.write(*query.limit);
    }
    m_text.text(" ORDER BY place");
}

/// The columns used by the filter of rankedLimit().
void QueryEmitter::rank(const Query &query)
{
    if (m_rankOf != &query)
        return;
    m_rankOf = nullptr;
    m_text.text(query.withTies ? ", rank() OVER (" : ", row_number() OVER (");
    const char *separator = "ORDER BY ";
    for (const OrderItem &item : query.orderBy) {
        m_text.text(separator);
        m_expressions.writeOrder(item.expression ? *item.expression : *query.columns[item.output].expression,
                                 item);
        separator = ", ";
    }
    m_text.text(") AS place, count(*) OVER () AS total");
}

void QueryEmitter::outputs(const Query &query)
{
    const char *separator = "";
    for (std::size_t i = 0; i < query.columns.size(); ++i) {
        m_text.text(separator);
        m_expressions.write(*query.columns[i].expression);
        if (query.distinct)
            m_text.text(collationOf(query.columns[i].info.type));
        m_text.text(" AS c" + std::to_string(i + 1));
        separator = ", ";
    }
    rank(query);
}

void QueryEmitter::specification(const Query &query)
{
    m_text.text(query.distinct ? "SELECT DISTINCT " : "SELECT ");
    outputs(query);
    fromAndWhere(query.from, query.where);
}

/// Three layers: the input columns of the groups, the groups, and the expressions over them.
void QueryEmitter::grouping(const Query &query)
{
    m_text.text(query.distinct ? "SELECT DISTINCT " : "SELECT ");
    outputs(query);
    m_text.text(" FROM (SELECT ");
    const char *separator = "";
    for (std::size_t i = 0; i < query.groupKeys.size(); ++i) {
        m_text.text(separator + ('g' + std::to_string(i)));
        separator = ", ";
    }
    for (std::size_t i = 0; i < query.aggregates.size(); ++i) {
        m_text.text(separator);
        aggregate(query.aggregates[i], i);
        separator = ", ";
    }
    m_text.text(query.groupKeys.empty() && query.aggregates.empty() ? "count(*) AS n FROM (SELECT "
                                                                    : " FROM (SELECT ");
    groupInputs(query);
    fromAndWhere(query.from, query.where);
    m_text.text(")");
    separator = " GROUP BY ";
    for (std::size_t i = 0; i < query.groupKeys.size(); ++i) {
        m_text.text(separator + ('g' + std::to_string(i)) + collationOf(query.groupKeys[i]->type));
        separator = ", ";
    }
    m_text.text(") AS " + query.groupAlias);
    if (query.having) {
        m_text.text(" WHERE ");
        m_expressions.write(*query.having);
    }
}

void QueryEmitter::groupInputs(const Query &query)
{
    m_text.text("1");
    for (std::size_t i = 0; i < query.groupKeys.size(); ++i) {
        m_text.text(", ");
        m_expressions.write(*query.groupKeys[i]);
        m_text.text(" AS g" + std::to_string(i));
    }
    for (std::size_t i = 0; i < query.aggregates.size(); ++i) {
        if (!query.aggregates[i].argument)
            continue;
        const std::string place = std::to_string(i);
        m_text.text(", ");
        m_expressions.write(*query.aggregates[i].argument);
        m_text.text(" AS x" + place);
        for (std::size_t k = 0; k < query.aggregates[i].more.size(); ++k) {
            m_text.text(", ");
            m_expressions.write(*query.aggregates[i].more[k]);
            m_text.text(" AS x" + place + '_' + std::to_string(k));
        }
    }
}

void QueryEmitter::aggregate(const Aggregate &aggregate, std::size_t number)
{
    const std::string place = std::to_string(number);
    if (!aggregate.argument) {
        m_text.text("count(*) AS a" + place);
        return;
    }
    m_text.text(aggregate.function + '(' + (aggregate.distinct ? "DISTINCT " : "") + 'x' + place +
                collationOf(aggregate.argument->type));
    for (std::size_t i = 0; i < aggregate.more.size(); ++i)
        m_text.text(", x" + place + '_' + std::to_string(i));
    m_text.text(") AS a" + place);
}

/// Writes a op b op c as one list: SQLite evaluates its operators from left to right, too.
void QueryEmitter::combination(const Query &query)
{
    static constexpr const char *operators[] = {" UNION ", " UNION ALL ", " EXCEPT ", " INTERSECT "};
    std::vector<const Query *> steps{&query}; // from the last operator to the first
    while (isPlainCombination(*steps.back()->left))
        steps.push_back(steps.back()->left.get());
    m_text.text("SELECT ");
    const char *separator = "";
    for (std::size_t i = 0; i < query.columns.size(); ++i) {
        const std::string name = 'c' + std::to_string(i + 1);
        m_text.text(separator + name + collationOf(query.columns[i].info.type) + " AS " + name);
        separator = ", ";
    }
    m_text.text(" FROM (");
    this->query(*steps.back()->left);
    m_text.text(")");
    for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
        m_text.text(operators[static_cast<int>(*(*step)->op)] + std::string("SELECT * FROM ("));
        this->query(*(*step)->right);
        m_text.text(")");
    }
}

/// Whether the query is a combination without its own order and limit.
bool QueryEmitter::isPlainCombination(const Query &query)
{
    return query.op && query.orderBy.empty() && !query.limit && !query.offset;
}

void QueryEmitter::orderAndLimit(const Query &query)
{
    const char *separator = " ORDER BY ";
    for (const OrderItem &item : query.orderBy) {
        m_text.text(separator);
        const SqlType &type = item.expression ? item.expression->type : query.columns[item.output].info.type;
        if (item.expression)
            m_expressions.write(*item.expression);
        else
            m_text.text(std::to_string(item.output + 1));
        m_text.text(collationOf(type) + (item.descending ? " DESC" : ""));
        separator = ", ";
    }
    if (query.limit)
        limit(query.limit);
    else if (query.offset)
        m_text.text(" LIMIT -1");
    if (query.offset) {
        m_text.text(" OFFSET ");
        m_expressions.write(*query.offset);
    }
}

} // namespace SampleServer
