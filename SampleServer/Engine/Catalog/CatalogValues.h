#pragma once

#include "Engine/Catalog/CatalogTable.h"
#include "Types/TypeTraits.h"

// Column types and values for catalog tables.
namespace SampleServer::CatalogValues {

inline constexpr SqlType Bit{TypeId::Bit}, TinyInt{TypeId::TinyInt}, SmallInt{TypeId::SmallInt},
    Int{TypeId::Int}, BigInt{TypeId::BigInt}, Name{TypeId::NVarChar, 128},
    LongText{TypeId::NVarChar, SqlType::Max}, Text60{TypeId::NVarChar, 60}, DateTime{TypeId::DateTime},
    Code{TypeId::Char, 2}, Variant{TypeId::SqlVariant};

using Context = CatalogContext;

inline Value flag(bool value)
{
    return std::int64_t{value};
}
inline Value text(const std::string &value)
{
    return value;
}
inline Value textOrNull(const std::string &value)
{
    return value.empty() ? Value() : Value(value);
}
inline Value number(std::int64_t value)
{
    return value;
}
inline Value variant(std::int64_t value, const SqlType &type)
{
    return std::make_shared<const VariantValue>(VariantValue{type, value});
}
inline Value collationOfType(const SqlType &type)
{
    return isText(type.id) ? Value(std::string("SQL_Latin1_General_CP1_CI_AS")) : Value();
}

} // namespace SampleServer::CatalogValues
