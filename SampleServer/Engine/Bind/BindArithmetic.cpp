#include "Engine/Bind/Binder.h"
#include "Engine/Bind/TypeRules.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Functions.h"
#include "Types/TypeTraits.h"

namespace SampleServer {

using namespace Bound;

namespace {

const char *operatorName(ArithmeticOperator op)
{
    switch (op) {
    case ArithmeticOperator::Add:
        return "add";
    case ArithmeticOperator::Subtract:
        return "subtract";
    case ArithmeticOperator::Multiply:
        return "multiply";
    case ArithmeticOperator::Divide:
        return "divide";
    case ArithmeticOperator::Modulo:
        return "modulo";
    }
    return "";
}

/// The decimal type of an operand: an integer literal has the number of digits it was written with.
SqlType decimalOperandType(const Expression &operand)
{
    const auto *constant = std::get_if<Constant>(&operand.node);
    if (constant && constant->isLiteral && operand.type.id == TypeId::Int && !isNull(constant->value)) {
        const Decimal digits = decimalFromInteger(std::get<std::int64_t>(constant->value));
        return {TypeId::Decimal, 0, static_cast<std::uint8_t>(digitCount(digits.magnitude)), 0};
    }
    return asDecimalType(operand.type);
}

bool isPlainText(TypeId id)
{
    return isText(id) && !isLegacyLob(id);
}

EngineError incompatible(const SqlType &left, const SqlType &right, const char *name)
{
    return {402, 16, 1,
            "The data types " + messageTypeName(left.id) + " and " + messageTypeName(right.id) +
                " are incompatible in the " + name + " operator.",
            ErrorEffect::EndsBatch};
}

} // namespace

ExpressionPtr Binder::arithmetic(ArithmeticOperator op, ExpressionPtr left, ExpressionPtr right)
{
    if (isNullLiteral(*left) && !isNullLiteral(*right))
        left = null(right->type);
    if (isNullLiteral(*right))
        right = null(left->type);
    const TypeId l = left->type.id, r = right->type.id;
    const bool bothText = isPlainText(l) && isPlainText(r), bothBinary = isBinary(l) && isBinary(r);
    if (op == ArithmeticOperator::Add && (bothText || bothBinary))
        return concatenation(left, right);
    if (isDateTime(l) || isDateTime(r))
        return dateArithmetic(op, left, right);
    if (bothText || bothBinary)
        throw Errors::invalidOperand(baseTypeName(l), operatorName(op));
    if (isPlainText(l) || isBinary(l))
        return arithmetic(op, converted(left, right->type), right);
    if (isPlainText(r) || isBinary(r))
        return arithmetic(op, left, converted(right, left->type));
    if (l == TypeId::Bit && r == TypeId::Bit)
        throw incompatible(left->type, right->type, operatorName(op));
    for (const TypeId id : {l, r})
        if (!isNumeric(id))
            throw Errors::invalidOperand(baseTypeName(id), operatorName(op));

    Operation operation;
    operation.selector = static_cast<int>(op);
    const SqlType &high = precedence(l) >= precedence(r) ? left->type : right->type;
    if (isFloat(high.id)) {
        if (op == ArithmeticOperator::Modulo)
            throw l == r ? Errors::invalidOperand(baseTypeName(high.id), operatorName(op))
                         : incompatible(left->type, right->type, operatorName(op));
        operation.function = Functions::floatArithmetic;
        operation.result = high;
    } else if (high.id == TypeId::Decimal) {
        const SqlType leftType = decimalOperandType(*left), rightType = decimalOperandType(*right);
        operation.function = Functions::decimalArithmetic;
        operation.result = decimalResultType(op, leftType, rightType);
        return call(std::move(operation), {converted(left, leftType), converted(right, rightType)});
    } else {
        operation.function = isMoney(high.id) ? Functions::decimalArithmetic : Functions::integerArithmetic;
        operation.result = high;
    }
    const SqlType type = operation.result;
    return call(std::move(operation), {converted(left, type), converted(right, type)});
}

ExpressionPtr Binder::dateArithmetic(ArithmeticOperator op, const ExpressionPtr &left,
                                     const ExpressionPtr &right)
{
    for (const ExpressionPtr &side : {left, right})
        if (isDateTime(side->type.id) && !isLegacyDateTime(side->type.id)) {
            const ExpressionPtr &other = side == left ? right : left;
            if (isDateTime(other->type.id))
                throw Errors::invalidOperand(baseTypeName(side->type.id), operatorName(op));
            throw Errors::operandTypeClash(side->type, other->type);
        }
    if (op != ArithmeticOperator::Add && op != ArithmeticOperator::Subtract)
        throw Errors::invalidOperand("datetime", operatorName(op));
    const bool isSmall = left->type.id != TypeId::DateTime && right->type.id != TypeId::DateTime;
    Operation operation;
    operation.function = Functions::dateTimeArithmetic;
    operation.selector = static_cast<int>(op);
    operation.result = {isSmall ? TypeId::SmallDateTime : TypeId::DateTime, 0, 0, 0};
    const SqlType operand{TypeId::DateTime, 0, 0, 0};
    return call(std::move(operation), {converted(left, operand), converted(right, operand)});
}

ExpressionPtr Binder::concatenation(const ExpressionPtr &left, const ExpressionPtr &right)
{
    const SqlType &high = precedence(left->type.id) >= precedence(right->type.id) ? left->type : right->type;
    const bool isMax = left->type.length == SqlType::Max || right->type.length == SqlType::Max;
    Operation operation;
    operation.function = isBinary(high.id) ? Functions::concatenateBinary : Functions::concatenate;
    if (isMax) {
        operation.result = textOrBinaryType(high.id, SqlType::Max);
    } else {
        // Two fixed lengths give a fixed one; other combinations are variable.
        const bool fixed = isFixedLength(left->type.id) && isFixedLength(right->type.id);
        const TypeId varying = isUnicodeText(high.id) ? TypeId::NVarChar
                               : isText(high.id)      ? TypeId::VarChar
                                                      : TypeId::VarBinary;
        const int length = std::min(left->type.length + right->type.length, longestOrdinaryLength(high.id));
        operation.result = {fixed ? high.id : varying, length, 0, 0};
    }
    if (!m_context.concatNullYieldsNull)
        operation.nullPropagates = false;
    return call(std::move(operation), {left, right});
}

ExpressionPtr Binder::bindNode(const Ast::Arithmetic &node)
{
    return arithmetic(node.op, bind(*node.left), bind(*node.right));
}

ExpressionPtr Binder::bindNode(const Ast::Unary &node)
{
    auto operand = bind(*node.operand);
    if (node.op == Ast::UnaryOperator::Plus)
        return operand;
    Operation operation;
    operation.result = operand->type;
    if (node.op == Ast::UnaryOperator::BitNot) {
        if (!isInteger(operand->type.id))
            throw Errors::invalidOperand(messageTypeName(operand->type.id), "'~'");
        operation.function = Functions::bitNot;
        return call(std::move(operation), {operand});
    }
    if (isPlainText(operand->type.id) || !isNumeric(operand->type.id))
        throw Errors::invalidOperand(messageTypeName(operand->type.id), "minus");
    operation.function = Functions::negate;
    if (operand->type.id == TypeId::TinyInt) // it has no negative values
        operation.result = {TypeId::SmallInt, 0, 0, 0};
    const auto *before = std::get_if<Constant>(&operand->node);
    auto result = call(std::move(operation), {operand});
    const Value *value = constantValue(*result);
    if (before && before->isLiteral && value) // -5 is a literal like 5
        return constant(result->type, *value, true);
    return result;
}

ExpressionPtr Binder::bindNode(const Ast::Bitwise &node)
{
    static constexpr const char *names[] = {"'&'", "'|'", "'^'"};
    std::vector<ExpressionPtr> sides{bind(*node.left), bind(*node.right)};
    const SqlType left = sides[0]->type, right = sides[1]->type, type = unify(sides);
    if (!isInteger(type.id))
        throw incompatible(left, right, names[static_cast<int>(node.op)]);
    Operation operation;
    operation.function = Functions::bitArithmetic;
    operation.selector = static_cast<int>(node.op);
    operation.result = type;
    return call(std::move(operation), std::move(sides));
}

} // namespace SampleServer
