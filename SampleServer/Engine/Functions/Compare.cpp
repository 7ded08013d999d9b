#include "Engine/Functions/Compare.h"
#include "Engine/Bind/TypeRules.h"
#include "Engine/Functions/Conversion.h"
#include "Types/Collation.h"
#include "Types/Guid.h"
#include "Types/TypeTraits.h"

namespace SampleServer {

namespace {

template <typename T>
int order(const T &left, const T &right)
{
    return left < right ? -1 : right < left ? 1 : 0;
}

/// Binary values compare as if the shorter one was padded with zeros.
int compareBytes(const Bytes &left, const Bytes &right)
{
    for (std::size_t i = 0; i < std::max(left.size(), right.size()); ++i) {
        const int a = i < left.size() ? left[i] : 0, b = i < right.size() ? right[i] : 0;
        if (a != b)
            return a - b;
    }
    return 0;
}

/// The rank of a type's family in the order of sql_variant values.
int family(TypeId id)
{
    if (isDateTime(id))
        return 6;
    if (isFloat(id))
        return 5;
    if (isExactNumeric(id))
        return 4;
    if (isText(id))
        return 3;
    return id == TypeId::UniqueIdentifier ? 2 : 1;
}

} // namespace

int compareValues(const Value &left, const Value &right)
{
    if (const auto *integer = std::get_if<std::int64_t>(&left))
        return order(*integer, std::get<std::int64_t>(right));
    if (const auto *number = std::get_if<double>(&left))
        return order(*number, std::get<double>(right));
    if (const auto *decimal = std::get_if<Decimal>(&left))
        return order(*decimal, std::get<Decimal>(right));
    if (const auto *time = std::get_if<DateTimeValue>(&left)) {
        const auto &other = std::get<DateTimeValue>(right);
        return time->days != other.days ? order(time->days, other.days) : order(time->ticks, other.ticks);
    }
    if (const auto *text = std::get_if<std::string>(&left))
        return compareText(*text, std::get<std::string>(right));
    if (const auto *bytes = std::get_if<Bytes>(&left))
        return compareBytes(*bytes, std::get<Bytes>(right));
    if (const auto *guid = std::get_if<Guid>(&left))
        return order(sortableBytes(*guid), sortableBytes(std::get<Guid>(right)));
    if (const auto *variant = std::get_if<std::shared_ptr<const VariantValue>>(&left))
        return compareVariants(**variant, *std::get<std::shared_ptr<const VariantValue>>(right));
    return 0;
}

int compareVariants(const VariantValue &left, const VariantValue &right)
{
    if (const int families = order(family(left.type.id), family(right.type.id)))
        return families;
    const SqlType type = commonType(left.type, right.type);
    return compareValues(convertValue(left.value, left.type, type),
                         convertValue(right.value, right.type, type));
}

bool holds(Ast::ComparisonOperator op, int result)
{
    switch (op) {
    case Ast::ComparisonOperator::Equal:
        return result == 0;
    case Ast::ComparisonOperator::NotEqual:
        return result != 0;
    case Ast::ComparisonOperator::Less:
        return result < 0;
    case Ast::ComparisonOperator::LessOrEqual:
        return result <= 0;
    case Ast::ComparisonOperator::Greater:
        return result > 0;
    case Ast::ComparisonOperator::GreaterOrEqual:
        return result >= 0;
    }
    return false;
}

} // namespace SampleServer
