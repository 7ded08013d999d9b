#include "Engine/Emit/Emitter.h"
#include "Engine/Catalog/Catalog.h"
#include "Engine/Storage/RowProvider.h"
#include "Types/TypeTraits.h"

namespace SampleServer {

using namespace Bound;

std::string collationOf(const SqlType &type)
{
    if (isText(type.id))
        return " COLLATE tsql_text";
    return type.id == TypeId::DateTimeOffset ? " COLLATE tsql_offset" : "";
}

namespace {

/// Whether two calls compute the same, given that their leaves are the same.
bool sameCall(const Call &left, const Call &right)
{
    if (left.operation != right.operation || left.arguments.size() != right.arguments.size())
        return false;
    for (std::size_t i = 0; i < left.arguments.size(); ++i) {
        const Expression &l = *left.arguments[i], &r = *right.arguments[i];
        const auto *leftCall = std::get_if<Call>(&l.node), *rightCall = std::get_if<Call>(&r.node);
        const Value *leftValue = constantValue(l), *rightValue = constantValue(r);
        if (!leftCall != !rightCall || !leftValue != !rightValue)
            return false;
        if ((leftCall && !sameCall(*leftCall, *rightCall)) || (leftValue && *leftValue != *rightValue))
            return false;
    }
    return true;
}

} // namespace

bool operator==(const EmittedParameter &left, const EmittedParameter &right)
{
    if (left.constant && right.constant)
        return left.type == right.type && left.constant->value == right.constant->value;
    if (left.call && right.call)
        return sameCall(*left.call, *right.call);
    return !left.constant && !right.constant && !left.call && !right.call &&
           left.provider == right.provider && left.shape == right.shape && left.argument == right.argument;
}

namespace {

class Emitter
{
public:
    Emitter() = default;
    Emitter(const std::set<std::string> &outside, std::vector<ExpressionPtr> &arguments)
        : m_outside(&outside)
        , m_arguments(&arguments)
    {
    }

    Emitted take() { return std::move(m_result); }

    void expression(const Expression &expression)
    {
        std::visit([&](const auto &node) { emit(node, expression); }, expression.node);
    }

    void query(const Query &query)
    {
        if (query.withTies || query.percent)
            return rankedLimit(query);
        body(query);
        orderAndLimit(query);
    }

    void selection(const std::vector<std::string> &plainColumns,
                   const std::vector<ExpressionPtr> &expressions)
    {
        text("SELECT ");
        const char *separator = "";
        for (const std::string &column : plainColumns) {
            text(separator + column);
            separator = ", ";
        }
        for (const ExpressionPtr &item : expressions) {
            text(separator);
            expression(*item);
            separator = ", ";
        }
    }

    void fromAndWhere(const std::vector<SourcePtr> &from, const ExpressionPtr &where)
    {
        const char *separator = " FROM ";
        for (const SourcePtr &item : from) {
            text(separator);
            source(*item, item != from.front());
            separator = ", ";
        }
        if (where) {
            text(" WHERE ");
            expression(*where);
        }
    }

    void limit(const ExpressionPtr &count)
    {
        if (!count)
            return;
        text(" LIMIT ");
        expression(*count);
    }

private:
    void text(const std::string &part) { m_result.sql += part; }

    void parameter(EmittedParameter parameter)
    {
        text("?");
        m_result.parameters.push_back(std::move(parameter));
    }

    void body(const Query &query)
    {
        if (query.op)
            combination(query);
        else if (query.grouped)
            grouping(query);
        else
            specification(query);
    }

    /// TOP ... WITH TIES and PERCENT: the rows get their rank, or number, and those above the limit are left
    /// out.
    void rankedLimit(const Query &query)
    {
        text("SELECT ");
        for (std::size_t i = 0; i < query.columns.size(); ++i)
            text((i == 0 ? "c" : ", c") + std::to_string(i + 1));
        text(" FROM (");
        m_rankOf = &query;
        body(query);
        text(") WHERE place <= ");
        if (query.percent) {
            text("tsql_ceiling(total * ");
            expression(*query.limit);
            text(" / 100.0)");
        } else {
            expression(*query.limit);
        }
        text(" ORDER BY place");
    }

    /// The columns that rankedLimit() filters by.
    void rank(const Query &query)
    {
        if (m_rankOf != &query)
            return;
        m_rankOf = nullptr;
        text(query.withTies ? ", rank() OVER (" : ", row_number() OVER (");
        const char *separator = "ORDER BY ";
        for (const OrderItem &item : query.orderBy) {
            text(separator);
            orderExpression(item.expression ? *item.expression : *query.columns[item.output].expression,
                            item);
            separator = ", ";
        }
        text(") AS place, count(*) OVER () AS total");
    }

    void orderExpression(const Expression &key, const OrderItem &item)
    {
        expression(key);
        text(collationOf(key.type) + (item.descending ? " DESC" : ""));
    }

    void emit(const Constant &node, const Expression &expression) { parameter({&node, expression.type}); }

    void emit(const Column &node, const Expression &expression)
    {
        if (m_outside && m_outside->contains(node.source))
            return argument(node, expression);
        text(node.source + '.' + node.name);
    }

    void argument(const Column &node, const Expression &expression)
    {
        std::size_t place = 0;
        for (; place < m_arguments->size(); ++place) {
            const auto &known = std::get<Column>((*m_arguments)[place]->node);
            if (known.source == node.source && known.name == node.name)
                break;
        }
        if (place == m_arguments->size())
            m_arguments->push_back(std::make_shared<const Expression>(expression));
        EmittedParameter result;
        result.argument = static_cast<int>(place);
        parameter(std::move(result));
    }

    void emit(const WindowCall &node, const Expression &)
    {
        text(node.function + '(');
        for (const ExpressionPtr &argument : node.arguments) {
            text(argument == node.arguments.front() ? "" : ", ");
            expression(*argument);
            text(collationOf(argument->type));
        }
        text(node.arguments.empty() && node.function == "count" ? "*) OVER (" : ") OVER (");
        const char *separator = "PARTITION BY ";
        for (const ExpressionPtr &key : node.partition) {
            text(separator);
            expression(*key);
            text(collationOf(key->type));
            separator = ", ";
        }
        separator = node.partition.empty() ? "ORDER BY " : " ORDER BY ";
        for (const OrderItem &item : node.order) {
            text(separator);
            orderExpression(*item.expression, item);
            separator = ", ";
        }
        text((node.frame.empty() ? "" : ' ' + node.frame) + ')');
    }

    void emit(const XmlText &node, const Expression &)
    {
        text("(SELECT tsql_xml(");
        EmittedParameter shape;
        shape.shape = node.shape.get();
        parameter(std::move(shape));
        for (std::size_t i = 0; i < node.query->columns.size(); ++i)
            text(", c" + std::to_string(i + 1));
        text(") FROM (");
        query(*node.query);
        text("))");
    }

    void emit(const Call &node, const Expression &)
    {
        text("tsql(");
        parameter({nullptr, {}, &node});
        leaves(node);
        text(")");
    }

    void leaves(const Call &call)
    {
        for (const ExpressionPtr &argument : call.arguments) {
            if (isLeaf(call, *argument)) {
                text(", ");
                expression(*argument);
            } else if (const auto *inner = std::get_if<Call>(&argument->node)) {
                leaves(*inner);
            }
        }
    }

    void emit(const Comparison &node, const Expression &)
    {
        static constexpr const char *operators[] = {" = ", " <> ", " < ", " <= ", " > ", " >= "};
        text("(");
        expression(*node.left);
        text(collationOf(node.left->type) + operators[static_cast<int>(node.op)]);
        expression(*node.right);
        text(")");
    }

    void emit(const Logical &node, const Expression &)
    {
        text("(");
        operands(node);
        text(")");
    }

    /// a AND b AND c without parentheses between, which SQLite's parser would have to stack up.
    void operands(const Logical &node)
    {
        const auto *left = std::get_if<Logical>(&node.left->node);
        if (left && left->isAnd == node.isAnd)
            operands(*left);
        else
            expression(*node.left);
        text(node.isAnd ? " AND " : " OR ");
        expression(*node.right);
    }

    void emit(const Not &node, const Expression &)
    {
        text("(NOT ");
        expression(*node.operand);
        text(")");
    }

    void emit(const IsNull &node, const Expression &)
    {
        text("(");
        expression(*node.operand);
        text(node.negated ? " IS NOT NULL)" : " IS NULL)");
    }

    void emit(const In &node, const Expression &)
    {
        text("(");
        expression(*node.operand);
        text(collationOf(node.operand->type) + " IN (");
        list(node.list);
        text("))");
    }

    void emit(const InQuery &node, const Expression &)
    {
        text("(");
        expression(*node.operand);
        text(collationOf(node.operand->type) + " IN (");
        query(*node.query);
        text("))");
    }

    void emit(const Case &node, const Expression &)
    {
        text("CASE");
        for (const auto &[when, then] : node.branches) {
            text(" WHEN ");
            expression(*when);
            text(" THEN ");
            expression(*then);
        }
        text(" ELSE ");
        expression(*node.otherwise);
        text(" END");
    }

    void emit(const Coalesce &node, const Expression &)
    {
        text("coalesce(");
        list(node.arguments);
        text(")");
    }

    void emit(const Exists &node, const Expression &)
    {
        text("EXISTS (");
        query(*node.query);
        text(")");
    }

    void emit(const ScalarQuery &node, const Expression &)
    {
        text("(SELECT tsql_single(c1) FROM (");
        query(*node.query);
        text("))");
    }

    void list(const std::vector<ExpressionPtr> &items)
    {
        const char *separator = "";
        for (const ExpressionPtr &item : items) {
            text(separator);
            expression(*item);
            separator = ", ";
        }
    }

    void source(const Source &source, bool parenthesize)
    {
        const auto *joined = std::get_if<JoinedSources>(&source.node);
        if (joined && parenthesize)
            text("(");
        std::visit([&](const auto &node) { emitSource(node, source.alias); }, source.node);
        if (joined && parenthesize)
            text(")");
    }

    void emitSource(const TableScan &scan, const std::string &alias)
    {
        text(scan.schema + '.' + scan.table->physicalName() + " AS " + alias);
    }

    void emitSource(const DerivedQuery &derived, const std::string &alias)
    {
        text("(");
        query(*derived.query);
        text(") AS " + alias);
    }

    void emitSource(const ValueRows &values, const std::string &alias)
    {
        text("(VALUES ");
        const char *separator = "(";
        for (const auto &row : values.rows) {
            text(separator);
            list(row);
            separator = "), (";
        }
        text(")) AS " + alias);
    }

    void emitSource(const GeneratedRows &rows, const std::string &alias)
    {
        text("generate_rows(");
        expression(*rows.count);
        text(") AS " + alias);
    }

    void emitSource(const ProvidedRows &rows, const std::string &alias)
    {
        text(rows.provider->isIndexed() ? "indexed_rows(" : "rows(");
        EmittedParameter provider;
        provider.provider = rows.provider.get();
        parameter(std::move(provider));
        for (const ExpressionPtr &argument : rows.arguments) {
            text(", ");
            expression(*argument);
        }
        text(") AS " + alias);
    }

    void emitSource(const RecursiveRows &rows, const std::string &alias)
    {
        std::string names;
        for (std::size_t i = 0; i < rows.anchor->columns.size(); ++i)
            names += 'c' + std::to_string(i + 1) + ", ";
        text("(WITH RECURSIVE " + rows.name + '(' + names + "depth) AS (SELECT " + names + "0 FROM (");
        query(*rows.anchor);
        text(")");
        for (const QueryPtr &step : rows.steps) {
            text(" UNION ALL ");
            query(*step);
        }
        text(") SELECT * FROM " + rows.name + ") AS " + alias);
    }

    void emitSource(const RecursiveReference &reference, const std::string &alias)
    {
        text(reference.name + " AS " + alias);
    }

    void emitSource(const JoinedSources &join, const std::string &)
    {
        static constexpr const char *kinds[] = {" JOIN ", " LEFT JOIN ", " RIGHT JOIN ", " FULL JOIN ",
                                                " JOIN ", " JOIN ",      " LEFT JOIN "};
        source(*join.left, false);
        text(kinds[static_cast<int>(join.kind)]);
        source(*join.right, true);
        if (join.condition) {
            text(" ON ");
            expression(*join.condition);
        } else if (join.kind == Ast::JoinKind::OuterApply) {
            text(" ON 1");
        }
    }

    void outputs(const Query &query)
    {
        const char *separator = "";
        for (std::size_t i = 0; i < query.columns.size(); ++i) {
            text(separator);
            expression(*query.columns[i].expression);
            if (query.distinct)
                text(collationOf(query.columns[i].info.type));
            text(" AS c" + std::to_string(i + 1));
            separator = ", ";
        }
        rank(query);
    }

    void specification(const Query &query)
    {
        text(query.distinct ? "SELECT DISTINCT " : "SELECT ");
        outputs(query);
        fromAndWhere(query.from, query.where);
    }

    /// Three layers: what the groups need of each row, the groups, and what is made of them.
    void grouping(const Query &query)
    {
        text(query.distinct ? "SELECT DISTINCT " : "SELECT ");
        outputs(query);
        text(" FROM (SELECT ");
        const char *separator = "";
        for (std::size_t i = 0; i < query.groupKeys.size(); ++i) {
            text(separator + ('g' + std::to_string(i)));
            separator = ", ";
        }
        for (std::size_t i = 0; i < query.aggregates.size(); ++i) {
            text(separator);
            aggregate(query.aggregates[i], i);
            separator = ", ";
        }
        text(query.groupKeys.empty() && query.aggregates.empty() ? "count(*) AS n FROM (SELECT "
                                                                 : " FROM (SELECT ");
        groupInputs(query);
        fromAndWhere(query.from, query.where);
        text(")");
        separator = " GROUP BY ";
        for (std::size_t i = 0; i < query.groupKeys.size(); ++i) {
            text(separator + ('g' + std::to_string(i)) + collationOf(query.groupKeys[i]->type));
            separator = ", ";
        }
        text(") AS " + query.groupAlias);
        if (query.having) {
            text(" WHERE ");
            expression(*query.having);
        }
    }

    void groupInputs(const Query &query)
    {
        text("1");
        for (std::size_t i = 0; i < query.groupKeys.size(); ++i) {
            text(", ");
            expression(*query.groupKeys[i]);
            text(" AS g" + std::to_string(i));
        }
        for (std::size_t i = 0; i < query.aggregates.size(); ++i) {
            if (!query.aggregates[i].argument)
                continue;
            const std::string place = std::to_string(i);
            text(", ");
            expression(*query.aggregates[i].argument);
            text(" AS x" + place);
            for (std::size_t k = 0; k < query.aggregates[i].more.size(); ++k) {
                text(", ");
                expression(*query.aggregates[i].more[k]);
                text(" AS x" + place + '_' + std::to_string(k));
            }
        }
    }

    void aggregate(const Aggregate &aggregate, std::size_t number)
    {
        const std::string place = std::to_string(number);
        if (!aggregate.argument) {
            text("count(*) AS a" + place);
            return;
        }
        text(aggregate.function + '(' + (aggregate.distinct ? "DISTINCT " : "") + 'x' + place +
             collationOf(aggregate.argument->type));
        for (std::size_t i = 0; i < aggregate.more.size(); ++i)
            text(", x" + place + '_' + std::to_string(i));
        text(") AS a" + place);
    }

    /// a op b op c in one list: SQLite takes its operators from left to right, too.
    void combination(const Query &query)
    {
        static constexpr const char *operators[] = {" UNION ", " UNION ALL ", " EXCEPT ", " INTERSECT "};
        std::vector<const Query *> steps{&query}; // from the last operator to the first
        while (isPlainCombination(*steps.back()->left))
            steps.push_back(steps.back()->left.get());
        text("SELECT ");
        const char *separator = "";
        for (std::size_t i = 0; i < query.columns.size(); ++i) {
            const std::string name = 'c' + std::to_string(i + 1);
            text(separator + name + collationOf(query.columns[i].info.type) + " AS " + name);
            separator = ", ";
        }
        text(" FROM (");
        this->query(*steps.back()->left);
        text(")");
        for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
            text(operators[static_cast<int>(*(*step)->op)] + std::string("SELECT * FROM ("));
            this->query(*(*step)->right);
            text(")");
        }
    }

    /// Whether the query is a combination that has neither order nor limit of its own.
    static bool isPlainCombination(const Query &query)
    {
        return query.op && query.orderBy.empty() && !query.limit && !query.offset;
    }

    void orderAndLimit(const Query &query)
    {
        const char *separator = " ORDER BY ";
        for (const OrderItem &item : query.orderBy) {
            text(separator);
            const SqlType &type =
                item.expression ? item.expression->type : query.columns[item.output].info.type;
            if (item.expression)
                expression(*item.expression);
            else
                text(std::to_string(item.output + 1));
            text(collationOf(type) + (item.descending ? " DESC" : ""));
            separator = ", ";
        }
        if (query.limit)
            limit(query.limit);
        else if (query.offset)
            text(" LIMIT -1");
        if (query.offset) {
            text(" OFFSET ");
            expression(*query.offset);
        }
    }

    Emitted m_result;
    const std::set<std::string> *m_outside = nullptr;
    std::vector<ExpressionPtr> *m_arguments = nullptr;
    const Query *m_rankOf = nullptr; ///< whose rows get their place in the order
};

} // namespace

Emitted emitQuery(const Query &query)
{
    Emitter emitter;
    emitter.query(query);
    return emitter.take();
}

Emitted emitLateral(const Query &query, const std::set<std::string> &outside,
                    std::vector<ExpressionPtr> &arguments)
{
    Emitter emitter(outside, arguments);
    emitter.query(query);
    return emitter.take();
}

Emitted emitExpression(const Expression &expression)
{
    Emitter emitter;
    emitter.expression(expression);
    return emitter.take();
}

Emitted emitSelection(const std::vector<std::string> &plainColumns,
                      const std::vector<ExpressionPtr> &expressions, const std::vector<SourcePtr> &from,
                      const ExpressionPtr &where, const ExpressionPtr &limit)
{
    Emitter emitter;
    emitter.selection(plainColumns, expressions);
    emitter.fromAndWhere(from, where);
    emitter.limit(limit);
    return emitter.take();
}

} // namespace SampleServer
