#include "Engine/Errors.h"
#include "Engine/Functions/Conversion.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <algorithm>
#include <bit>

namespace SampleServer {

namespace {

void appendBigEndian(Bytes &bytes, std::uint64_t value, int size)
{
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}

void appendLittleEndian(Bytes &bytes, std::uint64_t value, int size)
{
    for (int i = 0; i < size; ++i)
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

int integerSize(TypeId id)
{
    return id == TypeId::BigInt ? 8 : id == TypeId::Int ? 4 : id == TypeId::SmallInt ? 2 : 1;
}

/// Precision, scale, a blank byte, sign, then the digits from the lowest byte on in groups of four.
Bytes decimalBytes(const Decimal &value, const SqlType &type)
{
    Bytes bytes = {type.precision, value.scale, 0, std::uint8_t(value.negative ? 0 : 1)};
    UInt128 rest = value.magnitude;
    do {
        appendLittleEndian(bytes, static_cast<std::uint64_t>(rest), 4);
        rest >>= 32;
    } while (rest != 0);
    return bytes;
}

Bytes dateTimeBytes(const DateTimeValue &value, const SqlType &type)
{
    Bytes bytes;
    if (type.id == TypeId::DateTime) {
        appendBigEndian(bytes, static_cast<std::uint64_t>(value.days - Days1900), 4);
        appendBigEndian(bytes, static_cast<std::uint64_t>((value.ticks * 3 + 50'000) / 100'000), 4);
        return bytes;
    }
    if (type.id == TypeId::SmallDateTime) {
        appendBigEndian(bytes, static_cast<std::uint64_t>(value.days - Days1900), 2);
        appendBigEndian(bytes, static_cast<std::uint64_t>(value.ticks / (60 * TicksPerSecond)), 2);
        return bytes;
    }
    if (type.id != TypeId::Date) {
        std::int64_t ticks = value.ticks;
        for (int scale = type.scale; scale < 7; ++scale)
            ticks /= 10;
        bytes.push_back(type.scale);
        appendLittleEndian(bytes, static_cast<std::uint64_t>(ticks),
                           type.scale <= 2   ? 3
                           : type.scale <= 4 ? 4
                                             : 5);
    }
    if (type.id != TypeId::Time)
        appendLittleEndian(bytes, static_cast<std::uint64_t>(value.days), 3);
    if (type.id == TypeId::DateTimeOffset)
        appendLittleEndian(bytes, static_cast<std::uint16_t>(value.offsetMinutes), 2);
    return bytes;
}

/// Parses hexadecimal digits: style 1 requires the prefix 0x, style 2 rejects it.
Bytes bytesFromHex(std::string_view text, const SqlType &from, int style)
{
    const auto failed = [&] { return Errors::dataTypeConversion(baseTypeName(from.id), "varbinary"); };
    if (style == 1) {
        if (!text.starts_with("0x") && !text.starts_with("0X"))
            throw failed();
        text.remove_prefix(2);
    }
    if (text.size() % 2 != 0)
        throw failed();
    Bytes bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const int high = hexDigit(text[i]), low = hexDigit(text[i + 1]);
        if (high < 0 || low < 0)
            throw failed();
        bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
    }
    return bytes;
}

Bytes textBytes(const std::string &text, const SqlType &from, int style)
{
    if (style == 1 || style == 2)
        return bytesFromHex(text, from, style);
    if (!isUnicodeText(from.id) && from.id != TypeId::Xml)
        return toCodePage(text);
    Bytes bytes;
    for (const char16_t unit : toUtf16(text))
        appendLittleEndian(bytes, unit, 2);
    return bytes;
}

} // namespace

Value convertToBinary(const Value &value, const SqlType &from, const SqlType &to, int style)
{
    Bytes bytes;
    bool fromNumber = true; // numbers keep their lowest bytes, other values their first ones
    if (const auto *integer = std::get_if<std::int64_t>(&value)) {
        appendBigEndian(bytes, static_cast<std::uint64_t>(*integer), integerSize(from.id));
    } else if (const auto *number = std::get_if<double>(&value)) {
        if (from.id == TypeId::Real)
            appendBigEndian(bytes, std::bit_cast<std::uint32_t>(static_cast<float>(*number)), 4);
        else
            appendBigEndian(bytes, std::bit_cast<std::uint64_t>(*number), 8);
    } else if (const auto *decimal = std::get_if<Decimal>(&value)) {
        if (isMoney(from.id)) {
            const auto scaled = static_cast<std::uint64_t>(decimal->magnitude);
            appendBigEndian(bytes, decimal->negative ? 0 - scaled : scaled, from.id == TypeId::Money ? 8 : 4);
        } else {
            bytes = decimalBytes(*decimal, from);
            fromNumber = false;
        }
    } else if (const auto *time = std::get_if<DateTimeValue>(&value)) {
        bytes = dateTimeBytes(*time, from);
        fromNumber = isLegacyDateTime(from.id);
    } else {
        fromNumber = false;
        if (const auto *text = std::get_if<std::string>(&value))
            bytes = textBytes(*text, from, style);
        else if (const auto *guid = std::get_if<Guid>(&value))
            bytes.assign(guid->bytes.begin(), guid->bytes.end());
        else
            bytes = std::get<Bytes>(value);
    }
    if (to.id == TypeId::Image || to.length == SqlType::Max)
        return bytes;
    const auto limit = static_cast<std::size_t>(to.length);
    if (bytes.size() > limit && fromNumber)
        bytes.erase(bytes.begin(), bytes.end() - static_cast<std::ptrdiff_t>(limit));
    else if (bytes.size() > limit)
        bytes.resize(limit);
    if (to.id == TypeId::Binary && bytes.size() < limit)
        bytes.insert(fromNumber ? bytes.begin() : bytes.end(), limit - bytes.size(), 0);
    return bytes;
}

} // namespace SampleServer
