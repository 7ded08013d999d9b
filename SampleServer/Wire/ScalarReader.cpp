#include "Wire/ScalarReader.h"

#include "Types/DateTime.h"
#include "Wire/ProtocolError.h"

#include <algorithm>
#include <bit>

namespace SampleServer {

namespace {

using BytesView = std::span<const std::uint8_t>;

/// 10 to the power of 38.
constexpr UInt128 DecimalLimit = UInt128{10'000'000'000'000'000'000u} * 10'000'000'000'000'000'000u;

void require(bool fits)
{
    if (!fits)
        throw ProtocolError("A parameter's value does not fit its type.");
}

/// A little-endian number of up to eight bytes.
std::uint64_t unsignedFrom(BytesView bytes)
{
    require(bytes.size() <= sizeof(std::uint64_t));
    std::uint64_t number = 0;
    for (std::size_t index = bytes.size(); index-- > 0;)
        number = number << 8 | bytes[index];
    return number;
}

/// The same of exactly that many bytes.
std::uint64_t unsignedFrom(BytesView bytes, std::size_t length)
{
    require(bytes.size() == length);
    return unsignedFrom(bytes);
}

Value moneyFrom(std::int64_t units)
{
    Decimal value;
    value.scale = 4;
    value.negative = units < 0;
    value.magnitude = units < 0 ? 0 - static_cast<std::uint64_t>(units) : static_cast<std::uint64_t>(units);
    return value;
}

/// A sign and a magnitude.
Value decimalFrom(BytesView bytes, std::uint8_t scale)
{
    require(bytes.size() >= 2 && bytes.size() <= 1 + sizeof(UInt128));
    Decimal value;
    value.scale = scale;
    value.negative = bytes[0] == 0;
    for (std::size_t index = bytes.size(); --index > 0;)
        value.magnitude = value.magnitude << 8 | bytes[index];
    require(value.magnitude < DecimalLimit);
    return value;
}

Value checkedDate(std::int64_t days, std::int64_t ticks, std::int16_t offsetMinutes = 0)
{
    require(days >= 0 && days < DaysEnd && ticks >= 0 && ticks < TicksPerDay);
    return DateTimeValue{static_cast<std::int32_t>(days), ticks, offsetMinutes};
}

/// Days from 1900 on and minutes.
Value smallDateTimeFrom(std::uint64_t bits)
{
    return checkedDate(Days1900 + static_cast<std::int64_t>(bits & 0xFFFF),
                       static_cast<std::int64_t>(bits >> 16) * 60 * TicksPerSecond);
}

/// Days from 1900 on and 1/300 s.
Value dateTimeFrom(std::uint64_t bits)
{
    return checkedDate(std::int64_t{Days1900} + static_cast<std::int32_t>(bits),
                       (static_cast<std::int64_t>(bits >> 32) * 100'000 + 1) / 3);
}

/// date, time, datetime2 and datetimeoffset: a time, a date and an offset, as far as the type has them.
Value newDateFrom(const SqlType &type, BytesView bytes)
{
    static constexpr std::int64_t ticksPerUnit[] = {10'000'000, 1'000'000, 100'000, 10'000,
                                                    1'000,      100,       10,      1};
    const std::size_t dateLength = type.id == TypeId::Time ? 0 : 3;
    const std::size_t offsetLength = type.id == TypeId::DateTimeOffset ? 2 : 0;
    require(bytes.size() >= dateLength + offsetLength && bytes.size() <= dateLength + offsetLength + 5);
    const std::size_t timeLength = bytes.size() - dateLength - offsetLength;
    const std::int64_t unit = ticksPerUnit[type.scale];
    const auto units = static_cast<std::int64_t>(unsignedFrom(bytes.first(timeLength)));
    require(units < TicksPerDay / unit);
    return checkedDate(static_cast<std::int64_t>(unsignedFrom(bytes.subspan(timeLength, dateLength))),
                       units * unit, static_cast<std::int16_t>(unsignedFrom(bytes.last(offsetLength))));
}

Value guidFrom(BytesView bytes)
{
    Guid value;
    require(bytes.size() == value.bytes.size());
    std::copy(bytes.begin(), bytes.end(), value.bytes.begin());
    return value;
}

} // namespace

Value scalarFrom(const SqlType &type, std::span<const std::uint8_t> bytes)
{
    const auto number = [&](std::size_t length) { return unsignedFrom(bytes, length); };
    switch (type.id) {
    case TypeId::Bit:
    case TypeId::TinyInt:
        return static_cast<std::int64_t>(number(1));
    case TypeId::SmallInt:
        return std::int64_t{static_cast<std::int16_t>(number(2))};
    case TypeId::Int:
        return std::int64_t{static_cast<std::int32_t>(number(4))};
    case TypeId::BigInt:
        return static_cast<std::int64_t>(number(8));
    case TypeId::Real:
        return double{std::bit_cast<float>(static_cast<std::uint32_t>(number(4)))};
    case TypeId::Float:
        return std::bit_cast<double>(number(8));
    case TypeId::SmallMoney:
        return moneyFrom(static_cast<std::int32_t>(number(4)));
    case TypeId::Money:
        return moneyFrom(static_cast<std::int64_t>(std::rotl(number(8), 32))); // high half first
    case TypeId::Decimal:
        return decimalFrom(bytes, type.scale);
    case TypeId::SmallDateTime:
        return smallDateTimeFrom(number(4));
    case TypeId::DateTime:
        return dateTimeFrom(number(8));
    case TypeId::UniqueIdentifier:
        return guidFrom(bytes);
    default:
        return newDateFrom(type, bytes);
    }
}

} // namespace SampleServer
