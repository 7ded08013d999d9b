#include "Types/SqlType.h"
#include "Types/TypeTraits.h"

#include <algorithm>

namespace SampleServer {

const char *baseTypeName(TypeId id)
{
    switch (id) {
    case TypeId::Bit:
        return "bit";
    case TypeId::TinyInt:
        return "tinyint";
    case TypeId::SmallInt:
        return "smallint";
    case TypeId::Int:
        return "int";
    case TypeId::BigInt:
        return "bigint";
    case TypeId::Real:
        return "real";
    case TypeId::Float:
        return "float";
    case TypeId::SmallMoney:
        return "smallmoney";
    case TypeId::Money:
        return "money";
    case TypeId::Decimal:
        return "decimal";
    case TypeId::SmallDateTime:
        return "smalldatetime";
    case TypeId::DateTime:
        return "datetime";
    case TypeId::Date:
        return "date";
    case TypeId::Time:
        return "time";
    case TypeId::DateTime2:
        return "datetime2";
    case TypeId::DateTimeOffset:
        return "datetimeoffset";
    case TypeId::Char:
        return "char";
    case TypeId::VarChar:
        return "varchar";
    case TypeId::Text:
        return "text";
    case TypeId::NChar:
        return "nchar";
    case TypeId::NVarChar:
        return "nvarchar";
    case TypeId::NText:
        return "ntext";
    case TypeId::Binary:
        return "binary";
    case TypeId::VarBinary:
        return "varbinary";
    case TypeId::Image:
        return "image";
    case TypeId::UniqueIdentifier:
        return "uniqueidentifier";
    case TypeId::Xml:
        return "xml";
    case TypeId::HierarchyId:
        return "hierarchyid";
    case TypeId::SqlVariant:
        return "sql_variant";
    }
    return "";
}

std::string messageTypeName(TypeId id)
{
    return id == TypeId::Decimal ? "numeric" : baseTypeName(id);
}

std::string displayName(const SqlType &type)
{
    const std::string name = baseTypeName(type.id);
    switch (type.id) {
    case TypeId::Decimal:
        return name + '(' + std::to_string(type.precision) + ',' + std::to_string(type.scale) + ')';
    case TypeId::Time:
    case TypeId::DateTime2:
    case TypeId::DateTimeOffset:
        return name + '(' + std::to_string(type.scale) + ')';
    case TypeId::Char:
    case TypeId::VarChar:
    case TypeId::NChar:
    case TypeId::NVarChar:
    case TypeId::Binary:
    case TypeId::VarBinary:
        return name + '(' + (type.length == SqlType::Max ? "max" : std::to_string(type.length)) + ')';
    default:
        return name;
    }
}

int precedence(TypeId id)
{
    // From the highest to the lowest, as the language reference orders them.
    static constexpr TypeId order[] = {TypeId::HierarchyId,
                                       TypeId::SqlVariant,
                                       TypeId::Xml,
                                       TypeId::DateTimeOffset,
                                       TypeId::DateTime2,
                                       TypeId::DateTime,
                                       TypeId::SmallDateTime,
                                       TypeId::Date,
                                       TypeId::Time,
                                       TypeId::Float,
                                       TypeId::Real,
                                       TypeId::Decimal,
                                       TypeId::Money,
                                       TypeId::SmallMoney,
                                       TypeId::BigInt,
                                       TypeId::Int,
                                       TypeId::SmallInt,
                                       TypeId::TinyInt,
                                       TypeId::Bit,
                                       TypeId::NText,
                                       TypeId::Text,
                                       TypeId::Image,
                                       TypeId::UniqueIdentifier,
                                       TypeId::NVarChar,
                                       TypeId::NChar,
                                       TypeId::VarChar,
                                       TypeId::Char,
                                       TypeId::VarBinary,
                                       TypeId::Binary};
    return static_cast<int>(std::end(order) - std::find(std::begin(order), std::end(order), id));
}

SqlType asDecimalType(const SqlType &type)
{
    switch (type.id) {
    case TypeId::Bit:
        return {TypeId::Decimal, 0, 1, 0};
    case TypeId::TinyInt:
        return {TypeId::Decimal, 0, 3, 0};
    case TypeId::SmallInt:
        return {TypeId::Decimal, 0, 5, 0};
    case TypeId::Int:
        return {TypeId::Decimal, 0, 10, 0};
    case TypeId::BigInt:
        return {TypeId::Decimal, 0, 19, 0};
    case TypeId::SmallMoney:
        return {TypeId::Decimal, 0, 10, 4};
    case TypeId::Money:
        return {TypeId::Decimal, 0, 19, 4};
    case TypeId::Decimal:
        return type;
    default:
        return {TypeId::Decimal, 0, 38, 6};
    }
}

int longestOrdinaryLength(TypeId id)
{
    return isUnicodeText(id) ? 4000 : 8000;
}

SqlType textOrBinaryType(TypeId id, long long length)
{
    if (length == SqlType::Max || length > longestOrdinaryLength(id))
        return {isBinary(id)        ? TypeId::VarBinary
                : isUnicodeText(id) ? TypeId::NVarChar
                                    : TypeId::VarChar,
                SqlType::Max, 0, 0};
    return {id, static_cast<int>(std::max(length, 1LL)), 0, 0};
}

} // namespace SampleServer
