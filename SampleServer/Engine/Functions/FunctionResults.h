#pragma once

#include "Engine/Functions/FunctionTable.h"
#include "Engine/Functions/Functions.h"
#include "Types/TypeTraits.h"

/// Common result types of built-in functions, and conversions of their arguments and results.
namespace SampleServer::Functions {

inline constexpr SqlType SysName{TypeId::NVarChar, 128, 0, 0};

inline SqlType nameResult(const ArgumentList &)
{
    return SysName;
}
inline SqlType intResult(const ArgumentList &)
{
    return IntType;
}
inline SqlType smallIntResult(const ArgumentList &)
{
    return {TypeId::SmallInt, 0, 0, 0};
}
inline SqlType variantResult(const ArgumentList &)
{
    return {TypeId::SqlVariant, 0, 0, 0};
}
inline SqlType identityResult(const ArgumentList &)
{
    return {TypeId::Decimal, 0, 38, 0};
}
/// The type of a message text.
inline SqlType messageResult(const ArgumentList &)
{
    return {TypeId::NVarChar, 4000, 0, 0};
}

/// Wraps a value in a sql_variant.
inline Value variant(const SqlType &type, Value value)
{
    return std::make_shared<const VariantValue>(VariantValue{type, std::move(value)});
}
/// Returns 1 or 0.
inline Value truth(bool value)
{
    return std::int64_t{value};
}
/// The value of an integer that is not NULL.
inline std::int64_t number(const Value &value)
{
    return std::get<std::int64_t>(value);
}
/// The value of a text that is not NULL.
inline const std::string &text(const Value &value)
{
    return std::get<std::string>(value);
}

/// A function that always returns true.
inline Value yes(EvaluationContext &, const Bound::Operation &, Arguments)
{
    return std::int64_t{1};
}

} // namespace SampleServer::Functions
