#include "Engine/Catalog/CatalogTypes.h"
#include "Types/TypeTraits.h"

namespace SampleServer {

namespace {

constexpr SystemType knownTypes[] = {{"image", 34, 34, {TypeId::Image}},
                                     {"text", 35, 35, {TypeId::Text}},
                                     {"uniqueidentifier", 36, 36, {TypeId::UniqueIdentifier}},
                                     {"date", 40, 40, {TypeId::Date}},
                                     {"time", 41, 41, {TypeId::Time, 0, 0, 7}},
                                     {"datetime2", 42, 42, {TypeId::DateTime2, 0, 0, 7}},
                                     {"datetimeoffset", 43, 43, {TypeId::DateTimeOffset, 0, 0, 7}},
                                     {"tinyint", 48, 48, {TypeId::TinyInt}},
                                     {"smallint", 52, 52, {TypeId::SmallInt}},
                                     {"int", 56, 56, {TypeId::Int}},
                                     {"smalldatetime", 58, 58, {TypeId::SmallDateTime}},
                                     {"real", 59, 59, {TypeId::Real}},
                                     {"money", 60, 60, {TypeId::Money}},
                                     {"datetime", 61, 61, {TypeId::DateTime}},
                                     {"float", 62, 62, {TypeId::Float}},
                                     {"sql_variant", 98, 98, {TypeId::SqlVariant}},
                                     {"ntext", 99, 99, {TypeId::NText}},
                                     {"bit", 104, 104, {TypeId::Bit}},
                                     {"decimal", 106, 106, {TypeId::Decimal, 0, 38, 38}},
                                     {"numeric", 108, 108, {TypeId::Decimal, 0, 38, 38}},
                                     {"smallmoney", 122, 122, {TypeId::SmallMoney}},
                                     {"bigint", 127, 127, {TypeId::BigInt}},
                                     {"hierarchyid", 240, 128, {TypeId::HierarchyId}},
                                     {"varbinary", 165, 165, {TypeId::VarBinary, 8000}},
                                     {"varchar", 167, 167, {TypeId::VarChar, 8000}},
                                     {"binary", 173, 173, {TypeId::Binary, 8000}},
                                     {"timestamp", RowVersionTypeId, RowVersionTypeId, {TypeId::Binary, 8}},
                                     {"char", 175, 175, {TypeId::Char, 8000}},
                                     {"nvarchar", 231, 231, {TypeId::NVarChar, 4000}},
                                     {"nchar", 239, 239, {TypeId::NChar, 4000}},
                                     {"xml", 241, 241, {TypeId::Xml}},
                                     {"sysname", 231, 256, {TypeId::NVarChar, 128}}};

} // namespace

std::span<const SystemType> systemTypes()
{
    return knownTypes;
}

int systemTypeId(const SqlType &type)
{
    for (const SystemType &known : knownTypes)
        if (known.type.id == type.id)
            return known.systemId;
    return 0;
}

int catalogLength(const SqlType &type)
{
    switch (type.id) {
    case TypeId::Bit:
    case TypeId::TinyInt:
        return 1;
    case TypeId::SmallInt:
        return 2;
    case TypeId::Int:
    case TypeId::Real:
    case TypeId::SmallMoney:
    case TypeId::SmallDateTime:
        return 4;
    case TypeId::BigInt:
    case TypeId::Float:
    case TypeId::Money:
    case TypeId::DateTime:
        return 8;
    case TypeId::Decimal:
        return type.precision <= 9 ? 5 : type.precision <= 19 ? 9 : type.precision <= 28 ? 13 : 17;
    case TypeId::Date:
        return 3;
    case TypeId::Time:
        return type.scale <= 2 ? 3 : type.scale <= 4 ? 4 : 5;
    case TypeId::DateTime2:
        return type.scale <= 2 ? 6 : type.scale <= 4 ? 7 : 8;
    case TypeId::DateTimeOffset:
        return type.scale <= 2 ? 8 : type.scale <= 4 ? 9 : 10;
    case TypeId::Text:
    case TypeId::NText:
    case TypeId::Image:
    case TypeId::UniqueIdentifier:
        return 16;
    case TypeId::Xml:
        return -1;
    case TypeId::HierarchyId:
        return 892;
    case TypeId::SqlVariant:
        return 8016;
    default:
        return type.length == SqlType::Max ? -1 : isUnicodeText(type.id) ? type.length * 2 : type.length;
    }
}

int catalogPrecision(const SqlType &type)
{
    switch (type.id) {
    case TypeId::Bit:
        return 1;
    case TypeId::TinyInt:
        return 3;
    case TypeId::SmallInt:
        return 5;
    case TypeId::Int:
    case TypeId::SmallMoney:
    case TypeId::Date:
        return 10;
    case TypeId::BigInt:
    case TypeId::Money:
        return 19;
    case TypeId::Real:
        return 24;
    case TypeId::Float:
        return 53;
    case TypeId::Decimal:
        return type.precision;
    case TypeId::DateTime:
        return 23;
    case TypeId::SmallDateTime:
        return 16;
    case TypeId::Time:
        return type.scale == 0 ? 8 : 9 + type.scale;
    case TypeId::DateTime2:
        return type.scale == 0 ? 19 : 20 + type.scale;
    case TypeId::DateTimeOffset:
        return type.scale == 0 ? 26 : 27 + type.scale;
    default:
        return 0;
    }
}

int catalogScale(const SqlType &type)
{
    if (isMoney(type.id))
        return 4;
    return type.id == TypeId::DateTime ? 3 : type.scale;
}

} // namespace SampleServer
