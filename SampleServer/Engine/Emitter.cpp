#include "Engine/Emitter.h"
#include "Engine/Catalog.h"
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
    return left.call && right.call && sameCall(*left.call, *right.call);
}

namespace {

class Emitter
{
public:
    Emitted take() { return std::move(m_result); }

    void expression(const Expression &expression)
    {
        std::visit([&](const auto &node) { emit(node, expression); }, expression.node);
    }

    void query(const Query &query)
    {
        if (query.op)
            combination(query);
        else if (query.grouped)
            grouping(query);
        else
            specification(query);
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

    void emit(const Constant &node, const Expression &expression)
    {
        text("?");
        m_result.parameters.push_back({&node, expression.type, nullptr});
    }

    void emit(const Column &node, const Expression &) { text(node.source + '.' + node.name); }

    void emit(const Call &node, const Expression &)
    {
        text("tsql(?");
        m_result.parameters.push_back({nullptr, {}, &node});
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

    void emitSource(const JoinedSources &join, const std::string &)
    {
        static constexpr const char *kinds[] = {" JOIN ", " LEFT JOIN ", " RIGHT JOIN ", " FULL JOIN ",
                                                " JOIN "};
        source(*join.left, false);
        text(kinds[static_cast<int>(join.kind)]);
        source(*join.right, true);
        if (join.condition) {
            text(" ON ");
            expression(*join.condition);
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
            text(", ");
            expression(*query.aggregates[i].argument);
            text(" AS x" + std::to_string(i));
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
             collationOf(aggregate.argument->type) + ") AS a" + place);
    }

    void combination(const Query &query)
    {
        static constexpr const char *operators[] = {" UNION ", " UNION ALL ", " EXCEPT ", " INTERSECT "};
        text("SELECT ");
        const char *separator = "";
        for (std::size_t i = 0; i < query.columns.size(); ++i) {
            const std::string name = 'c' + std::to_string(i + 1);
            text(separator + name + collationOf(query.columns[i].info.type) + " AS " + name);
            separator = ", ";
        }
        text(" FROM (");
        this->query(*query.left);
        text(std::string(")") + operators[static_cast<int>(*query.op)] + "SELECT * FROM (");
        this->query(*query.right);
        text(")");
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
};

} // namespace

Emitted emitQuery(const Query &query)
{
    Emitter emitter;
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
