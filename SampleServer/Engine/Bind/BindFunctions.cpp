#include "Engine/Bind/Binder.h"
#include "Engine/Bind/TypeRules.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Functions.h"
#include "Engine/ScopedValue.h"
#include "Types/Collation.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <algorithm>

namespace SampleServer {

using namespace Bound;

namespace {

bool isAggregateName(const Ast::ObjectName &name)
{
    static constexpr std::string_view names[] = {"AVG",    "COUNT", "COUNT_BIG", "MAX",  "MIN",       "STDEV",
                                                 "STDEVP", "SUM",   "VAR",       "VARP", "STRING_AGG"};
    if (name.parts.size() != 1)
        return false;
    const std::string upper = asciiUpper(name.object());
    return std::find(std::begin(names), std::end(names), upper) != std::end(names);
}

/// Searches the parts of an expression for aggregates or subqueries.
template <bool subqueries>
struct PartFinder
{
    bool operator()(const Ast::ExpressionPtr &part) const { return part && std::visit(*this, part->node); }
    template <typename... Parts>
    bool any(const Parts &...parts) const
    {
        return ((*this)(parts) || ...);
    }
    bool all(const std::vector<Ast::ExpressionPtr> &parts) const
    {
        return std::any_of(parts.begin(), parts.end(), *this);
    }

    bool operator()(const Ast::Unary &n) const { return any(n.operand); }
    bool operator()(const Ast::Arithmetic &n) const { return any(n.left, n.right); }
    bool operator()(const Ast::Bitwise &n) const { return any(n.left, n.right); }
    bool operator()(const Ast::Comparison &n) const { return any(n.left, n.right); }
    bool operator()(const Ast::QuantifiedComparison &n) const { return subqueries || any(n.left); }
    bool operator()(const Ast::Logical &n) const { return any(n.left, n.right); }
    bool operator()(const Ast::Not &n) const { return any(n.operand); }
    bool operator()(const Ast::IsNull &n) const { return any(n.operand); }
    bool operator()(const Ast::Between &n) const { return any(n.operand, n.low, n.high); }
    bool operator()(const Ast::InList &n) const { return any(n.operand) || all(n.list); }
    bool operator()(const Ast::InQuery &n) const { return subqueries || any(n.operand); }
    bool operator()(const Ast::ScalarQuery &) const { return subqueries; }
    bool operator()(const Ast::Exists &) const { return subqueries; }
    bool operator()(const Ast::Like &n) const { return any(n.operand, n.pattern); }
    bool operator()(const Ast::Cast &n) const { return any(n.operand, n.style); }
    bool operator()(const Ast::FunctionCall &n) const
    {
        if (!n.over)
            return (!subqueries && isAggregateName(n.name)) || all(n.arguments);
        return all(n.arguments) || all(n.over->partition) ||
               std::any_of(n.over->order.begin(), n.over->order.end(),
                           [this](const auto &item) { return this->any(item.expression); });
    }
    bool operator()(const Ast::MethodCall &n) const { return any(n.operand); }
    bool operator()(const Ast::Case &n) const
    {
        return any(n.input, n.otherwise) ||
               std::any_of(n.branches.begin(), n.branches.end(),
                           [this](const auto &b) { return this->any(b.when, b.then); });
    }
    template <typename Other>
    bool operator()(const Other &) const
    {
        return false;
    }
};

} // namespace

std::string Functions::sumFunction(const SqlType &result)
{
    switch (result.id) {
    case TypeId::Int:
        return "tsql_sum_int";
    case TypeId::BigInt:
        return "tsql_sum_bigint";
    case TypeId::Money:
        return "tsql_sum_money";
    case TypeId::Float:
        return "tsql_sum_float";
    default:
        return "tsql_sum_decimal";
    }
}

bool containsAggregate(const Ast::Expression &expression)
{
    return std::visit(PartFinder<false>(), expression.node);
}

bool containsSubquery(const Ast::Expression &expression)
{
    return std::visit(PartFinder<true>(), expression.node);
}

ExpressionPtr Binder::addAggregate(Grouping &grouping, Aggregate aggregate, const SqlType &type)
{
    grouping.aggregates.push_back(std::move(aggregate));
    const std::string name = 'a' + std::to_string(grouping.aggregates.size() - 1);
    return std::make_shared<const Expression>(Expression{type, true, Column{grouping.alias, name}});
}

ExpressionPtr Binder::average(ExpressionPtr argument, bool distinct, Grouping &grouping)
{
    SqlType sum = sumType(argument->type, "AVG");
    if (sum.id == TypeId::Int) // summed without overflow, averaged as int
        sum = BigIntType;
    Operation operation;
    operation.function = Functions::average;
    operation.result = averageType(argument->type);
    auto total = addAggregate(grouping, {Functions::sumFunction(sum), argument, distinct}, sum);
    auto count = addAggregate(grouping, {"count", argument, distinct}, BigIntType);
    return call(std::move(operation), {std::move(total), std::move(count)});
}

ExpressionPtr Binder::aggregate(const Ast::FunctionCall &node, const std::string &name)
{
    Grouping *grouping = m_scope ? m_scope->grouping : nullptr;
    if (!grouping)
        throw EngineError(
            147, 15, 1,
            "An aggregate may not appear in the WHERE clause unless it is in a subquery contained in a "
            "HAVING clause or a select list, and the column being aggregated is an outer reference.",
            ErrorEffect::EndsBatch);
    const bool isCount = name == "COUNT" || name == "COUNT_BIG";
    const SqlType countType = name == "COUNT" ? IntType : BigIntType;
    if (node.star) {
        if (!isCount)
            throw Errors::syntaxNear("*");
        Expression count = *addAggregate(*grouping, {"count", nullptr, false}, countType);
        count.nullable = false;
        return std::make_shared<const Expression>(std::move(count));
    }
    if (name == "STRING_AGG")
        return stringAggregate(node, *grouping);
    if (node.arguments.size() != 1)
        throw Errors::argumentCount(toLower(name), 1);
    if (containsAggregate(*node.arguments[0]) || containsSubquery(*node.arguments[0]))
        throw EngineError(
            130, 16, 1,
            "Cannot perform an aggregate function on an expression containing an aggregate or a "
            "subquery.",
            ErrorEffect::EndsBatch);
    ExpressionPtr argument = [&] {
        // The argument is evaluated on the rows, not the groups.
        const ScopedValue<Grouping *> ungrouped(m_scope->grouping, nullptr);
        return bind(*node.arguments[0]);
    }();
    if (isCount) {
        if (isLegacyLob(argument->type.id))
            throw Errors::invalidOperand(messageTypeName(argument->type.id), "count");
        Expression count = *addAggregate(*grouping, {"count", std::move(argument), node.distinct}, countType);
        count.nullable = false;
        return std::make_shared<const Expression>(std::move(count));
    }
    const SqlType type = argument->type;
    if (name == "SUM") {
        const SqlType result = sumType(type, name);
        return addAggregate(*grouping, {Functions::sumFunction(result), std::move(argument), node.distinct},
                            result);
    }
    if (name == "AVG")
        return average(std::move(argument), node.distinct, *grouping);
    if (name != "MIN" && name != "MAX") // STDEV, STDEVP, VAR, VARP
        return addAggregate(
            *grouping, {"tsql_" + toLower(name), converted(argument, FloatType), node.distinct}, FloatType);
    if (type.id == TypeId::Bit || isLegacyLob(type.id) || type.id == TypeId::Xml)
        throw Errors::invalidOperand(messageTypeName(type.id), toLower(name));
    return addAggregate(*grouping, {toLower(name), std::move(argument), false}, type);
}

/// STRING_AGG(text, separator) WITHIN GROUP (ORDER BY ...)
ExpressionPtr Binder::stringAggregate(const Ast::FunctionCall &node, Grouping &grouping)
{
    if (node.arguments.size() != 2)
        throw Errors::argumentCount("string_agg", 2);
    const ScopedValue<Grouping *> ungrouped(m_scope->grouping, nullptr);
    auto text = bind(*node.arguments[0]);
    if (!isText(text->type.id))
        text = converted(text, {TypeId::NVarChar, 4000, 0, 0});
    SqlType type = text->type;
    type.id = isUnicodeText(type.id) ? TypeId::NVarChar : TypeId::VarChar;
    type.length = type.length == SqlType::Max ? SqlType::Max : longestOrdinaryLength(type.id);
    Aggregate aggregate{"tsql_string_agg", std::move(text), false};
    aggregate.more.push_back(bindValueAs(*node.arguments[1], {TypeId::NVarChar, 4000, 0, 0}));
    for (const auto &item : node.withinGroup) {
        aggregate.more.push_back(bind(*item.expression));
        aggregate.more.push_back(constant(IntType, std::int64_t{item.descending}));
    }
    return addAggregate(grouping, std::move(aggregate), type);
}

/// Builds a CASE from bound conditions and values.
ExpressionPtr Binder::choice(std::vector<std::pair<ExpressionPtr, ExpressionPtr>> branches,
                             ExpressionPtr otherwise)
{
    std::vector<ExpressionPtr> results;
    for (const auto &branch : branches)
        results.push_back(branch.second);
    results.push_back(std::move(otherwise));
    if (std::all_of(results.begin(), results.end(), [](const auto &r) { return isNullLiteral(*r); }))
        throw EngineError(8133, 16, 1,
                          "At least one of the result expressions in a CASE specification must be an "
                          "expression other than the NULL constant.",
                          ErrorEffect::EndsBatch);
    const bool nullable =
        std::any_of(results.begin(), results.end(), [](const auto &r) { return r->nullable; });
    const SqlType type = unify(results);
    Case node;
    for (std::size_t i = 0; i < branches.size(); ++i) {
        if (const Value *known = constantValue(*branches[i].first)) {
            if (isNull(*known) || std::get<std::int64_t>(*known) == 0)
                continue; // never taken
            results.back() = results[i];
            break;
        }
        node.branches.emplace_back(branches[i].first, results[i]);
    }
    if (node.branches.empty()) {
        Expression result = *results.back();
        result.nullable = nullable; // the type does not depend on which branch is taken
        return std::make_shared<const Expression>(std::move(result));
    }
    node.otherwise = results.back();
    return std::make_shared<const Expression>(Expression{type, nullable, std::move(node)});
}

ExpressionPtr Binder::specialFunction(const Ast::FunctionCall &node, const std::string &name)
{
    const auto argument = [&](std::size_t i) { return bind(*node.arguments[i]); };
    const auto require = [&](std::size_t count) {
        if (node.arguments.size() != count)
            throw Errors::argumentCount(toLower(name), static_cast<int>(count));
    };
    if (name == "ISNULL") {
        require(2);
        auto value = argument(0), replacement = argument(1);
        if (isNullLiteral(*value))
            return replacement;
        const bool nullable = replacement->nullable && value->nullable;
        replacement = converted(replacement, value->type);
        if (const Value *known = constantValue(*value)) {
            Expression result = isNull(*known) ? *replacement : *value;
            result.nullable = nullable;
            return std::make_shared<const Expression>(std::move(result));
        }
        const SqlType type = value->type;
        return std::make_shared<const Expression>(
            Expression{type, nullable, Coalesce{{std::move(value), std::move(replacement)}}});
    }
    if (name == "COALESCE") {
        std::vector<ExpressionPtr> values;
        for (const auto &item : node.arguments)
            values.push_back(bind(*item));
        if (values.size() < 2)
            throw Errors::argumentCount("coalesce", 2);
        if (std::all_of(values.begin(), values.end(), [](const auto &v) { return isNullLiteral(*v); }))
            throw EngineError(4127, 16, 1,
                              "At least one of the arguments to COALESCE must be an expression that is not "
                              "the NULL constant.",
                              ErrorEffect::EndsBatch);
        const SqlType type = unify(values);
        while (values.size() > 1 && constantValue(*values[0]) && isNull(*constantValue(*values[0])))
            values.erase(values.begin());
        if (values.size() == 1 || constantValue(*values[0]))
            return values[0];
        const bool nullable =
            std::all_of(values.begin(), values.end(), [](const auto &v) { return v->nullable; });
        return std::make_shared<const Expression>(Expression{type, nullable, Coalesce{std::move(values)}});
    }
    if (name == "NULLIF") {
        require(2);
        auto value = argument(0);
        const auto equal = compare(Ast::ComparisonOperator::Equal, value, argument(1));
        const SqlType type = value->type;
        if (const Value *known = constantValue(*equal))
            return !isNull(*known) && std::get<std::int64_t>(*known) != 0 ? null(type) : value;
        Case choice;
        choice.branches.emplace_back(equal, null(type));
        choice.otherwise = std::move(value);
        return std::make_shared<const Expression>(Expression{type, true, std::move(choice)});
    }
    if (name == "TEXTPTR") { // the row number is used as the text pointer
        require(1);
        const auto value = argument(0);
        const auto *column = std::get_if<Column>(&value->node);
        if (!column || !isLegacyLob(value->type.id))
            throw Errors::invalidOperand(messageTypeName(value->type.id), "textptr");
        auto row = std::make_shared<const Expression>(
            Expression{{TypeId::BigInt, 0, 0, 0}, true, Column{column->source, "rowid"}});
        return converted(row, {TypeId::Binary, 16, 0, 0}, true);
    }
    if (name == "UPDATE") { // in a trigger: whether the statement set the column
        require(1);
        const auto *column = std::get_if<Ast::ColumnReference>(&node.arguments[0]->node);
        if (!column)
            throw Errors::syntaxNearKeyword("UPDATE");
        const bool updated = m_context.updatedColumns.contains(foldedName(column->name.object()));
        return constant(IntType, std::int64_t{updated});
    }
    if (name == "IIF") {
        require(3);
        return choice({{argument(0), argument(1)}}, argument(2));
    }
    if (name == "CHOOSE") {
        if (node.arguments.size() < 2)
            throw EngineError(189, 15, 1, "The choose function requires 2 to 255 arguments.",
                              ErrorEffect::EndsBatch);
        const auto index = bindValueAs(*node.arguments.at(0), IntType);
        std::vector<std::pair<ExpressionPtr, ExpressionPtr>> branches;
        for (std::size_t i = 1; i < node.arguments.size(); ++i) {
            auto position = constant(IntType, static_cast<std::int64_t>(i));
            branches.emplace_back(compare(Ast::ComparisonOperator::Equal, index, std::move(position)),
                                  argument(i));
        }
        return choice(std::move(branches), constant(IntType, Value(), true));
    }
    return nullptr;
}

/// Only paths to the text of the whole fragment are supported.
ExpressionPtr Binder::bindNode(const Ast::MethodCall &node)
{
    static constexpr std::string_view whole[] = {
        ".", "text()[1]", "./text()[1]", "(.)[1]", "(./text())[1]", "(text())[1]", "/"};
    if (std::find(std::begin(whole), std::end(whole), node.path) == std::end(whole))
        throw Errors::notSupported("the XML path " + node.path);
    const SqlType type = resolveType(node.type, TypePlace::Declaration);
    Operation operation;
    operation.function = Functions::xmlText;
    operation.result = {TypeId::NVarChar, SqlType::Max, 0, 0};
    auto operand = converted(bind(*node.operand), {TypeId::Xml, 0, 0, 0}, true);
    return converted(call(std::move(operation), {std::move(operand)}), type, true);
}

ExpressionPtr Binder::bindNode(const Ast::FunctionCall &node)
{
    if (node.name.parts.size() > 1)
        return callModule(node);
    const std::string name = asciiUpper(node.name.object());
    if (node.over)
        return window(node, name);
    if (isAggregateName(node.name))
        return aggregate(node, name);
    if (node.star || node.distinct)
        throw Errors::syntaxNear(node.star ? "*" : "DISTINCT");
    if (auto special = specialFunction(node, name))
        return special;
    std::vector<ExpressionPtr> arguments;
    if (Functions::takesDatePart(name)) {
        const auto *part =
            node.arguments.empty() ? nullptr : std::get_if<Ast::ColumnReference>(&node.arguments[0]->node);
        if (!part || part->name.parts.size() != 1)
            throw EngineError(1023, 15, 1, "Invalid parameter 1 specified for " + toLower(name) + '.',
                              ErrorEffect::EndsBatch);
        for (std::size_t i = 1; i < node.arguments.size(); ++i)
            arguments.push_back(bind(*node.arguments[i]));
        return Functions::bindDatePartFunction(*this, name, part->name.object(), std::move(arguments));
    }
    for (const auto &argument : node.arguments)
        arguments.push_back(bind(*argument));
    return Functions::bindBuiltin(*this, node.name.object(), std::move(arguments));
}

} // namespace SampleServer
