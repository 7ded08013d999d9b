#include "Engine/Functions/RowGenerator.h"
#include "Types/DateTime.h"

#include <charconv>

namespace SampleServer {

namespace {

enum ColumnPlace : std::size_t { Id, BigId, Name, Code, Amount, Created, Ratio, Active, Token };

/// A well-mixed number from a row number and a column (the finalizer of splitmix64).
std::uint64_t mixed(std::int64_t number, std::uint64_t column)
{
    std::uint64_t z = static_cast<std::uint64_t>(number) * 0x9E3779B97F4A7C15u + column * 0xD1B54A32D192ED03u;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
}

constexpr std::string_view firstNames[] = {
    "Alexandra", "Bartholomew", "Charlotte", "Désirée", "Emmanuel",  "Françoise", "Gabriella", "Håkan",
    "Isabella",  "Jürgen",      "Katharina", "Leopold", "Magdalena", "Nathaniel", "Ólafur",    "Penelope"};
constexpr std::string_view lastNames[] = {"Abernathy",  "Björkström",   "Castellanos", "Dąbrowski",
                                          "Eisenhauer", "Featherstone", "Großmann",    "Hetherington",
                                          "Ivanova",    "Jørgensen",    "Kowalczyk",   "Livingstone",
                                          "Montgomery", "Nakamura",     "Østergaard",  "Papadopoulos"};

std::string &textOf(Value &value)
{
    if (auto *text = std::get_if<std::string>(&value)) {
        text->clear();
        return *text;
    }
    return value.emplace<std::string>();
}

void fillName(std::int64_t number, std::uint64_t bits, Value &value)
{
    std::string &text = textOf(value);
    text.append(firstNames[bits & 15])
        .append(" ")
        .append(lastNames[bits >> 4 & 15])
        .append(" of department ");
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, number % 10000).ptr;
    text.append(digits, static_cast<std::size_t>(end - digits));
}

void fillCode(std::uint64_t bits, Value &value)
{
    static constexpr char alphabet[] = "ABCDEFGHJKLMNPQRSTUVWXYZ23456789";
    std::string &text = textOf(value);
    for (int i = 0; i < 12; ++i, bits >>= 5)
        text += alphabet[bits & 31];
}

bool isNullAt(std::size_t column, std::int64_t number)
{
    switch (column) {
    case Name:
        return number % 17 == 0;
    case Amount:
        return number % 13 == 0;
    case Created:
        return number % 19 == 0;
    case Ratio:
        return number % 23 == 0;
    default:
        return false;
    }
}

} // namespace

const std::vector<ColumnInfo> &RowGenerator::columns()
{
    static const std::vector<ColumnInfo> columns = [] {
        const auto column = [](const char *name, SqlType type, bool nullable) {
            ColumnInfo info;
            info.name = name;
            info.type = type;
            info.nullable = nullable;
            return info;
        };
        return std::vector<ColumnInfo>{
            column("id", {TypeId::Int, 0, 0, 0}, false),
            column("big_id", {TypeId::BigInt, 0, 0, 0}, false),
            column("name", {TypeId::NVarChar, 50, 0, 0}, true),
            column("code", {TypeId::VarChar, 20, 0, 0}, false),
            column("amount", {TypeId::Decimal, 0, 18, 4}, true),
            column("created", {TypeId::DateTime, 0, 0, 0}, true),
            column("ratio", {TypeId::Float, 0, 0, 0}, true),
            column("active", {TypeId::Bit, 0, 0, 0}, false),
            column("token", {TypeId::UniqueIdentifier, 0, 0, 0}, false),
        };
    }();
    return columns;
}

RowGenerator::RowGenerator(std::vector<std::size_t> wanted)
    : m_wanted(std::move(wanted))
    , m_values(m_wanted.size())
    , m_spare(m_wanted.size())
{
}

std::span<const Value> RowGenerator::row(std::int64_t number)
{
    for (std::size_t i = 0; i < m_wanted.size(); ++i) {
        const bool wasNull = isNull(m_values[i]);
        if (wasNull != isNullAt(m_wanted[i], number))
            std::swap(m_values[i], m_spare[i]);
        if (!isNullAt(m_wanted[i], number))
            fill(m_wanted[i], number, m_values[i]);
    }
    return m_values;
}

void RowGenerator::fill(std::size_t column, std::int64_t number, Value &value)
{
    if (isNullAt(column, number)) {
        value = Value();
        return;
    }
    const std::uint64_t bits = mixed(number, column);
    switch (column) {
    case Id:
        value = std::int64_t{static_cast<std::int32_t>(number)};
        break;
    case BigId:
        value = static_cast<std::int64_t>(bits >> 1);
        break;
    case Name:
        fillName(number, bits, value);
        break;
    case Code:
        fillCode(bits, value);
        break;
    case Amount: {
        Decimal amount;
        amount.magnitude = bits % 10'000'000'000;
        amount.scale = 4;
        amount.negative = amount.magnitude != 0 && (bits >> 60) == 0;
        value = amount;
        break;
    }
    case Created: {
        const std::int64_t units = static_cast<std::int64_t>(bits % (86400 * 300)); // of 1/300 s
        value = DateTimeValue{Days1900 + 36524 + static_cast<std::int32_t>((bits >> 32) % 9000),
                              (units * 100'000 + 1) / 3, 0};
        break;
    }
    case Ratio:
        value = static_cast<double>(bits >> 11) * 0x1p-53;
        break;
    case Active:
        value = static_cast<std::int64_t>(bits & 1);
        break;
    default: {
        Guid guid;
        const std::uint64_t more = mixed(number, column + 1);
        for (std::size_t i = 0; i < 8; ++i) {
            guid.bytes[i] = static_cast<std::uint8_t>(bits >> (8 * i));
            guid.bytes[8 + i] = static_cast<std::uint8_t>(more >> (8 * i));
        }
        value = guid;
    }
    }
}

} // namespace SampleServer
