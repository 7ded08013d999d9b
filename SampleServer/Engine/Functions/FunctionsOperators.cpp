#include "Engine/Errors.h"
#include "Engine/Functions/Compare.h"
#include "Engine/Functions/Conversion.h"
#include "Engine/Functions/Functions.h"
#include "Types/Collation.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <cmath>
#include <limits>

namespace SampleServer::Functions {

using Bound::Operation;

namespace {

std::int64_t integerOf(const Value &value)
{
    return std::get<std::int64_t>(value);
}

/// The result in the range of its type, or error 8115.
std::int64_t inRange(std::int64_t value, bool overflowed, const SqlType &type)
{
    if (overflowed)
        throw Errors::overflow("expression", baseTypeName(type.id), 2);
    return integerOf(convertToInteger(value, {TypeId::BigInt, 0, 0, 0}, type));
}

} // namespace

Value convert(EvaluationContext &context, const Operation &operation, Arguments arguments)
{
    return convertValue(arguments[0], operation.arguments[0], operation.result,
                        {operation.selector, context.dateOrder});
}

Value tryConvert(EvaluationContext &context, const Operation &operation, Arguments arguments)
{
    try {
        return convert(context, operation, arguments);
    } catch (const EngineError &) {
        return {};
    }
}

Value liveVariable(EvaluationContext &context, const Operation &operation, Arguments)
{
    return context.variable(operation.text);
}

Value compareVariants(EvaluationContext &, const Operation &, Arguments arguments)
{
    return std::int64_t{compareValues(arguments[0], arguments[1])};
}

Value like(EvaluationContext &, const Operation &, Arguments arguments)
{
    char32_t escape = 0;
    if (arguments.size() > 2) {
        const auto &text = std::get<std::string>(arguments[2]);
        std::size_t at = 0;
        escape = text.empty() ? 0 : nextCodePoint(text, at);
        if (at != text.size())
            throw EngineError(506, 16, 1,
                              "The invalid escape character \"" + text +
                                  "\" was specified in a LIKE predicate.");
    }
    return std::int64_t{
        matchesLike(std::get<std::string>(arguments[0]), std::get<std::string>(arguments[1]), escape)};
}

Value integerArithmetic(EvaluationContext &, const Operation &operation, Arguments arguments)
{
    const std::int64_t left = integerOf(arguments[0]), right = integerOf(arguments[1]);
    std::int64_t result = 0;
    bool overflowed = false;
    switch (static_cast<ArithmeticOperator>(operation.selector)) {
    case ArithmeticOperator::Add:
        overflowed = __builtin_add_overflow(left, right, &result);
        break;
    case ArithmeticOperator::Subtract:
        overflowed = __builtin_sub_overflow(left, right, &result);
        break;
    case ArithmeticOperator::Multiply:
        overflowed = __builtin_mul_overflow(left, right, &result);
        break;
    case ArithmeticOperator::Divide:
    case ArithmeticOperator::Modulo:
        if (right == 0)
            throw Errors::divideByZero();
        // The only quotient that does not fit would raise a signal.
        if (right == -1) {
            if (static_cast<ArithmeticOperator>(operation.selector) == ArithmeticOperator::Divide)
                overflowed = __builtin_sub_overflow(0, left, &result);
        } else {
            result = static_cast<ArithmeticOperator>(operation.selector) == ArithmeticOperator::Divide
                         ? left / right
                         : left % right;
        }
    }
    if (overflowed)
        return inRange(result, true, operation.result);
    const bool small = operation.result.id == TypeId::TinyInt || operation.result.id == TypeId::SmallInt;
    if (small && (result < (operation.result.id == TypeId::TinyInt ? 0 : -32768) ||
                  result > (operation.result.id == TypeId::TinyInt ? 255 : 32767)))
        throw Errors::overflow("expression", baseTypeName(operation.result.id), 2);
    return inRange(result, false, operation.result);
}

Value decimalArithmetic(EvaluationContext &, const Operation &operation, Arguments arguments)
{
    const auto op = static_cast<ArithmeticOperator>(operation.selector);
    const auto &left = std::get<Decimal>(arguments[0]), &right = std::get<Decimal>(arguments[1]);
    if ((op == ArithmeticOperator::Divide || op == ArithmeticOperator::Modulo) && right.magnitude == 0)
        throw Errors::divideByZero();
    const SqlType type =
        isMoney(operation.result.id) ? SqlType{TypeId::Decimal, 0, Decimal::MaxDigits, 4} : operation.result;
    const auto result = calculate(op, left, right, type);
    if (!result)
        throw Errors::overflow("expression", messageTypeName(operation.result.id), 2);
    constexpr SqlType expression{TypeId::Int, 0, 0, 0}; // the source type in the overflow error
    return isMoney(operation.result.id) ? convertToMoney(*result, expression, operation.result)
                                        : Value(*result);
}

Value floatArithmetic(EvaluationContext &, const Operation &operation, Arguments arguments)
{
    const double left = std::get<double>(arguments[0]), right = std::get<double>(arguments[1]);
    double result = 0;
    switch (static_cast<ArithmeticOperator>(operation.selector)) {
    case ArithmeticOperator::Add:
        result = left + right;
        break;
    case ArithmeticOperator::Subtract:
        result = left - right;
        break;
    case ArithmeticOperator::Multiply:
        result = left * right;
        break;
    default:
        if (right == 0)
            throw Errors::divideByZero();
        result = left / right;
    }
    if (!std::isfinite(result))
        throw Errors::overflow("expression", baseTypeName(operation.result.id), 2);
    return convertToFloat(result, {TypeId::Float, 0, 0, 0}, operation.result);
}

Value dateTimeArithmetic(EvaluationContext &, const Operation &operation, Arguments arguments)
{
    // Both operands count from 1900-01-01, so their sum is the sum of their distances from it.
    const auto &left = std::get<DateTimeValue>(arguments[0]), &right = std::get<DateTimeValue>(arguments[1]);
    const bool add = static_cast<ArithmeticOperator>(operation.selector) == ArithmeticOperator::Add;
    const std::int64_t days = add ? right.days - Days1900 : Days1900 - right.days;
    const std::int64_t totalDays = left.days + days;
    DateTimeValue sum{0, 0, 0};
    if (totalDays >= 0 && totalDays < DaysEnd)
        sum = plusTicks({static_cast<std::int32_t>(totalDays), left.ticks, 0},
                        add ? right.ticks : -right.ticks);
    const auto rounded = roundedTo(operation.result, sum);
    if (!rounded)
        throw EngineError(517, 16, 1,
                          std::string("Adding a value to a '") + baseTypeName(operation.result.id) +
                              "' column caused an overflow.");
    return *rounded;
}

Value concatenate(EvaluationContext &, const Operation &operation, Arguments arguments)
{
    std::string text;
    for (const Value &argument : arguments)
        if (!isNull(argument))
            text += std::get<std::string>(argument);
    Errors::requireRoom(text.size());
    if (operation.result.length == SqlType::Max ||
        text.size() <= static_cast<std::size_t>(operation.result.length))
        return text;
    return utf16Substring(text, 0, static_cast<std::size_t>(operation.result.length));
}

Value concatenateBinary(EvaluationContext &, const Operation &operation, Arguments arguments)
{
    Bytes bytes;
    for (const Value &argument : arguments)
        if (const auto *part = std::get_if<Bytes>(&argument))
            bytes.insert(bytes.end(), part->begin(), part->end());
    Errors::requireRoom(bytes.size());
    if (operation.result.length != SqlType::Max)
        bytes.resize(std::min(bytes.size(), static_cast<std::size_t>(operation.result.length)));
    return bytes;
}

Value bitArithmetic(EvaluationContext &, const Operation &operation, Arguments arguments)
{
    const std::int64_t left = integerOf(arguments[0]), right = integerOf(arguments[1]);
    switch (static_cast<Ast::BitOperator>(operation.selector)) {
    case Ast::BitOperator::And:
        return left & right;
    case Ast::BitOperator::Or:
        return left | right;
    case Ast::BitOperator::Xor:
        return left ^ right;
    }
    return {};
}

Value bitNot(EvaluationContext &, const Operation &operation, Arguments arguments)
{
    const std::int64_t value = integerOf(arguments[0]);
    if (operation.result.id == TypeId::Bit)
        return std::int64_t{value == 0};
    return operation.result.id == TypeId::TinyInt ? ~value & 0xFF : ~value;
}

Value negate(EvaluationContext &, const Operation &operation, Arguments arguments)
{
    if (const auto *number = std::get_if<double>(&arguments[0]))
        return -*number;
    if (const auto *decimal = std::get_if<Decimal>(&arguments[0])) {
        Decimal result = *decimal;
        result.negative = result.magnitude != 0 && !result.negative;
        return result;
    }
    std::int64_t result = 0;
    const bool overflowed = __builtin_sub_overflow(0, integerOf(arguments[0]), &result);
    return inRange(result, overflowed, operation.result);
}

Value average(EvaluationContext &, const Operation &operation, Arguments arguments)
{
    const std::int64_t count = integerOf(arguments[1]);
    if (isNull(arguments[0]) || count == 0)
        return {};
    if (const auto *sum = std::get_if<double>(&arguments[0]))
        return *sum / static_cast<double>(count);
    if (const auto *sum = std::get_if<std::int64_t>(&arguments[0]))
        return *sum / count;
    const SqlType type =
        isMoney(operation.result.id) ? SqlType{TypeId::Decimal, 0, Decimal::MaxDigits, 4} : operation.result;
    const auto result = calculate(ArithmeticOperator::Divide, std::get<Decimal>(arguments[0]),
                                  decimalFromInteger(count), type);
    if (!result)
        throw Errors::overflow("expression", messageTypeName(operation.result.id), 2);
    return *result;
}

} // namespace SampleServer::Functions
