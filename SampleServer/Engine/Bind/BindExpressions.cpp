#include "Engine/Bind/Binder.h"
#include "Engine/Bind/TypeRules.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Compare.h"
#include "Engine/Functions/Conversion.h"
#include "Engine/Functions/Functions.h"
#include "Engine/ScopedValue.h"
#include "Types/Collation.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

namespace SampleServer {

using namespace Bound;

namespace {

ExpressionPtr condition(decltype(Expression::node) node)
{
    return std::make_shared<const Expression>(Expression{BitType, true, std::move(node)});
}

/// A condition's value: 1, 0 or NULL for unknown.
Value truth(bool value)
{
    return std::int64_t{value};
}

const char *operatorName(Ast::ComparisonOperator op)
{
    switch (op) {
    case Ast::ComparisonOperator::Equal:
        return "equal to";
    case Ast::ComparisonOperator::NotEqual:
        return "not equal to";
    case Ast::ComparisonOperator::Less:
        return "less than";
    case Ast::ComparisonOperator::LessOrEqual:
        return "less than or equal to";
    case Ast::ComparisonOperator::Greater:
        return "greater than";
    case Ast::ComparisonOperator::GreaterOrEqual:
        return "greater than or equal to";
    }
    return "";
}

bool isComparable(TypeId id)
{
    return !isLegacyLob(id) && id != TypeId::Xml;
}

/// Whether SQLite stores both types in the same form, so that every value of `from` is a value of `to`.
bool sameRepresentation(const SqlType &from, const SqlType &to)
{
    const auto fits = [&] {
        return to.length == SqlType::Max || (from.length != SqlType::Max && from.length <= to.length);
    };
    if (isInteger(from.id) && isInteger(to.id))
        return precedence(from.id) <= precedence(to.id);
    if (from.id == TypeId::Decimal && to.id == TypeId::Decimal)
        return from.scale == to.scale && from.precision <= to.precision &&
               (from.precision <= 18) == (to.precision <= 18);
    if (isText(from.id) && isText(to.id) && !isLegacyLob(from.id) && !isLegacyLob(to.id))
        return !isFixedLength(to.id) && (isUnicodeText(to.id) || !isUnicodeText(from.id)) && fits();
    if (from.id == TypeId::VarBinary && to.id == TypeId::VarBinary)
        return fits();
    return from.id == TypeId::Binary && to.id == TypeId::VarBinary && fits();
}

ExpressionPtr retyped(const ExpressionPtr &expression, const SqlType &type)
{
    Expression copy = *expression;
    copy.type = type;
    return std::make_shared<const Expression>(std::move(copy));
}

} // namespace

const Value *Bound::constantValue(const Expression &expression)
{
    const auto *constant = std::get_if<Constant>(&expression.node);
    return constant ? &constant->value : nullptr;
}

bool Bound::isLeaf(const Call &call, const Expression &argument)
{
    return !constantValue(argument) && (!call.isFused || !std::holds_alternative<Call>(argument.node));
}

bool Bound::isNullLiteral(const Expression &expression)
{
    const auto *constant = std::get_if<Constant>(&expression.node);
    return constant && constant->isLiteral && isNull(constant->value);
}

Binder::Binder(EvaluationContext &context, NameResolver &tables, const Variables &variables)
    : m_context(context)
    , m_tables(tables)
    , m_variables(variables)
{
}

ExpressionPtr Binder::bindValue(const Ast::Expression &expression)
{
    return bind(expression);
}

ExpressionPtr Binder::bindValueAs(const Ast::Expression &expression, const SqlType &type)
{
    return converted(bind(expression), type);
}

ExpressionPtr Binder::bindCondition(const Ast::Expression &expression)
{
    return bind(expression);
}

ExpressionPtr Binder::constant(SqlType type, Value value, bool isLiteral)
{
    const bool nullable = isNull(value);
    return std::make_shared<const Expression>(
        Expression{type, nullable, Constant{std::move(value), isLiteral}});
}

ExpressionPtr Binder::call(Operation operation, std::vector<ExpressionPtr> arguments)
{
    bool allConstant = true, anyNull = false;
    std::vector<Value> values;
    operation.arguments.clear();
    for (const ExpressionPtr &argument : arguments) {
        operation.arguments.push_back(argument->type);
        const Value *value = constantValue(*argument);
        allConstant = allConstant && value;
        anyNull = anyNull || (value && isNull(*value));
        if (allConstant)
            values.push_back(*value);
    }
    const SqlType type = operation.result;
    if (operation.nullPropagates && anyNull)
        return null(type);
    if (allConstant && operation.foldable) {
        try {
            Expression folded{type, true, Constant{operation.function(m_context, operation, values), false}};
            return std::make_shared<const Expression>(std::move(folded));
        } catch (const EngineError &) {
            // The error occurs at run time: the expression may be in a branch that is never taken.
        }
    }
    Call result{std::move(operation), std::move(arguments)};
    for (const ExpressionPtr &argument : result.arguments)
        if (const auto *inner = std::get_if<Call>(&argument->node))
            result.leaves += inner->leaves;
        else
            result.leaves += constantValue(*argument) ? 0 : 1;
    constexpr std::size_t mostLeaves = 100; // SQLite's functions take 127 arguments
    if (result.leaves > mostLeaves) {
        result.isFused = false;
        result.leaves = result.arguments.size();
    }
    return std::make_shared<const Expression>(Expression{type, true, std::move(result)});
}

ExpressionPtr Binder::converted(const ExpressionPtr &expression, const SqlType &type, bool explicitly,
                                int style)
{
    if (expression->type == type && style == 0)
        return expression;
    if (isNullLiteral(*expression))
        return null(type);
    requireConversion(expression->type, type, explicitly);
    if (style == 0 && sameRepresentation(expression->type, type))
        return retyped(expression, type);
    Operation operation;
    operation.function = Functions::convert;
    operation.result = type;
    operation.selector = style;
    auto result = call(std::move(operation), {expression});
    if (!expression->nullable && result->nullable) {
        Expression copy = *result;
        copy.nullable = false;
        return std::make_shared<const Expression>(std::move(copy));
    }
    return result;
}

SqlType Binder::unify(std::vector<ExpressionPtr> &expressions)
{
    std::optional<SqlType> type;
    for (const ExpressionPtr &expression : expressions)
        if (!isNullLiteral(*expression))
            type = type ? commonType(*type, expression->type) : expression->type;
    const SqlType result = type.value_or(IntType);
    for (ExpressionPtr &expression : expressions)
        expression = converted(expression, result);
    return result;
}

ExpressionPtr Binder::bind(const Ast::Expression &expression)
{
    // After GROUP BY an expression may be a key: it is recognised because it is bound as before grouping.
    Grouping *grouping = m_scope ? m_scope->grouping : nullptr;
    const bool mayBeKey = grouping && !std::holds_alternative<Ast::Literal>(expression.node) &&
                          !std::holds_alternative<Ast::ColumnReference>(expression.node) &&
                          !containsAggregate(expression);
    if (mayBeKey && !grouping->keys.empty()) {
        const ExpressionPtr bound = [&] {
            const ScopedValue<Grouping *> ungrouped(m_scope->grouping, nullptr);
            return bind(expression);
        }();
        if (const auto key = groupKey(*grouping, bound))
            return key;
    }
    return std::visit([this](const auto &node) { return bindNode(node); }, expression.node);
}

ExpressionPtr Binder::bindNode(const Ast::Literal &node)
{
    return constant(node.type, node.value, true);
}

ExpressionPtr Binder::bindNode(const Ast::VariableReference &node)
{
    if (m_parameters)
        if (const auto found = m_parameters->find(foldedName(node.name)); found != m_parameters->end())
            return found->second;
    const VariableSlot *slot = m_variables.find(node.name);
    if (!slot)
        throw Errors::mustDeclareVariable(node.name);
    if (!m_liveVariables) {
        Expression value{slot->type, true, Constant{slot->value, false}};
        return std::make_shared<const Expression>(std::move(value));
    }
    Operation operation;
    operation.function = Functions::liveVariable;
    operation.result = slot->type;
    operation.text = node.name;
    operation.foldable = false;
    return call(std::move(operation), {});
}

ExpressionPtr Binder::bindNode(const Ast::GlobalVariableReference &node)
{
    return Functions::bindGlobalVariable(*this, node.name);
}

ExpressionPtr Binder::compare(Ast::ComparisonOperator op, ExpressionPtr left, ExpressionPtr right)
{
    if (!isComparable(left->type.id) || !isComparable(right->type.id))
        throw EngineError(402, 16, 1,
                          std::string("The data types ") + messageTypeName(left->type.id) + " and " +
                              messageTypeName(right->type.id) + " are incompatible in the " +
                              operatorName(op) + " operator.",
                          ErrorEffect::EndsBatch);
    const bool bothText = isText(left->type.id) && isText(right->type.id);
    if (!bothText) { // texts of any type and length compare without conversion
        std::vector<ExpressionPtr> sides{std::move(left), std::move(right)};
        unify(sides);
        left = sides[0];
        right = sides[1];
    }
    const Value *l = constantValue(*left), *r = constantValue(*right);
    if (l && r) {
        if (isNull(*l) || isNull(*r))
            return null(BitType);
        return constant(BitType, truth(holds(op, compareValues(*l, *r))));
    }
    if (left->type.id == TypeId::SqlVariant) {
        Operation operation;
        operation.function = Functions::compareVariants;
        operation.result = IntType;
        left = call(std::move(operation), {left, right});
        right = constant(IntType, std::int64_t{0});
    }
    return condition(Comparison{op, std::move(left), std::move(right)});
}

ExpressionPtr Binder::bindNode(const Ast::Comparison &node)
{
    return compare(node.op, bind(*node.left), bind(*node.right));
}

ExpressionPtr Binder::negated(ExpressionPtr operand, bool negate)
{
    if (!negate)
        return operand;
    if (const Value *value = constantValue(*operand))
        return isNull(*value) ? operand : constant(BitType, truth(std::get<std::int64_t>(*value) == 0));
    return condition(Bound::Not{std::move(operand)});
}

ExpressionPtr Binder::logical(bool isAnd, ExpressionPtr left, ExpressionPtr right)
{
    for (const bool leftSide : {true, false}) {
        const ExpressionPtr &side = leftSide ? left : right;
        const Value *value = constantValue(*side);
        if (!value || isNull(*value))
            continue;
        const bool holdsTrue = std::get<std::int64_t>(*value) != 0;
        return holdsTrue == isAnd ? (leftSide ? right : left) : side;
    }
    if (constantValue(*left) && constantValue(*right))
        return null(BitType);
    return condition(Bound::Logical{isAnd, std::move(left), std::move(right)});
}

ExpressionPtr Binder::bindNode(const Ast::Logical &node)
{
    return logical(node.isAnd, bind(*node.left), bind(*node.right));
}

ExpressionPtr Binder::bindNode(const Ast::Not &node)
{
    return negated(bind(*node.operand), true);
}

ExpressionPtr Binder::bindNode(const Ast::IsNull &node)
{
    auto operand = bind(*node.operand);
    if (const Value *value = constantValue(*operand))
        return constant(BitType, truth(isNull(*value) != node.negated));
    return condition(Bound::IsNull{std::move(operand), node.negated});
}

ExpressionPtr Binder::bindNode(const Ast::Between &node)
{
    const auto operand = bind(*node.operand);
    auto low = compare(Ast::ComparisonOperator::GreaterOrEqual, operand, bind(*node.low));
    auto high = compare(Ast::ComparisonOperator::LessOrEqual, operand, bind(*node.high));
    return negated(logical(true, std::move(low), std::move(high)), node.negated);
}

ExpressionPtr Binder::bindNode(const Ast::InList &node)
{
    std::vector<ExpressionPtr> all{bind(*node.operand)};
    bool allText = isText(all[0]->type.id), allConstant = constantValue(*all[0]) != nullptr;
    for (const auto &item : node.list) {
        all.push_back(bind(*item));
        allText = allText && isText(all.back()->type.id);
        allConstant = allConstant && constantValue(*all.back());
    }
    if (allConstant || !isComparable(all[0]->type.id) || all[0]->type.id == TypeId::SqlVariant) {
        ExpressionPtr result = constant(BitType, truth(false));
        for (std::size_t i = 1; i < all.size(); ++i)
            result =
                logical(false, std::move(result), compare(Ast::ComparisonOperator::Equal, all[0], all[i]));
        return negated(std::move(result), node.negated);
    }
    if (!allText)
        unify(all);
    In in{all[0], {all.begin() + 1, all.end()}};
    return negated(condition(std::move(in)), node.negated);
}

ExpressionPtr Binder::bindNode(const Ast::InQuery &node)
{
    auto operand = bind(*node.operand);
    auto query = bindSubquery(*node.query, false);
    const SqlType &column = query->columns[0].info.type;
    const SqlType type = isNullLiteral(*operand) ? column : commonType(operand->type, column);
    operand = converted(operand, type);
    return negated(condition(Bound::InQuery{std::move(operand), withColumnTypes(query, {type})}),
                   node.negated);
}

ExpressionPtr Binder::bindNode(const Ast::QuantifiedComparison &node)
{
    const bool isIn = !node.all && node.op == Ast::ComparisonOperator::Equal;
    const bool isNotIn = node.all && node.op == Ast::ComparisonOperator::NotEqual;
    auto operand = bind(*node.left);
    auto query = bindSubquery(*node.query, false);
    if (!isIn && !isNotIn) {
        // ANY: the condition is true for a row. ALL: it is not false for any row.
        const std::string alias = newAlias();
        const OutputColumn &column = query->columns[0];
        auto value = std::make_shared<const Expression>(
            Expression{column.info.type, column.info.nullable, Column{alias, "c1"}});
        auto holds = compare(node.op, std::move(operand), std::move(value));
        auto search = std::make_shared<Query>();
        search->from.push_back(std::make_shared<const Source>(Source{alias, DerivedQuery{query}}));
        search->columns.push_back({ColumnInfo{{}, IntType}, constant(IntType, std::int64_t{1})});
        if (node.all)
            holds = logical(false, negated(holds, true), condition(Bound::IsNull{holds, false}));
        search->where = std::move(holds);
        return negated(condition(Bound::Exists{std::move(search)}), node.all);
    }
    const SqlType type = commonType(operand->type, query->columns[0].info.type);
    operand = converted(operand, type);
    return negated(condition(Bound::InQuery{std::move(operand), withColumnTypes(query, {type})}), isNotIn);
}

ExpressionPtr Binder::bindNode(const Ast::Like &node)
{
    std::vector<ExpressionPtr> arguments{bind(*node.operand), bind(*node.pattern)};
    if (node.escape)
        arguments.push_back(bind(*node.escape));
    for (ExpressionPtr &argument : arguments)
        if (!isText(argument->type.id))
            argument = converted(argument, {TypeId::NVarChar, 4000, 0, 0});
    Operation operation;
    operation.function = Functions::like;
    operation.result = BitType;
    return negated(call(std::move(operation), std::move(arguments)), node.negated);
}

ExpressionPtr Binder::bindNode(const Ast::Exists &node)
{
    return condition(Bound::Exists{bindSubquery(*node.query, true)});
}

ExpressionPtr Binder::bindNode(const Ast::ScalarQuery &node)
{
    auto query = bindSubquery(*node.query, false);
    const SqlType type = query->columns[0].info.type;
    return std::make_shared<const Expression>(Expression{type, true, Bound::ScalarQuery{std::move(query)}});
}

ExpressionPtr Binder::bindNode(const Ast::Case &node)
{
    const ExpressionPtr input = node.input ? bind(*node.input) : nullptr;
    std::vector<std::pair<ExpressionPtr, ExpressionPtr>> branches;
    for (const auto &branch : node.branches) {
        auto when = bind(*branch.when);
        if (input)
            when = compare(Ast::ComparisonOperator::Equal, input, std::move(when));
        branches.emplace_back(std::move(when), bind(*branch.then));
    }
    return choice(std::move(branches),
                  node.otherwise ? bind(*node.otherwise) : constant(IntType, Value(), true));
}

ExpressionPtr Binder::bindNode(const Ast::Cast &node)
{
    const SqlType type = resolveType(node.type, TypePlace::Cast, m_context.edition);
    const auto operand = bind(*node.operand);
    int style = 0;
    if (node.style) {
        const auto bound = bindValueAs(*node.style, IntType);
        const Value *value = constantValue(*bound);
        if (!value)
            throw Errors::notSupported("a style of CONVERT that is not constant");
        if (isNull(*value))
            return null(type);
        style = static_cast<int>(std::get<std::int64_t>(*value));
    }
    if (!node.isTry) {
        Expression cast = *converted(operand, type, true, style);
        cast.nullable = true; // the server describes every CAST as nullable
        if (auto *constant = std::get_if<Constant>(&cast.node))
            constant->isLiteral = false;
        return std::make_shared<const Expression>(std::move(cast));
    }
    if (isNullLiteral(*operand))
        return null(type);
    requireConversion(operand->type, type, true);
    Operation operation;
    operation.function = Functions::tryConvert;
    operation.result = type;
    operation.selector = style;
    return call(std::move(operation), {operand});
}

} // namespace SampleServer
