#include "Wire/ScalarWriter.h"

#include <bit>
#include <stdexcept>

namespace SampleServer {

namespace {

constexpr std::int32_t DaysTo1900 = 693595;
constexpr std::int64_t TicksPerMinute = 600'000'000;
constexpr std::int64_t DateTimeUnitsPerDay = 300LL * 24 * 60 * 60;

void putInteger(PacketWriter &out, std::uint32_t length, std::int64_t value)
{
    switch (length) {
    case 1:
        return out.put(static_cast<std::uint8_t>(value));
    case 2:
        return out.put(static_cast<std::int16_t>(value));
    case 4:
        return out.put(static_cast<std::int32_t>(value));
    default:
        return out.put(value);
    }
}

/// The lowest `length` bytes of a number: dates and times have three to five of them.
void putLowBytes(PacketWriter &out, std::uint64_t value, std::size_t length)
{
    out.putBytes(&value, length);
}

Decimal atScale(const Decimal &value, std::uint8_t scale)
{
    if (value.scale == scale)
        return value;
    const auto rescaled = value.rescaled(scale);
    if (!rescaled)
        throw std::range_error("A decimal exceeds the range of its column.");
    return *rescaled;
}

void putMoney(PacketWriter &out, std::uint32_t length, const Decimal &decimal)
{
    const Decimal value = atScale(decimal, 4);
    const auto magnitude = static_cast<std::uint64_t>(value.magnitude);
    const std::uint64_t units = value.negative ? 0 - magnitude : magnitude;
    if (length == 4)
        return out.put(static_cast<std::uint32_t>(units));
    out.put(static_cast<std::uint32_t>(units >> 32));
    out.put(static_cast<std::uint32_t>(units));
}

void putDecimal(PacketWriter &out, const WireType &wire, const Decimal &decimal)
{
    const Decimal value = atScale(decimal, wire.type.scale);
    const std::uint32_t length = wire.maxLength - 1;
    if (length < sizeof value.magnitude && value.magnitude >> (8 * length) != 0)
        throw std::range_error("A decimal exceeds the precision of its column.");
    out.put<std::uint8_t>(value.negative ? 0 : 1);
    out.putBytes(&value.magnitude, length);
}

void putDateTime(PacketWriter &out, const DateTimeValue &value)
{
    // 1/300 s, rounded; a time just before midnight may round into the next day.
    const std::int64_t units = (value.ticks * 3 + 50'000) / 100'000;
    out.put(static_cast<std::int32_t>(value.days - DaysTo1900 + units / DateTimeUnitsPerDay));
    out.put(static_cast<std::uint32_t>(units % DateTimeUnitsPerDay));
}

void putTime(PacketWriter &out, std::size_t length, std::uint8_t scale, const DateTimeValue &value)
{
    static constexpr std::int64_t ticksPerUnit[] = {10'000'000, 1'000'000, 100'000, 10'000,
                                                    1'000,      100,       10,      1};
    putLowBytes(out, static_cast<std::uint64_t>(value.ticks / ticksPerUnit[scale]), length);
}

void putDate(PacketWriter &out, const DateTimeValue &value)
{
    putLowBytes(out, static_cast<std::uint64_t>(value.days), 3);
}

} // namespace

void putScalar(PacketWriter &out, const WireType &wire, const Value &value)
{
    switch (wire.type.id) {
    case TypeId::Real:
        return out.put(std::bit_cast<std::uint32_t>(static_cast<float>(std::get<double>(value))));
    case TypeId::Float:
        return out.put(std::bit_cast<std::uint64_t>(std::get<double>(value)));
    case TypeId::SmallMoney:
    case TypeId::Money:
        return putMoney(out, wire.maxLength, std::get<Decimal>(value));
    case TypeId::Decimal:
        return putDecimal(out, wire, std::get<Decimal>(value));
    case TypeId::UniqueIdentifier:
        return out.putBytes(std::get<Guid>(value).bytes.data(), sizeof(Guid));
    case TypeId::DateTime:
        return putDateTime(out, std::get<DateTimeValue>(value));
    case TypeId::SmallDateTime: {
        const auto &date = std::get<DateTimeValue>(value);
        out.put(static_cast<std::uint16_t>(date.days - DaysTo1900));
        return out.put(static_cast<std::uint16_t>(date.ticks / TicksPerMinute));
    }
    case TypeId::Date:
        return putDate(out, std::get<DateTimeValue>(value));
    case TypeId::Time:
        return putTime(out, wire.maxLength, wire.type.scale, std::get<DateTimeValue>(value));
    case TypeId::DateTime2:
        putTime(out, wire.maxLength - 3, wire.type.scale, std::get<DateTimeValue>(value));
        return putDate(out, std::get<DateTimeValue>(value));
    case TypeId::DateTimeOffset: {
        const auto &date = std::get<DateTimeValue>(value);
        putTime(out, wire.maxLength - 5, wire.type.scale, date);
        putDate(out, date);
        return out.put(date.offsetMinutes);
    }
    default:
        return putInteger(out, wire.maxLength, std::get<std::int64_t>(value));
    }
}

} // namespace SampleServer
