#include "Engine/Bind/Binder.h"
#include "Engine/Bind/TypeRules.h"
#include "Engine/Emit/Emitter.h"
#include "Engine/Errors.h"
#include "Engine/Functions/XmlRows.h"
#include "Engine/ScopedValue.h"
#include "Types/Collation.h"
#include "Types/TypeTraits.h"

#include <algorithm>

namespace SampleServer {

using namespace Bound;

namespace {

/// Makes a scope the innermost one as long as this object exists.
class ScopeEntry
{
public:
    ScopeEntry(Binder &binder, Scope &scope)
        : m_binder(binder)
    {
        m_binder.enterScope(scope);
    }
    ~ScopeEntry() { m_binder.leaveScope(); }
    ScopeEntry(const ScopeEntry &) = delete;
    ScopeEntry &operator=(const ScopeEntry &) = delete;

private:
    Binder &m_binder;
};

bool isGrouped(const Ast::QuerySpecification &specification, const Ast::Select *whole)
{
    if (!specification.groupBy.empty() || specification.having)
        return true;
    const auto &items = specification.items;
    const bool inItems = std::any_of(items.begin(), items.end(), [](const Ast::SelectItem &item) {
        return item.expression && containsAggregate(*item.expression);
    });
    return inItems ||
           (whole && std::any_of(whole->orderBy.begin(), whole->orderBy.end(),
                                 [](const auto &item) { return containsAggregate(*item.expression); }));
}

const ScopeColumn *sourceColumn(const Ast::Expression &expression, const Scope &scope,
                                const Expression &bound)
{
    if (!std::holds_alternative<Ast::ColumnReference>(expression.node))
        return nullptr;
    const auto *column = std::get_if<Column>(&bound.node);
    if (!column)
        return nullptr;
    for (const ScopeSource &source : scope.sources)
        for (const ScopeColumn &candidate : source.columns)
            if (candidate.source == column->source && candidate.column == column->name)
                return &candidate;
    return nullptr;
}

bool isSortable(const SqlType &type)
{
    return !isLegacyLob(type.id) && type.id != TypeId::Xml;
}

void requireSortable(const SqlType &type)
{
    if (type.id == TypeId::Xml)
        throw EngineError(305, 16, 1,
                          "The xml data type cannot be compared or sorted, except when using the IS NULL "
                          "operator.",
                          ErrorEffect::EndsBatch);
    if (!isSortable(type))
        throw EngineError(
            306, 16, 2,
            "The text, ntext, and image data types cannot be compared or sorted, except when using IS "
            "NULL or LIKE operator.",
            ErrorEffect::EndsBatch);
}

void requireColumnsBelowLimit(const Query &query)
{
    constexpr std::size_t MostColumns = 4096;
    if (query.columns.size() > MostColumns)
        throw EngineError(
            1056, 15, 1,
            "The number of elements in the select list exceeds the maximum allowed number of 4096 "
            "elements.",
            ErrorEffect::EndsBatch);
}

/// Combines the columns of two queries.
std::vector<OutputColumn> combinedColumns(const std::vector<OutputColumn> &left,
                                          const std::vector<OutputColumn> &right, Ast::SetOperator op)
{
    if (left.size() != right.size())
        throw EngineError(
            205, 16, 1,
            "All queries combined using a UNION, INTERSECT or EXCEPT operator must have an equal number "
            "of expressions in their target lists.",
            ErrorEffect::EndsBatch);
    std::vector<OutputColumn> columns;
    for (std::size_t i = 0; i < left.size(); ++i) {
        const OutputColumn &l = left[i], &r = right[i];
        OutputColumn column;
        column.info.name = l.info.name;
        column.info.nullable = l.info.nullable || r.info.nullable;
        if (l.expression && isNullLiteral(*l.expression))
            column.info.type = r.info.type;
        else if (r.expression && isNullLiteral(*r.expression))
            column.info.type = l.info.type;
        else
            column.info.type = commonType(l.info.type, r.info.type);
        if (op != Ast::SetOperator::UnionAll && !isSortable(column.info.type))
            throw EngineError(5335, 16, 1,
                              std::string("The data type ") + baseTypeName(column.info.type.id) +
                                  " cannot be used as an operand to the UNION, INTERSECT or EXCEPT operators "
                                  "because it is not comparable.",
                              ErrorEffect::EndsBatch);
        columns.push_back(std::move(column));
    }
    return columns;
}

/// Whether every value of one type exists in the other, and distinct values stay distinct.
bool holdsAll(const SqlType &wide, const SqlType &narrow)
{
    if (wide == narrow)
        return true;
    if (isInteger(wide.id) && isInteger(narrow.id))
        return precedence(wide.id) > precedence(narrow.id);
    if (wide.id != narrow.id)
        return false;
    if (wide.id == TypeId::Decimal)
        return wide.scale >= narrow.scale && wide.precision - wide.scale >= narrow.precision - narrow.scale;
    if (isText(wide.id) || isBinary(wide.id))
        return !isFixedLength(wide.id) && (wide.length == SqlType::Max || wide.length >= narrow.length);
    return wide.scale >= narrow.scale;
}

/// Gives columns the types that they will be converted to, if no information is lost.
void widen(std::vector<OutputColumn> &columns, const std::vector<OutputColumn> &next)
{
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (holdsAll(next[i].info.type, columns[i].info.type))
            columns[i].info.type = next[i].info.type;
}

std::vector<SqlType> typesOf(const std::vector<OutputColumn> &columns)
{
    std::vector<SqlType> types;
    for (const OutputColumn &column : columns)
        types.push_back(column.info.type);
    return types;
}

} // namespace

QueryPtr Binder::bindSelect(const Ast::Select &select)
{
    return bindWhole(select);
}

QueryPtr Binder::bindWhole(const Ast::Select &select)
{
    const CommonTableScope common{select.with, select.with.size(), m_common};
    const ScopedValue<const CommonTableScope *> visible(m_common, select.with.empty() ? m_common : &common);
    const ScopedValue<int> recursion(m_maxRecursion, select.maxRecursion.value_or(m_maxRecursion));
    auto query = bindQuery(*select.query, &select);
    return select.forXml ? xmlQuery(std::move(query), *select.forXml) : query;
}

/// FOR XML: one row with one column.
QueryPtr Binder::xmlQuery(QueryPtr rows, const Ast::ForXml &options)
{
    auto shape = std::make_shared<XmlShape>();
    shape->rowTag = options.rowTag;
    shape->root = options.root;
    shape->attributes = options.attributes;
    for (const OutputColumn &column : rows->columns)
        shape->columns.push_back({column.info.name, column.info.type});
    auto result = std::make_shared<Query>();
    OutputColumn column;
    column.info.name = options.typed ? std::string() : "XML_F52E2B61-18A1-11d1-B105-00805F49916B";
    column.info.type =
        options.typed ? SqlType{TypeId::Xml, 0, 0, 0} : SqlType{TypeId::NVarChar, SqlType::Max, 0, 0};
    column.expression = std::make_shared<const Expression>(
        Expression{column.info.type, true, XmlText{std::move(rows), std::move(shape)}});
    result->columns.push_back(std::move(column));
    return result;
}

QueryPtr Binder::bindSubquery(const Ast::Select &select, bool allowsManyColumns)
{
    const bool limited =
        select.offset || select.forXml || (!select.query->op && select.query->specification.top);
    if (!select.orderBy.empty() && !limited)
        throw EngineError(
            1033, 15, 1,
            "The ORDER BY clause is invalid in views, inline functions, derived tables, subqueries, and "
            "common table expressions, unless TOP, OFFSET or FOR XML is also specified.",
            ErrorEffect::EndsBatch);
    auto query = bindWhole(select);
    if (!allowsManyColumns && query->columns.size() != 1)
        throw EngineError(
            116, 16, 1,
            "Only one expression can be specified in the select list when the subquery is not introduced "
            "with EXISTS.",
            ErrorEffect::EndsBatch);
    return query;
}

QueryPtr Binder::bindQuery(const Ast::Query &query, const Ast::Select *whole)
{
    return query.op ? bindCombination(query, whole) : bindSpecification(query.specification, whole);
}

QueryPtr Binder::bindSpecification(const Ast::QuerySpecification &specification, const Ast::Select *whole)
{
    Scope scope;
    const ScopeEntry entry(*this, scope);
    auto query = std::make_shared<Query>();
    query->from = bindFrom(specification.from, scope);
    if (specification.where)
        query->where = bind(*specification.where);
    Grouping grouping;
    query->grouped = isGrouped(specification, whole);
    if (query->grouped)
        bindGrouping(specification, scope, grouping);
    query->distinct = specification.distinct;
    scope.allowsWindows = true;
    bindItems(specification, scope, *query);
    if (specification.having) {
        const ScopedValue<bool> noWindows(scope.allowsWindows, false);
        const ScopedValue<std::int32_t> clause(scope.notGrouped, 8121);
        query->having = bind(*specification.having);
    }
    if (whole) {
        const ScopedValue<std::int32_t> clause(scope.notGrouped, 8127);
        bindOrder(*whole, *query, false);
    }
    scope.grouping = nullptr;
    scope.allowsWindows = false;
    bindLimit(specification, whole, *query);
    query->groupAlias = grouping.alias;
    query->groupKeys = std::move(grouping.keys);
    query->aggregates = std::move(grouping.aggregates);
    return query;
}

void Binder::bindGrouping(const Ast::QuerySpecification &specification, Scope &scope, Grouping &grouping)
{
    for (const auto &key : specification.groupBy) {
        if (containsAggregate(*key) || containsSubquery(*key))
            throw EngineError(
                144, 15, 1,
                "Cannot use an aggregate or a subquery in an expression used for the group by list of a "
                "GROUP BY clause.",
                ErrorEffect::EndsBatch);
        auto bound = bind(*key);
        if (constantValue(*bound))
            throw EngineError(
                164, 15, 1,
                "Each GROUP BY expression must contain at least one column that is not an outer "
                "reference.",
                ErrorEffect::EndsBatch);
        requireSortable(bound->type);
        grouping.keys.push_back(std::move(bound));
    }
    grouping.alias = newAlias();
    scope.grouping = &grouping;
}

void Binder::bindItems(const Ast::QuerySpecification &specification, Scope &scope, Query &query)
{
    for (const Ast::SelectItem &item : specification.items) {
        requireColumnsBelowLimit(query);
        if (item.star) {
            bindStar(*item.star, scope, query);
            continue;
        }
        OutputColumn column;
        column.expression = bind(*item.expression);
        column.info.type = column.expression->type;
        column.info.nullable = column.expression->nullable;
        const ScopeColumn *source = sourceColumn(*item.expression, scope, *column.expression);
        if (source)
            column.info = source->info;
        if (!item.alias.empty())
            column.info.name = item.alias;
        else if (const auto *reference = std::get_if<Ast::ColumnReference>(&item.expression->node))
            column.info.name = reference->name.object();
        if (query.distinct && !isSortable(column.info.type))
            throw EngineError(421, 16, 1,
                              std::string("The ") + baseTypeName(column.info.type.id) +
                                  " data type cannot be selected as DISTINCT because it is not comparable.",
                              ErrorEffect::EndsBatch);
        query.columns.push_back(std::move(column));
    }
    requireColumnsBelowLimit(query);
}

void Binder::bindStar(const Ast::ObjectName &qualifier, Scope &scope, Query &query)
{
    bool found = false;
    for (const ScopeSource &source : scope.sources) {
        Ast::ObjectName probe = qualifier;
        probe.parts.emplace_back();
        const auto differs = [&probe](std::size_t fromEnd, const std::string &actual) {
            const std::string part = probe.qualifier(fromEnd);
            return !part.empty() && foldedName(part) != foldedName(actual);
        };
        if (!qualifier.parts.empty() &&
            (differs(1, source.name) || differs(2, source.schema) || differs(3, source.database)))
            continue;
        found = true;
        for (const ScopeColumn &column : source.columns) {
            ExpressionPtr expression = columnExpression(column);
            if (scope.grouping) {
                expression = groupKey(*scope.grouping, expression);
                if (!expression)
                    throw EngineError(
                        8120, 16, 1,
                        "Column '" + source.name + '.' + column.info.name +
                            "' is invalid in the select list because it is not contained in either an "
                            "aggregate function or the GROUP BY clause.",
                        ErrorEffect::EndsBatch);
            }
            query.columns.push_back({column.info, std::move(expression)});
        }
    }
    if (found)
        return;
    if (!qualifier.parts.empty())
        throw EngineError(107, 15, 1,
                          "The column prefix '" + qualifier.toString() +
                              "' does not match with a table name or alias name used in the query.",
                          ErrorEffect::EndsBatch);
    throw EngineError(263, 16, 1, "Must specify table to select from.", ErrorEffect::EndsBatch);
}

void Binder::bindOrder(const Ast::Select &whole, Query &query, bool outputOnly)
{
    for (const Ast::OrderItem &item : whole.orderBy) {
        query.orderBy.push_back(bindOrderItem(item, query, outputOnly));
        const OrderItem &bound = query.orderBy.back();
        requireSortable(bound.expression ? bound.expression->type : query.columns[bound.output].info.type);
    }
}

OrderItem Binder::bindOrderItem(const Ast::OrderItem &item, const Query &query, bool outputOnly)
{
    if (const auto *literal = std::get_if<Ast::Literal>(&item.expression->node)) {
        const auto *position = std::get_if<std::int64_t>(&literal->value);
        if (!position)
            throw EngineError(408, 16, 1,
                              "A constant expression was encountered in the ORDER BY list, position 1.",
                              ErrorEffect::EndsBatch);
        if (*position < 1 || *position > static_cast<std::int64_t>(query.columns.size()))
            throw EngineError(108, 16, 1,
                              "The ORDER BY position number " + std::to_string(*position) +
                                  " is out of range of the number of items in the select list.",
                              ErrorEffect::EndsBatch);
        return {nullptr, static_cast<std::size_t>(*position - 1), item.descending};
    }
    if (const auto *reference = std::get_if<Ast::ColumnReference>(&item.expression->node);
        reference && reference->name.parts.size() == 1) {
        const std::string name = foldedName(reference->name.object());
        for (std::size_t i = 0; i < query.columns.size(); ++i)
            if (foldedName(query.columns[i].info.name) == name)
                return {nullptr, i, item.descending};
    }
    if (outputOnly)
        throw EngineError(
            104, 16, 1,
            "ORDER BY items must appear in the select list if the statement contains a UNION, INTERSECT "
            "or EXCEPT operator.",
            ErrorEffect::EndsBatch);
    auto bound = bind(*item.expression);
    const Emitted wanted = emitExpression(*bound);
    for (std::size_t i = 0; i < query.columns.size(); ++i)
        if (emitExpression(*query.columns[i].expression) == wanted)
            return {nullptr, i, item.descending};
    if (query.distinct)
        throw EngineError(145, 15, 1,
                          "ORDER BY items must appear in the select list if SELECT DISTINCT is specified.",
                          ErrorEffect::EndsBatch);
    return {std::move(bound), 0, item.descending};
}

void Binder::bindLimit(const Ast::QuerySpecification &specification, const Ast::Select *whole, Query &query)
{
    constexpr SqlType bigint{TypeId::BigInt, 0, 0, 0};
    const auto count = [&](const Ast::Expression &expression, const char *clause) {
        auto bound = bindValueAs(expression, bigint);
        const Value *value = constantValue(*bound);
        if (!value)
            throw Errors::notSupported(std::string("a row count in ") + clause + " that is not constant");
        if (isNull(*value) || std::get<std::int64_t>(*value) < 0)
            throw EngineError(1060, 15, 1,
                              "The number of rows provided for a TOP or FETCH clauses row count parameter "
                              "must be an integer.",
                              ErrorEffect::EndsBatch);
        return bound;
    };
    if (const auto &top = specification.top) {
        query.withTies = top->withTies;
        query.percent = top->percent;
        const auto byWindow = [](const OrderItem &item) {
            return item.expression && std::holds_alternative<WindowCall>(item.expression->node);
        };
        if (top->withTies && std::any_of(query.orderBy.begin(), query.orderBy.end(), byWindow))
            throw Errors::notSupported("TOP WITH TIES in the order of a windowed function");
        if ((top->withTies || top->percent) && specification.distinct)
            throw Errors::notSupported("DISTINCT with TOP ... PERCENT or WITH TIES");
        if (top->withTies && query.orderBy.empty())
            throw EngineError(
                1062, 15, 1,
                "The TOP N WITH TIES clause is not allowed without a corresponding ORDER BY clause.",
                ErrorEffect::EndsBatch);
        query.limit =
            top->percent ? bindValueAs(*top->count, {TypeId::Float, 0, 0, 0}) : count(*top->count, "TOP");
    }
    if (whole && whole->offset)
        query.offset = count(*whole->offset, "OFFSET");
    if (whole && whole->fetch)
        query.limit = count(*whole->fetch, "FETCH");
}

/// Binds a op b op c as one list. Nested operands would each take a level of SQLite's parser stack, which is
/// small.
QueryPtr Binder::bindCombination(const Ast::Query &query, const Ast::Select *whole)
{
    std::vector<const Ast::Query *> steps; // from the first operator to the last
    for (const Ast::Query *step = &query; step->op; step = step->left.get())
        steps.push_back(step);
    std::reverse(steps.begin(), steps.end());
    const QueryPtr first = bindQuery(*steps.front()->left, nullptr);
    std::vector<QueryPtr> operands;
    std::vector<std::vector<OutputColumn>> columns; // after each operator
    for (const Ast::Query *step : steps) {
        operands.push_back(bindQuery(*step->right, nullptr));
        columns.push_back(combinedColumns(columns.empty() ? first->columns : columns.back(),
                                          operands.back()->columns, *step->op));
    }
    for (std::size_t i = columns.size() - 1; i-- > 0;)
        widen(columns[i], columns[i + 1]);
    QueryPtr left = first;
    std::shared_ptr<Query> result;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const std::vector<SqlType> types = typesOf(columns[i]);
        result = std::make_shared<Query>();
        result->op = steps[i]->op;
        result->left = withColumnTypes(left, types);
        result->right = withColumnTypes(operands[i], types);
        result->columns = std::move(columns[i]);
        left = result;
    }
    if (whole) {
        bindOrder(*whole, *result, true);
        bindLimit({}, whole, *result);
    }
    return result;
}

/// Converts the query's columns: constants directly, so that NULL adapts; others in an outer query, which
/// keeps the query's own order and limit.
QueryPtr Binder::withColumnTypes(const QueryPtr &query, const std::vector<SqlType> &types)
{
    auto adapted = std::make_shared<Query>(*query);
    bool differs = false;
    for (std::size_t i = 0; i < types.size(); ++i) {
        OutputColumn &column = adapted->columns[i];
        if (column.expression && constantValue(*column.expression)) {
            column.expression = converted(column.expression, types[i]);
            column.info.type = types[i];
        }
        differs = differs || column.info.type != types[i];
    }
    if (!differs)
        return adapted;
    auto outer = std::make_shared<Query>();
    const std::string alias = newAlias();
    outer->from.push_back(std::make_shared<const Source>(Source{alias, DerivedQuery{adapted}}));
    for (std::size_t i = 0; i < types.size(); ++i) {
        OutputColumn column = adapted->columns[i];
        auto reference = std::make_shared<const Expression>(
            Expression{column.info.type, column.info.nullable, Column{alias, 'c' + std::to_string(i + 1)}});
        column.expression = converted(reference, types[i]);
        column.info.type = types[i];
        outer->columns.push_back(std::move(column));
    }
    return outer;
}

} // namespace SampleServer
