#include "Wire/ValueWriter.h"

#include "Types/DateTime.h"
#include "Types/Text.h"
#include "Wire/ScalarWriter.h"

#include <algorithm>
#include <stdexcept>

namespace SampleServer {

namespace {

constexpr std::size_t ChunkSize = 8000;
constexpr std::size_t VariantTextLimit = 8000;
constexpr std::size_t MemoryToKeep = 1 << 20; ///< kept from a huge text for the next one

std::span<const std::uint8_t> bytesOf(const void *data, std::size_t size)
{
    return {static_cast<const std::uint8_t *>(data), size};
}

} // namespace

void ValueWriter::put(const WireType &wire, const Value &value)
{
    if (isNull(value))
        return putNull(wire);
    switch (wire.content) {
    case Content::Scalar:
        if (wire.form == LengthForm::Byte)
            m_out.put(static_cast<std::uint8_t>(wire.maxLength));
        return putScalar(m_out, wire, value);
    case Content::Utf16:
        if (const auto *date = std::get_if<DateTimeValue>(&value))
            return putCharacters(wire, formatDateTime(wire.type, *date, 0).value());
        [[fallthrough]];
    case Content::CodePage:
        return putCharacters(wire, std::get<std::string>(value));
    case Content::Binary:
        return putLengthAndBytes(wire, std::get<Bytes>(value));
    case Content::Variant:
        return putVariant(*std::get<std::shared_ptr<const VariantValue>>(value));
    }
}

void ValueWriter::putNull(const WireType &wire)
{
    switch (wire.form) {
    case LengthForm::Fixed:
        throw std::logic_error("A column that has no NULLs got one.");
    case LengthForm::Byte:
    case LengthForm::TextPointer:
        return m_out.put<std::uint8_t>(0);
    case LengthForm::Short:
        return m_out.put<std::uint16_t>(0xFFFF);
    case LengthForm::Chunks:
        return m_out.put(PartLengthOfNull);
    case LengthForm::Variant:
        return m_out.put<std::uint32_t>(0);
    }
}

void ValueWriter::putCharacters(const WireType &wire, std::string_view utf8)
{
    if (wire.form == LengthForm::Short && wire.content == Content::Utf16 && isAscii(utf8))
        return putAsciiWidened(wire, utf8);
    putLengthAndBytes(wire, encode(wire.content, utf8));
}

void ValueWriter::putAsciiWidened(const WireType &wire, std::string_view ascii)
{
    ascii = ascii.substr(0, wire.maxLength / 2);
    m_out.put(static_cast<std::uint16_t>(2 * ascii.size()));
    while (!ascii.empty()) {
        // A text that does not fit into the packet is written in pieces through a small buffer.
        char16_t piece[64];
        std::uint8_t *place = m_out.claim(2 * ascii.size());
        const std::size_t count = place ? ascii.size() : std::min(ascii.size(), std::size(piece));
        for (std::size_t index = 0; index < count; ++index) {
            const auto unit = static_cast<char16_t>(static_cast<unsigned char>(ascii[index]));
            if (place)
                std::memcpy(place + 2 * index, &unit, sizeof unit);
            else
                piece[index] = unit;
        }
        if (!place)
            m_out.putUnits({piece, count});
        ascii.remove_prefix(count);
    }
}

std::span<const std::uint8_t> ValueWriter::encode(Content content, std::string_view utf8)
{
    if (content == Content::CodePage) {
        if (isAscii(utf8))
            return bytesOf(utf8.data(), utf8.size());
        m_encoded = toCodePage(utf8);
        return m_encoded;
    }
    if (m_units.capacity() > MemoryToKeep)
        m_units = {};
    m_units.clear();
    for (std::size_t at = 0; at < utf8.size();) {
        const char32_t character = nextCodePoint(utf8, at);
        if (character < 0x10000) {
            m_units.push_back(static_cast<char16_t>(character));
        } else {
            m_units.push_back(static_cast<char16_t>(0xD7C0 + (character >> 10)));
            m_units.push_back(static_cast<char16_t>(0xDC00 | (character & 0x3FF)));
        }
    }
    return bytesOf(m_units.data(), m_units.size() * 2);
}

void ValueWriter::putLengthAndBytes(const WireType &wire, std::span<const std::uint8_t> bytes)
{
    if (wire.form == LengthForm::Chunks)
        return putChunks(bytes);
    bytes = bytes.first(std::min<std::size_t>(bytes.size(), wire.maxLength));
    if (wire.form == LengthForm::TextPointer) {
        // Pointer and timestamp matter only to clients that write through them, which is not supported.
        static constexpr std::uint8_t pointer[1 + 16 + 8] = {16, 's', 'a', 'm', 'p', 'l', 'e'};
        m_out.putBytes(pointer, sizeof pointer);
        m_out.put(static_cast<std::uint32_t>(bytes.size()));
    } else {
        m_out.put(static_cast<std::uint16_t>(bytes.size()));
    }
    m_out.putBytes(bytes.data(), bytes.size());
}

void ValueWriter::putChunks(std::span<const std::uint8_t> bytes)
{
    m_out.put(static_cast<std::uint64_t>(bytes.size()));
    while (!bytes.empty()) {
        const auto chunk = bytes.first(std::min(bytes.size(), ChunkSize));
        m_out.put(static_cast<std::uint32_t>(chunk.size()));
        m_out.putBytes(chunk.data(), chunk.size());
        bytes = bytes.subspan(chunk.size());
    }
    m_out.put<std::uint32_t>(0);
}

void ValueWriter::putVariant(const VariantValue &variant)
{
    if (isNull(variant.value))
        return m_out.put<std::uint32_t>(0);
    // The base type has no length of its own; the variant has one. Therefore the form without NULL.
    const WireType base = wireType(variant.type, false, m_version);
    std::span<const std::uint8_t> bytes;
    if (base.content == Content::Binary)
        bytes = std::get<Bytes>(variant.value);
    else if (const auto *date = std::get_if<DateTimeValue>(&variant.value);
             date && base.content == Content::Utf16)
        bytes = encode(Content::Utf16, formatDateTime(variant.type, *date, 0).value());
    else if (base.content != Content::Scalar)
        bytes = encode(base.content, std::get<std::string>(variant.value));
    bytes = bytes.first(std::min(bytes.size(), VariantTextLimit));

    const std::size_t length = base.content == Content::Scalar ? base.maxLength : bytes.size();
    const std::uint8_t properties = base.variantPropertySize();
    m_out.put(static_cast<std::uint32_t>(2 + properties + length));
    m_out.put(base.code);
    m_out.put(properties);
    putVariantProperties(m_out, base);
    if (base.content == Content::Scalar)
        putScalar(m_out, base, variant.value);
    else
        m_out.putBytes(bytes.data(), bytes.size());
}

} // namespace SampleServer
