#pragma once

#include "Types/Decimal.h"
#include "Types/SqlType.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace SampleServer {

/// A point in time in the server's format: days since 0001-01-01 and 100 ns ticks since midnight. For
/// datetimeoffset both are UTC, and the offset (minutes) is added for display.
struct DateTimeValue
{
    std::int32_t days = 0;
    std::int64_t ticks = 0;
    std::int16_t offsetMinutes = 0;

    friend auto operator<=>(const DateTimeValue &, const DateTimeValue &) = default;
};

/// The sixteen bytes of a uniqueidentifier in wire order.
struct Guid
{
    std::array<std::uint8_t, 16> bytes{};

    friend bool operator==(const Guid &, const Guid &) = default;
};

using Bytes = std::vector<std::uint8_t>;

struct VariantValue;

/// One value. The variant's alternative follows from the type:
/// bit to bigint: int64; real and float: double; decimal, money and smallmoney: Decimal; the date types:
/// DateTimeValue; text and xml: std::string in UTF-8; binary types and hierarchyid: Bytes.
/// NULL is std::monostate.
using Value = std::variant<std::monostate, std::int64_t, double, Decimal, DateTimeValue, std::string, Bytes,
                           Guid, std::shared_ptr<const VariantValue>>;

/// The content of a sql_variant: a value with its original type.
struct VariantValue
{
    SqlType type;
    Value value;
};

inline bool isNull(const Value &value)
{
    return std::holds_alternative<std::monostate>(value);
}

} // namespace SampleServer
