#pragma once

#include "Types/SqlType.h"

namespace SampleServer {

/// char, varchar and text: one byte per character in the code page of the collation.
constexpr bool isAnsiText(TypeId id)
{
    return id == TypeId::Char || id == TypeId::VarChar || id == TypeId::Text;
}
/// nchar, nvarchar and ntext.
constexpr bool isUnicodeText(TypeId id)
{
    return id == TypeId::NChar || id == TypeId::NVarChar || id == TypeId::NText;
}
constexpr bool isText(TypeId id)
{
    return isAnsiText(id) || isUnicodeText(id);
}
constexpr bool isBinary(TypeId id)
{
    return id == TypeId::Binary || id == TypeId::VarBinary || id == TypeId::Image;
}
/// bit to bigint.
constexpr bool isInteger(TypeId id)
{
    return id <= TypeId::BigInt && id != TypeId::Real && id != TypeId::Float;
}
constexpr bool isFloat(TypeId id)
{
    return id == TypeId::Real || id == TypeId::Float;
}
constexpr bool isMoney(TypeId id)
{
    return id == TypeId::Money || id == TypeId::SmallMoney;
}
constexpr bool isExactNumeric(TypeId id)
{
    return isInteger(id) || isMoney(id) || id == TypeId::Decimal;
}
constexpr bool isNumeric(TypeId id)
{
    return isExactNumeric(id) || isFloat(id);
}
constexpr bool isDateTime(TypeId id)
{
    return id >= TypeId::SmallDateTime && id <= TypeId::DateTimeOffset;
}
/// datetime and smalldatetime, the two date types that support arithmetic.
constexpr bool isLegacyDateTime(TypeId id)
{
    return id == TypeId::DateTime || id == TypeId::SmallDateTime;
}
/// text, ntext and image.
constexpr bool isLegacyLob(TypeId id)
{
    return id == TypeId::Text || id == TypeId::NText || id == TypeId::Image;
}
/// Types whose values are padded to their declared length.
constexpr bool isFixedLength(TypeId id)
{
    return id == TypeId::Char || id == TypeId::NChar || id == TypeId::Binary;
}

/// The rank in T-SQL's data type precedence; the type with the higher rank determines the common type.
int precedence(TypeId id);

/// The name of the type without its parameters: "nvarchar".
const char *baseTypeName(TypeId id);
/// The type's name in error texts: as baseTypeName, but "numeric" for decimal.
std::string messageTypeName(TypeId id);

/// The decimal type that can hold every value of an integer, money or decimal type.
SqlType asDecimalType(const SqlType &type);

/// The maximum length of the type without (max): 8000 or 4000.
int longestOrdinaryLength(TypeId id);

/// A text or binary type of `length`, or (max) if the length exceeds the ordinary limit or is Max.
SqlType textOrBinaryType(TypeId id, long long length);

} // namespace SampleServer
