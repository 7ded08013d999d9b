#include "Wire/WireType.h"

#include <algorithm>

namespace SampleServer {

namespace {

constexpr std::uint32_t MaximumInRow = 8000;
constexpr std::uint32_t LargeObject = 0x7FFFFFFF;
constexpr std::uint32_t LargeObjectUtf16 = 0x7FFFFFFE;
constexpr std::uint32_t HierarchyIdLength = 892;
constexpr std::uint32_t VariantLength = 8009;

WireType scalar(const SqlType &type, bool nullable, std::uint8_t fixedCode, std::uint8_t nullableCode,
                std::uint32_t length)
{
    return {type, nullable ? nullableCode : fixedCode, nullable ? LengthForm::Byte : LengthForm::Fixed,
            Content::Scalar, length};
}

/// A scalar type whose wire format exists only in a nullable form.
WireType nullableScalar(const SqlType &type, std::uint8_t code, std::uint32_t length)
{
    return {type, code, LengthForm::Byte, Content::Scalar, length};
}

std::uint32_t decimalLength(std::uint8_t precision)
{
    return precision <= 9 ? 5 : precision <= 19 ? 9 : precision <= 28 ? 13 : 17;
}

std::uint32_t timeLength(std::uint8_t scale)
{
    return scale <= 2 ? 3 : scale <= 4 ? 4 : 5;
}

/// The date types as text for clients that do not support them: wide enough for every value.
WireType dateAsText(const SqlType &type)
{
    const std::uint32_t characters = type.id == TypeId::Date        ? 10
                                     : type.id == TypeId::Time      ? 16
                                     : type.id == TypeId::DateTime2 ? 27
                                                                    : 34;
    return {type, TypeCode::NVarChar, LengthForm::Short, Content::Utf16, 2 * characters};
}

WireType large(const SqlType &type, std::uint8_t code, Content content)
{
    return {type, code, LengthForm::TextPointer, content,
            content == Content::Utf16 ? LargeObjectUtf16 : LargeObject};
}

/// Text and binary types: in the row up to 8000 bytes; (max) in chunks or, before 7.2, as the old large type.
WireType sized(const SqlType &type, std::uint8_t code, std::uint8_t largeCode, Content content,
               TdsVersion version)
{
    if (type.length == SqlType::Max) {
        if (version < TdsVersion::V72)
            return large(type, largeCode, content);
        return {type, code, LengthForm::Chunks, content, 0xFFFF};
    }
    const auto length =
        static_cast<std::uint32_t>(std::max(type.length, 1)) * (content == Content::Utf16 ? 2 : 1);
    return {type, code, LengthForm::Short, content, std::min(length, MaximumInRow)};
}

WireType dateWireType(const SqlType &type, TdsVersion version)
{
    if (version < TdsVersion::V73A)
        return dateAsText(type);
    switch (type.id) {
    case TypeId::Date:
        return nullableScalar(type, TypeCode::DateN, 3);
    case TypeId::Time:
        return nullableScalar(type, TypeCode::TimeN, timeLength(type.scale));
    case TypeId::DateTime2:
        return nullableScalar(type, TypeCode::DateTime2N, timeLength(type.scale) + 3);
    default:
        return nullableScalar(type, TypeCode::DateTimeOffsetN, timeLength(type.scale) + 5);
    }
}

} // namespace

std::uint32_t WireType::nullSize() const
{
    switch (form) {
    case LengthForm::Fixed:
        return 0;
    case LengthForm::Byte:
        return 1;
    case LengthForm::Short:
        return 2;
    case LengthForm::TextPointer:
        return 1;
    case LengthForm::Chunks:
        return 8;
    case LengthForm::Variant:
        return 4;
    }
    return 0;
}

std::uint8_t WireType::variantPropertySize() const
{
    if (content == Content::Utf16 || content == Content::CodePage)
        return DefaultCollation.size() + sizeof(std::uint16_t);
    switch (code) {
    case TypeCode::DecimalN:
        return 2; // precision and scale
    case TypeCode::TimeN:
    case TypeCode::DateTime2N:
    case TypeCode::DateTimeOffsetN:
        return 1; // scale
    default:
        return content == Content::Binary ? sizeof(std::uint16_t) : 0;
    }
}

WireType wireType(const SqlType &type, bool nullable, TdsVersion version)
{
    using namespace TypeCode;
    switch (type.id) {
    case TypeId::Bit:
        return scalar(type, nullable, TypeCode::Bit, BitN, 1);
    case TypeId::TinyInt:
        return scalar(type, nullable, Int1, IntN, 1);
    case TypeId::SmallInt:
        return scalar(type, nullable, Int2, IntN, 2);
    case TypeId::Int:
        return scalar(type, nullable, Int4, IntN, 4);
    case TypeId::BigInt:
        return scalar(type, nullable, Int8, IntN, 8);
    case TypeId::Real:
        return scalar(type, nullable, Flt4, FltN, 4);
    case TypeId::Float:
        return scalar(type, nullable, Flt8, FltN, 8);
    case TypeId::SmallMoney:
        return scalar(type, nullable, Money4, MoneyN, 4);
    case TypeId::Money:
        return scalar(type, nullable, TypeCode::Money, MoneyN, 8);
    case TypeId::SmallDateTime:
        return scalar(type, nullable, DateTim4, DateTimeN, 4);
    case TypeId::DateTime:
        return scalar(type, nullable, TypeCode::DateTime, DateTimeN, 8);
    case TypeId::Decimal:
        return nullableScalar(type, DecimalN, decimalLength(type.precision));
    case TypeId::UniqueIdentifier:
        return nullableScalar(type, TypeCode::UniqueIdentifier, 16);
    case TypeId::Date:
    case TypeId::Time:
    case TypeId::DateTime2:
    case TypeId::DateTimeOffset:
        return dateWireType(type, version);
    case TypeId::Char:
        return sized(type, BigChar, TypeCode::Text, Content::CodePage, version);
    case TypeId::VarChar:
        return sized(type, BigVarChar, TypeCode::Text, Content::CodePage, version);
    case TypeId::NChar:
        return sized(type, TypeCode::NChar, TypeCode::NText, Content::Utf16, version);
    case TypeId::NVarChar:
        return sized(type, TypeCode::NVarChar, TypeCode::NText, Content::Utf16, version);
    case TypeId::Binary:
        return sized(type, BigBinary, TypeCode::Image, Content::Binary, version);
    case TypeId::VarBinary:
        return sized(type, BigVarBinary, TypeCode::Image, Content::Binary, version);
    case TypeId::Text:
        return large(type, TypeCode::Text, Content::CodePage);
    case TypeId::NText:
        return large(type, TypeCode::NText, Content::Utf16);
    case TypeId::Image:
        return large(type, TypeCode::Image, Content::Binary);
    case TypeId::Xml:
        if (version < TdsVersion::V72)
            return large(type, TypeCode::NText, Content::Utf16);
        return {type, TypeCode::Xml, LengthForm::Chunks, Content::Utf16, 0};
    case TypeId::HierarchyId:
        if (version < TdsVersion::V72)
            return {type, BigVarBinary, LengthForm::Short, Content::Binary, HierarchyIdLength};
        return {type, Udt, LengthForm::Chunks, Content::Binary, HierarchyIdLength};
    case TypeId::SqlVariant:
        return {type, Variant, LengthForm::Variant, Content::Variant, VariantLength};
    }
    return {};
}

void putTypeInfo(PacketWriter &out, const WireType &wire)
{
    out.put(wire.code);
    switch (wire.code) {
    case TypeCode::Xml:
        out.put<std::uint8_t>(0); // no schema collection
        return;
    case TypeCode::Udt:
        out.put(static_cast<std::uint16_t>(wire.maxLength));
        out.putShortText(u"master");
        out.putShortText(u"sys");
        out.putShortText(u"hierarchyid");
        out.putLongText(
            u"Microsoft.SqlServer.Types.SqlHierarchyId, Microsoft.SqlServer.Types, Version=11.0.0.0, "
            u"Culture=neutral, PublicKeyToken=89845dcd8080cc91");
        return;
    case TypeCode::DecimalN:
        out.put(static_cast<std::uint8_t>(wire.maxLength));
        out.put(wire.type.precision);
        out.put(wire.type.scale);
        return;
    case TypeCode::TimeN:
    case TypeCode::DateTime2N:
    case TypeCode::DateTimeOffsetN:
        out.put(wire.type.scale);
        return;
    case TypeCode::DateN:
        return;
    default:
        break;
    }
    switch (wire.form) {
    case LengthForm::Fixed:
        return;
    case LengthForm::Byte:
        out.put(static_cast<std::uint8_t>(wire.maxLength));
        break;
    case LengthForm::Short:
    case LengthForm::Chunks:
        out.put(static_cast<std::uint16_t>(wire.maxLength));
        break;
    case LengthForm::TextPointer:
    case LengthForm::Variant:
        out.put(wire.maxLength);
        break;
    }
    if (wire.content == Content::Utf16 || wire.content == Content::CodePage)
        out.putBytes(DefaultCollation.data(), DefaultCollation.size());
}

void putVariantProperties(PacketWriter &out, const WireType &base)
{
    if (base.content == Content::Utf16 || base.content == Content::CodePage)
        out.putBytes(DefaultCollation.data(), DefaultCollation.size());
    if (base.content != Content::Scalar)
        return out.put(static_cast<std::uint16_t>(base.maxLength));
    if (base.code == TypeCode::DecimalN)
        out.put(base.type.precision);
    if (base.variantPropertySize() > 0)
        out.put(base.type.scale);
}

} // namespace SampleServer
