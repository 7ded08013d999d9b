#include "Engine/Bind/TypeRules.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Conversion.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <algorithm>

namespace SampleServer {

namespace {

struct TypeNameEntry
{
    std::string_view name;
    TypeId id;
};

constexpr TypeNameEntry typeNames[] = {
    {"BIGINT", TypeId::BigInt},
    {"BINARY", TypeId::Binary},
    {"BIT", TypeId::Bit},
    {"CHAR", TypeId::Char},
    {"CHARACTER", TypeId::Char},
    {"DATE", TypeId::Date},
    {"DATETIME", TypeId::DateTime},
    {"DATETIME2", TypeId::DateTime2},
    {"DATETIMEOFFSET", TypeId::DateTimeOffset},
    {"DEC", TypeId::Decimal},
    {"DECIMAL", TypeId::Decimal},
    {"FLOAT", TypeId::Float},
    {"HIERARCHYID", TypeId::HierarchyId},
    {"IMAGE", TypeId::Image},
    {"INT", TypeId::Int},
    {"INTEGER", TypeId::Int},
    {"MONEY", TypeId::Money},
    {"NCHAR", TypeId::NChar},
    {"NCHARACTER", TypeId::NChar},
    {"NTEXT", TypeId::NText},
    {"NUMERIC", TypeId::Decimal},
    {"NVARCHAR", TypeId::NVarChar},
    {"REAL", TypeId::Real},
    {"ROWVERSION", TypeId::Binary},
    {"SMALLDATETIME", TypeId::SmallDateTime},
    {"SMALLINT", TypeId::SmallInt},
    {"SMALLMONEY", TypeId::SmallMoney},
    {"SQL_VARIANT", TypeId::SqlVariant},
    {"SYSNAME", TypeId::NVarChar},
    {"TEXT", TypeId::Text},
    {"TIME", TypeId::Time},
    {"TIMESTAMP", TypeId::Binary},
    {"TINYINT", TypeId::TinyInt},
    {"UNIQUEIDENTIFIER", TypeId::UniqueIdentifier},
    {"VARBINARY", TypeId::VarBinary},
    {"VARCHAR", TypeId::VarChar},
    {"XML", TypeId::Xml},
};

EngineError lengthExceeded(const std::string &name, int length, int limit)
{
    return {131, 15, 2,
            "The size (" + std::to_string(length) + ") given to the type '" + name +
                "' exceeds the maximum allowed for any data type (" + std::to_string(limit) + ").",
            ErrorEffect::EndsBatch};
}

EngineError badLength()
{
    return {1001, 15, 1, "Line 1: Length or precision specification 0 is invalid.", ErrorEffect::EndsBatch};
}

SqlType decimalFromArguments(const std::vector<int> &arguments)
{
    const int precision = arguments.empty() ? 18 : arguments[0];
    const int scale = arguments.size() > 1 ? arguments[1] : 0;
    if (precision < 1)
        throw badLength();
    if (precision > 38)
        throw EngineError(2750, 16, 1,
                          "Column or parameter #1: Specified column precision " + std::to_string(precision) +
                              " is greater than the maximum precision of 38.",
                          ErrorEffect::EndsBatch);
    if (scale < 0 || scale > precision)
        throw EngineError(192, 16, 1, "The scale must be less than or equal to the precision.",
                          ErrorEffect::EndsBatch);
    return {TypeId::Decimal, 0, static_cast<std::uint8_t>(precision), static_cast<std::uint8_t>(scale)};
}

SqlType textFromArguments(TypeId id, const std::string &name, const std::vector<int> &arguments,
                          TypePlace place)
{
    if (arguments.empty())
        return {id, name == "sysname" ? 128 : place == TypePlace::Cast ? 30 : 1, 0, 0};
    const int length = arguments[0];
    if (length == SqlType::Max) {
        if (isFixedLength(id))
            throw Errors::syntaxNearKeyword("max");
        return {id, SqlType::Max, 0, 0};
    }
    if (length < 1)
        throw badLength();
    if (length > longestOrdinaryLength(id))
        throw lengthExceeded(name, length, longestOrdinaryLength(id));
    return {id, length, 0, 0};
}

bool isScaled(TypeId id)
{
    return id == TypeId::Time || id == TypeId::DateTime2 || id == TypeId::DateTimeOffset;
}

SqlType wideText(TypeId id, const SqlType &left, const SqlType &right)
{
    const bool bothFixed = isFixedLength(left.id) && isFixedLength(right.id);
    if (left.length == SqlType::Max || right.length == SqlType::Max)
        return textOrBinaryType(id, SqlType::Max);
    // The result has a fixed length only if both have the same.
    if (isFixedLength(id) && (!bothFixed || left.length != right.length))
        id = id == TypeId::Char    ? TypeId::VarChar
             : id == TypeId::NChar ? TypeId::NVarChar
                                   : TypeId::VarBinary;
    return textOrBinaryType(id, std::max(left.length, right.length));
}

} // namespace

bool isRowVersion(const Ast::ObjectName &name)
{
    const std::string upper = asciiUpper(name.object());
    return upper == "ROWVERSION" || upper == "TIMESTAMP";
}

bool isSystemType(const Ast::ObjectName &name)
{
    const std::string upper = asciiUpper(name.object());
    return std::any_of(std::begin(typeNames), std::end(typeNames),
                       [&upper](const TypeNameEntry &entry) { return entry.name == upper; });
}

SqlType resolveType(const Ast::TypeName &type, TypePlace place, Edition edition)
{
    const std::string name = asciiUpper(type.name.object());
    const auto *entry = std::find_if(std::begin(typeNames), std::end(typeNames),
                                     [&name](const TypeNameEntry &e) { return e.name == name; });
    const std::string schema = asciiUpper(type.name.qualifier(1));
    if (entry == std::end(typeNames) || (!schema.empty() && schema != "SYS") || !hasType(edition, name)) {
        if (name == "GEOGRAPHY" || name == "GEOMETRY" || name == "CURSOR")
            throw Errors::notSupported("the data type " + type.name.toString());
        if (place == TypePlace::Cast)
            throw EngineError(243, 16, 1, "Type " + type.name.toString() + " is not a defined system type.",
                              ErrorEffect::EndsBatch);
        throw Errors::unknownType(type.name.toString(), 1);
    }
    const std::string shown =
        asciiUpper(type.name.object()) == "SYSNAME" ? "sysname" : baseTypeName(entry->id);
    const TypeId id = entry->id;
    const auto &arguments = type.arguments;
    if (isRowVersion(type.name))
        return {TypeId::Binary, 8, 0, 0};
    if (id == TypeId::Decimal)
        return decimalFromArguments(arguments);
    if (id == TypeId::Float)
        return {!arguments.empty() && arguments[0] <= 24 ? TypeId::Real : TypeId::Float, 0, 0, 0};
    if (isScaled(id)) {
        const int scale = arguments.empty() ? 7 : arguments[0];
        if (scale < 0 || scale > 7)
            throw EngineError(1002, 15, 1, "Specified scale " + std::to_string(scale) + " is invalid.",
                              ErrorEffect::EndsBatch);
        return {id, 0, 0, static_cast<std::uint8_t>(scale)};
    }
    if ((isText(id) || isBinary(id)) && !isLegacyLob(id))
        return textFromArguments(id, shown, arguments, place);
    if (!arguments.empty())
        throw EngineError(2716, 16, 1,
                          "Column, parameter, or variable #1: Cannot specify a column width on data type " +
                              shown + '.',
                          ErrorEffect::EndsBatch);
    return {id, 0, 0, 0};
}

SqlType commonType(const SqlType &left, const SqlType &right)
{
    if (left == right)
        return left;
    const SqlType &high = precedence(left.id) >= precedence(right.id) ? left : right;
    const SqlType &low = &high == &left ? right : left;
    requireConversion(low, high, false);
    if (high.id == TypeId::Decimal && isExactNumeric(low.id)) {
        const SqlType other = asDecimalType(low);
        const int scale = std::max(high.scale, other.scale);
        const int integral = std::max(high.precision - high.scale, other.precision - other.scale);
        const int precision = std::min(integral + scale, Decimal::MaxDigits);
        return {TypeId::Decimal, 0, static_cast<std::uint8_t>(precision),
                static_cast<std::uint8_t>(std::min(scale, std::max(precision - integral, 0)))};
    }
    if (isLegacyLob(high.id))
        return high;
    if (isText(high.id) && (isText(low.id) || isBinary(low.id)))
        return wideText(high.id, left, right);
    if (isBinary(high.id) && isBinary(low.id))
        return wideText(high.id, left, right);
    if (isScaled(high.id) && isScaled(low.id))
        return {high.id, 0, 0, std::max(high.scale, low.scale)};
    if (isScaled(high.id) && isLegacyDateTime(low.id))
        return {high.id, 0, 0, std::max<std::uint8_t>(high.scale, 3)};
    return high;
}

void requireConversion(const SqlType &from, const SqlType &to, bool explicitly)
{
    switch (conversionKind(from.id, to.id)) {
    case ConversionKind::Implicit:
        return;
    case ConversionKind::Explicit:
        if (explicitly)
            return;
        throw Errors::implicitConversion(from.id, to.id);
    case ConversionKind::NotAllowed:
        if (explicitly)
            throw Errors::explicitConversion(from.id, to.id);
        throw Errors::operandTypeClash(from, to);
    }
}

SqlType sumType(const SqlType &argument, const std::string &name)
{
    switch (argument.id) {
    case TypeId::TinyInt:
    case TypeId::SmallInt:
    case TypeId::Int:
        return SqlType{TypeId::Int, 0, 0, 0};
    case TypeId::BigInt:
        return SqlType{TypeId::BigInt, 0, 0, 0};
    case TypeId::SmallMoney:
    case TypeId::Money:
        return {TypeId::Money, 0, 0, 0};
    case TypeId::Real:
    case TypeId::Float:
        return {TypeId::Float, 0, 0, 0};
    case TypeId::Decimal:
        return {TypeId::Decimal, 0, Decimal::MaxDigits, argument.scale};
    default:
        throw Errors::invalidOperand(messageTypeName(argument.id), asciiUpper(name) == "AVG" ? "avg" : "sum");
    }
}

SqlType averageType(const SqlType &argument)
{
    SqlType type = sumType(argument, "AVG");
    if (type.id == TypeId::Decimal)
        type.scale = std::max<std::uint8_t>(type.scale, 6);
    return type;
}

} // namespace SampleServer
