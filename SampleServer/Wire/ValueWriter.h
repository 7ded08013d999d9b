#pragma once

#include "Types/Value.h"
#include "Wire/WireType.h"

#include <span>
#include <string>

namespace SampleServer {

/// Writes values in the format of their column's type directly to the packets. A value longer than its column
/// is truncated. Throws std::logic_error for a NULL in a column declared without NULLs,
/// std::bad_variant_access for a value that does not have its column's type.
class ValueWriter
{
public:
    ValueWriter(PacketWriter &out, TdsVersion version)
        : m_out(out)
        , m_version(version)
    {
    }

    void put(const WireType &wire, const Value &value);

private:
    void putNull(const WireType &wire);
    void putCharacters(const WireType &wire, std::string_view utf8);
    void putAsciiWidened(const WireType &wire, std::string_view ascii);
    void putLengthAndBytes(const WireType &wire, std::span<const std::uint8_t> bytes);
    void putChunks(std::span<const std::uint8_t> bytes);
    void putVariant(const VariantValue &variant);
    std::span<const std::uint8_t> encode(Content content, std::string_view utf8);

    PacketWriter &m_out;
    TdsVersion m_version;
    std::u16string m_units; ///< the last text in UTF-16; kept to avoid an allocation per cell
    Bytes m_encoded;        ///< the last text in the code page
};

} // namespace SampleServer
