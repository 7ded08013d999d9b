#pragma once

#include "Types/SqlType.h"
#include "Wire/PacketWriter.h"
#include "Wire/TdsVersion.h"

#include <array>
#include <cstdint>

namespace SampleServer {

/// The codes of the data types on the wire (MS-TDS 2.2.5.4).
namespace TypeCode {
inline constexpr std::uint8_t Image = 0x22, Text = 0x23, UniqueIdentifier = 0x24, IntN = 0x26, DateN = 0x28,
                              TimeN = 0x29, DateTime2N = 0x2A, DateTimeOffsetN = 0x2B, Int1 = 0x30,
                              Bit = 0x32, Int2 = 0x34, Int4 = 0x38, DateTim4 = 0x3A, Flt4 = 0x3B,
                              Money = 0x3C, DateTime = 0x3D, Flt8 = 0x3E, Variant = 0x62, NText = 0x63,
                              BitN = 0x68, DecimalN = 0x6A, NumericN = 0x6C, FltN = 0x6D, MoneyN = 0x6E,
                              DateTimeN = 0x6F, Money4 = 0x7A, Int8 = 0x7F, BigVarBinary = 0xA5,
                              BigVarChar = 0xA7, BigBinary = 0xAD, BigChar = 0xAF, NVarChar = 0xE7,
                              NChar = 0xEF, Udt = 0xF0, Xml = 0xF1;
} // namespace TypeCode

/// The length of a NULL that may be sent in parts (MS-TDS 2.2.5.2.3).
inline constexpr std::uint64_t PartLengthOfNull = 0xFFFF'FFFF'FFFF'FFFF;

/// SQL_Latin1_General_CP1_CI_AS, the collation of all values; its code page is Windows-1252.
inline constexpr std::array<std::uint8_t, 5> DefaultCollation = {0x09, 0x04, 0xD0, 0x00, 0x34};

/// How the length of a value is encoded.
enum class LengthForm : std::uint8_t {
    Fixed,       ///< no length
    Byte,        ///< one byte, 0 for NULL
    Short,       ///< two bytes, 0xFFFF for NULL
    TextPointer, ///< a text pointer, then four bytes
    Chunks,      ///< partially length-prefixed: eight bytes, then chunks
    Variant,     ///< four bytes around the base type and its properties, 0 for NULL
};

/// The content of a value's bytes.
enum class Content : std::uint8_t { Scalar, Utf16, CodePage, Binary, Variant };

/// The wire format of a column for a client version.
struct WireType
{
    SqlType type;
    std::uint8_t code = 0;
    LengthForm form = LengthForm::Fixed;
    Content content = Content::Scalar;
    std::uint32_t maxLength = 0; ///< maximum bytes of a value; the exact size for scalars

    /// The number of bytes of a NULL in a ROW token.
    std::uint32_t nullSize() const;
    /// The number of property bytes as the base type of an sql_variant.
    std::uint8_t variantPropertySize() const;
};

/// Selects a type that the version supports: newer types become text or binary, as on the real server.
WireType wireType(const SqlType &type, bool nullable, TdsVersion version);
/// Writes the TYPE_INFO of column and parameter descriptions.
void putTypeInfo(PacketWriter &out, const WireType &wire);
/// Writes the properties of the base type of an sql_variant.
void putVariantProperties(PacketWriter &out, const WireType &base);

} // namespace SampleServer
