#pragma once

#include <cstdint>
#include <string>

namespace SampleServer {

/// The data types of columns, variables and expressions.
enum class TypeId : std::uint8_t {
    Bit,
    TinyInt,
    SmallInt,
    Int,
    BigInt,
    Real,
    Float,
    SmallMoney,
    Money,
    Decimal, ///< decimal and numeric, with precision and scale
    SmallDateTime,
    DateTime,
    Date,
    Time,           ///< scale 0 to 7
    DateTime2,      ///< scale 0 to 7
    DateTimeOffset, ///< scale 0 to 7
    Char,
    VarChar,
    Text,
    NChar,
    NVarChar,
    NText,
    Binary,
    VarBinary,
    Image,
    UniqueIdentifier,
    Xml,
    HierarchyId, ///< the only CLR type
    SqlVariant,
};

/// A type with its parameters, as declared in T-SQL.
struct SqlType
{
    static constexpr int Max = -1; ///< the length of the (max) types

    TypeId id = TypeId::Int;
    /// Characters for the character types (UTF-16 units for the n types), bytes for binary; Max for (max).
    int length = 0;
    std::uint8_t precision = 0; ///< decimal only, 1 to 38
    std::uint8_t scale = 0;     ///< decimal 0 to 38; time, datetime2 and datetimeoffset 0 to 7

    friend bool operator==(const SqlType &, const SqlType &) = default;
};

inline constexpr SqlType BitType{TypeId::Bit, 0, 0, 0};
inline constexpr SqlType IntType{TypeId::Int, 0, 0, 0};
inline constexpr SqlType BigIntType{TypeId::BigInt, 0, 0, 0};
inline constexpr SqlType LongTextType{TypeId::NVarChar, SqlType::Max, 0, 0};
inline constexpr SqlType FloatType{TypeId::Float, 0, 0, 0};

/// The type in T-SQL syntax: "nvarchar(50)", "decimal(9,2)", "varbinary(max)".
std::string displayName(const SqlType &type);

} // namespace SampleServer
