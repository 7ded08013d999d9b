#include "Wire/ParameterReader.h"

#include "Types/Text.h"
#include "Wire/ScalarReader.h"
#include "Wire/Utf16Bytes.h"
#include "Wire/WireType.h"

#include <algorithm>
#include <optional>

namespace SampleServer {

namespace {

constexpr std::uint16_t ShortNull = 0xFFFF;
constexpr std::uint16_t InChunks = 0xFFFF;
constexpr std::uint8_t HighestTimeScale = 7;

using NullableBytes = std::optional<Bytes>; ///< empty for NULL

NullableBytes takeCounted(ByteReader &reader, std::size_t length, bool null)
{
    if (null)
        return std::nullopt;
    const auto bytes = reader.takeBytes(length);
    return Bytes(bytes.begin(), bytes.end());
}

NullableBytes takeChunks(ByteReader &reader)
{
    if (reader.take<std::uint64_t>() == PartLengthOfNull)
        return std::nullopt;
    Bytes all;
    while (const auto length = reader.take<std::uint32_t>()) {
        const auto chunk = reader.takeBytes(length);
        all.insert(all.end(), chunk.begin(), chunk.end());
    }
    return all;
}

/// Selects the type with values of this length among those that share a code.
TypeId typeOfLength(std::size_t length, std::initializer_list<std::pair<std::size_t, TypeId>> choices)
{
    for (const auto &[size, id] : choices) {
        if (size == length)
            return id;
    }
    throw ProtocolError("A parameter's type has an impossible length.");
}

SqlType takeDecimalType(ByteReader &reader)
{
    reader.take<std::uint8_t>(); // the length follows from the precision
    SqlType type{TypeId::Decimal};
    type.precision = reader.take<std::uint8_t>();
    type.scale = reader.take<std::uint8_t>();
    if (type.precision < 1 || type.precision > Decimal::MaxDigits || type.scale > type.precision)
        throw ProtocolError("A parameter's type has an impossible precision.");
    return type;
}

SqlType takeTimeType(ByteReader &reader, TypeId id)
{
    SqlType type{id};
    type.scale = reader.take<std::uint8_t>();
    if (type.scale > HighestTimeScale)
        throw ProtocolError("A parameter's type has an impossible scale.");
    return type;
}

/// Types whose values have a length byte; empty for another code.
std::optional<SqlType> takeScalarType(ByteReader &reader, std::uint8_t code)
{
    const auto sized = [&](std::initializer_list<std::pair<std::size_t, TypeId>> choices) {
        return SqlType{typeOfLength(reader.take<std::uint8_t>(), choices)};
    };
    switch (code) {
    case TypeCode::BitN:
        return sized({{1, TypeId::Bit}});
    case TypeCode::IntN:
        return sized({{1, TypeId::TinyInt}, {2, TypeId::SmallInt}, {4, TypeId::Int}, {8, TypeId::BigInt}});
    case TypeCode::FltN:
        return sized({{4, TypeId::Real}, {8, TypeId::Float}});
    case TypeCode::MoneyN:
        return sized({{4, TypeId::SmallMoney}, {8, TypeId::Money}});
    case TypeCode::DateTimeN:
        return sized({{4, TypeId::SmallDateTime}, {8, TypeId::DateTime}});
    case TypeCode::UniqueIdentifier:
        return sized({{16, TypeId::UniqueIdentifier}});
    case TypeCode::DecimalN:
    case TypeCode::NumericN:
        return takeDecimalType(reader);
    case TypeCode::DateN:
        return SqlType{TypeId::Date};
    case TypeCode::TimeN:
        return takeTimeType(reader, TypeId::Time);
    case TypeCode::DateTime2N:
        return takeTimeType(reader, TypeId::DateTime2);
    case TypeCode::DateTimeOffsetN:
        return takeTimeType(reader, TypeId::DateTimeOffset);
    default:
        return std::nullopt;
    }
}

/// Text and binary types; their length determines whether they are large. Empty for another code.
std::optional<SqlType> sizedType(std::uint8_t code)
{
    switch (code) {
    case TypeCode::NVarChar:
    case TypeCode::NChar:
    case TypeCode::NText:
        return SqlType{TypeId::NVarChar};
    case TypeCode::BigVarChar:
    case TypeCode::BigChar:
    case TypeCode::Text:
        return SqlType{TypeId::VarChar};
    case TypeCode::BigVarBinary:
    case TypeCode::BigBinary:
    case TypeCode::Image:
        return SqlType{TypeId::VarBinary};
    default:
        return std::nullopt;
    }
}

/// Completes a text or binary type with its length and reads the value after it.
NullableBytes takeSized(ByteReader &reader, std::uint8_t code, SqlType &type)
{
    const bool isOldLarge = code == TypeCode::Text || code == TypeCode::NText || code == TypeCode::Image;
    const std::size_t longest = isOldLarge ? reader.take<std::uint32_t>() : reader.take<std::uint16_t>();
    const bool isLarge = isOldLarge || longest == InChunks;
    type.length = isLarge ? SqlType::Max
                          : std::max(1, static_cast<int>(longest / (type.id == TypeId::NVarChar ? 2 : 1)));
    if (type.id != TypeId::VarBinary)
        reader.takeBytes(DefaultCollation.size());
    if (isOldLarge) {
        const auto length = reader.take<std::int32_t>();
        return takeCounted(reader, static_cast<std::size_t>(length), length < 0);
    }
    if (isLarge)
        return takeChunks(reader);
    const auto length = reader.take<std::uint16_t>();
    return takeCounted(reader, length, length == ShortNull);
}

Value sizedValue(TypeId id, Bytes content)
{
    if (id == TypeId::VarBinary)
        return content;
    return id == TypeId::NVarChar ? toUtf8(utf16From(content)) : fromCodePage(content.data(), content.size());
}

} // namespace

CallParameter takeParameter(ByteReader &reader)
{
    constexpr std::uint8_t byReference = 1, defaultValue = 2;
    CallParameter parameter;
    const std::size_t nameLength = reader.take<std::uint8_t>();
    parameter.name = toUtf8(utf16From(reader.takeBytes(2 * nameLength)));
    const auto status = reader.take<std::uint8_t>();
    parameter.isOutput = status & byReference;
    parameter.isDefault = status & defaultValue;
    const auto code = reader.take<std::uint8_t>();
    if (const auto scalar = takeScalarType(reader, code)) {
        parameter.type = *scalar;
        const auto length = reader.take<std::uint8_t>();
        if (length != 0)
            parameter.value = scalarFrom(parameter.type, reader.takeBytes(length));
    } else if (const auto sized = sizedType(code)) {
        parameter.type = *sized;
        if (auto content = takeSized(reader, code, parameter.type))
            parameter.value = sizedValue(parameter.type.id, std::move(*content));
    } else {
        throw UnsupportedParameter("Parameter '" + parameter.name +
                                   "' is of a type that this server does not take.");
    }
    return parameter;
}

} // namespace SampleServer
