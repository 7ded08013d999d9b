#include "Engine/Functions/Conversion.h"
#include "Engine/Errors.h"
#include "Types/Guid.h"
#include "Types/HierarchyId.h"
#include "Types/TypeTraits.h"

#include <algorithm>

namespace SampleServer {

namespace {

Value convertToGuid(const Value &value, const SqlType &from)
{
    if (const auto *bytes = std::get_if<Bytes>(&value)) {
        Guid guid;
        std::copy_n(bytes->begin(), std::min(bytes->size(), guid.bytes.size()), guid.bytes.begin());
        return guid;
    }
    if (const auto *text = std::get_if<std::string>(&value)) {
        if (const auto guid = guidFromString(*text))
            return *guid;
        throw EngineError(8169, 16, 2,
                          "Conversion failed when converting from a character string to uniqueidentifier.",
                          ErrorEffect::RollsBack);
    }
    throw Errors::explicitConversion(from.id, TypeId::UniqueIdentifier);
}

Value convertToHierarchyId(const Value &value, const SqlType &from)
{
    if (std::holds_alternative<Bytes>(value))
        return value;
    if (const auto *text = std::get_if<std::string>(&value)) {
        if (auto bytes = hierarchyIdFromString(*text))
            return std::move(*bytes);
        throw EngineError(
            6522, 16, 2,
            "A .NET Framework error occurred during execution of user-defined routine or aggregate "
            "\"hierarchyid\": \r\nMicrosoft.SqlServer.Types.HierarchyIdException: 24001: "
            "SqlHierarchyId.Parse failed because the input string '" +
                *text + "' is not a valid string representation of a SqlHierarchyId node.",
            ErrorEffect::RollsBack);
    }
    throw Errors::explicitConversion(from.id, TypeId::HierarchyId);
}

Value convertToXml(const Value &value, const SqlType &from)
{
    if (std::holds_alternative<std::string>(value))
        return value;
    return convertToText(value, from, {TypeId::NVarChar, SqlType::Max, 0, 0}, 0);
}

/// The type stored in a sql_variant: a string literal's declared length, up to the allowed maximum.
Value convertToVariant(const Value &value, const SqlType &from)
{
    if (from.length == SqlType::Max)
        throw Errors::operandTypeClash(from, {TypeId::SqlVariant, 0, 0, 0});
    return std::make_shared<const VariantValue>(VariantValue{from, value});
}

} // namespace

Value convertValue(const Value &value, const SqlType &from, const SqlType &to,
                   const ConversionOptions &options)
{
    if (isNull(value) || (from == to && options.style == 0))
        return value;
    if (from.id == TypeId::SqlVariant && to.id != TypeId::SqlVariant) {
        const VariantValue &inner = *std::get<std::shared_ptr<const VariantValue>>(value);
        if (conversionKind(inner.type.id, to.id) == ConversionKind::NotAllowed)
            throw Errors::explicitConversion(inner.type.id, to.id);
        return convertValue(inner.value, inner.type, to, options);
    }
    if (isInteger(to.id))
        return convertToInteger(value, from, to);
    if (isText(to.id))
        return convertToText(value, from, to, options.style);
    if (isBinary(to.id))
        return convertToBinary(value, from, to, options.style);
    if (isDateTime(to.id))
        return convertToDateTime(value, from, to, options);
    switch (to.id) {
    case TypeId::Real:
    case TypeId::Float:
        return convertToFloat(value, from, to);
    case TypeId::Decimal:
        return convertToDecimal(value, from, to);
    case TypeId::Money:
    case TypeId::SmallMoney:
        return convertToMoney(value, from, to);
    case TypeId::UniqueIdentifier:
        return convertToGuid(value, from);
    case TypeId::Xml:
        return convertToXml(value, from);
    case TypeId::HierarchyId:
        return convertToHierarchyId(value, from);
    default:
        return from.id == TypeId::SqlVariant ? value : convertToVariant(value, from);
    }
}

} // namespace SampleServer
