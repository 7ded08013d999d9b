#include "Engine/Storage/SqliteCodec.h"
#include "Types/DateTime.h"
#include "Types/Guid.h"
#include "Types/TypeTraits.h"

#include <charconv>
#include <cstring>

namespace SampleServer {

namespace {

/// The target of encoded values: a statement parameter or the result of a function.
struct ParameterTarget
{
    sqlite3_stmt *statement;
    int index;

    void null() const { sqlite3_bind_null(statement, index); }
    void integer(std::int64_t v) const { sqlite3_bind_int64(statement, index, v); }
    void real(double v) const { sqlite3_bind_double(statement, index, v); }
    void text(const char *data, std::size_t size) const
    {
        sqlite3_bind_text64(statement, index, data, size, SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    void blob(const void *data, std::size_t size) const
    {
        sqlite3_bind_blob64(statement, index, size == 0 ? "" : data, size, SQLITE_TRANSIENT);
    }
};

struct ResultTarget
{
    sqlite3_context *context;

    void null() const { sqlite3_result_null(context); }
    void integer(std::int64_t v) const { sqlite3_result_int64(context, v); }
    void real(double v) const { sqlite3_result_double(context, v); }
    void text(const char *data, std::size_t size) const
    {
        sqlite3_result_text64(context, data, size, SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    void blob(const void *data, std::size_t size) const
    {
        sqlite3_result_blob64(context, size == 0 ? "" : data, size, SQLITE_TRANSIENT);
    }
};

/// The source of encoded values: a column of a row or the argument of a function.
struct ColumnSource
{
    sqlite3_stmt *statement;
    int index;

    bool isNull() const { return sqlite3_column_type(statement, index) == SQLITE_NULL; }
    std::int64_t integer() const { return sqlite3_column_int64(statement, index); }
    double real() const { return sqlite3_column_double(statement, index); }
    const char *text() const { return reinterpret_cast<const char *>(sqlite3_column_text(statement, index)); }
    const void *blob() const { return sqlite3_column_blob(statement, index); }
    std::size_t size() const { return static_cast<std::size_t>(sqlite3_column_bytes(statement, index)); }
};

struct ArgumentSource
{
    sqlite3_value *argument;

    bool isNull() const { return sqlite3_value_type(argument) == SQLITE_NULL; }
    std::int64_t integer() const { return sqlite3_value_int64(argument); }
    double real() const { return sqlite3_value_double(argument); }
    const char *text() const { return reinterpret_cast<const char *>(sqlite3_value_text(argument)); }
    const void *blob() const { return sqlite3_value_blob(argument); }
    std::size_t size() const { return static_cast<std::size_t>(sqlite3_value_bytes(argument)); }
};

Int128 signedNumber(const Decimal &value)
{
    const auto magnitude = static_cast<Int128>(value.magnitude);
    return value.negative ? -magnitude : magnitude;
}

Decimal decimalFrom(Int128 number, std::uint8_t scale)
{
    Decimal value;
    value.negative = number < 0;
    value.magnitude = static_cast<UInt128>(number < 0 ? -number : number);
    value.scale = scale;
    return value;
}

std::int64_t totalTicks(const DateTimeValue &value)
{
    return value.days * TicksPerDay + value.ticks;
}

DateTimeValue fromTotalTicks(std::int64_t ticks)
{
    return {static_cast<std::int32_t>(ticks / TicksPerDay), ticks % TicksPerDay, 0};
}

std::string offsetText(const DateTimeValue &value)
{
    char buffer[24];
    std::snprintf(buffer, sizeof buffer, "%016llx%04x", static_cast<unsigned long long>(totalTicks(value)),
                  static_cast<unsigned>(value.offsetMinutes + 0x8000));
    return buffer;
}

DateTimeValue fromOffsetText(const char *text, std::size_t size)
{
    std::int64_t ticks = 0;
    int offset = 0;
    if (size >= 20) {
        std::from_chars(text, text + 16, ticks, 16);
        std::from_chars(text + 16, text + 20, offset, 16);
    }
    DateTimeValue value = fromTotalTicks(ticks);
    value.offsetMinutes = static_cast<std::int16_t>(offset - 0x8000);
    return value;
}

/// Collects one encoded value as bytes, to store in a sql_variant.
struct BytesTarget
{
    Bytes &bytes;

    void null() const {}
    void integer(std::int64_t v) const
    {
        const auto sortable = sortableBytes(Int128(v));
        bytes.insert(bytes.end(), sortable.begin(), sortable.end());
    }
    void real(double v) const
    {
        std::uint8_t raw[sizeof v];
        std::memcpy(raw, &v, sizeof v);
        bytes.insert(bytes.end(), raw, raw + sizeof v);
    }
    void text(const char *data, std::size_t size) const { bytes.insert(bytes.end(), data, data + size); }
    void blob(const void *data, std::size_t size) const
    {
        const auto *first = static_cast<const std::uint8_t *>(data);
        bytes.insert(bytes.end(), first, first + size);
    }
};

struct BytesSource
{
    const std::uint8_t *data;
    std::size_t count;

    bool isNull() const { return false; }
    std::int64_t integer() const { return static_cast<std::int64_t>(numberFromSortableBytes(data)); }
    double real() const
    {
        double v = 0;
        std::memcpy(&v, data, sizeof v);
        return v;
    }
    const char *text() const { return reinterpret_cast<const char *>(data); }
    const void *blob() const { return data; }
    std::size_t size() const { return count; }
};

constexpr std::size_t VariantHeader = 7; ///< type, length (4 bytes), precision, scale

template <typename Target>
void encode(const Target &target, const Value &value, const SqlType &type);

Bytes variantBytes(const VariantValue &variant)
{
    const auto length = static_cast<std::uint32_t>(variant.type.length);
    Bytes bytes = {static_cast<std::uint8_t>(variant.type.id)};
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.push_back(static_cast<std::uint8_t>(length >> shift));
    bytes.push_back(variant.type.precision);
    bytes.push_back(variant.type.scale);
    encode(BytesTarget{bytes}, variant.value, variant.type);
    return bytes;
}

template <typename Target>
void encode(const Target &target, const Value &value, const SqlType &type)
{
    if (isNull(value))
        return target.null();
    if (const auto *integer = std::get_if<std::int64_t>(&value))
        return target.integer(*integer);
    if (const auto *real = std::get_if<double>(&value))
        return target.real(*real);
    if (const auto *text = std::get_if<std::string>(&value))
        return target.text(text->data(), text->size());
    if (const auto *bytes = std::get_if<Bytes>(&value))
        return target.blob(bytes->data(), bytes->size());
    if (const auto *decimal = std::get_if<Decimal>(&value)) {
        if (isMoney(type.id) || isSmallDecimal(type.precision))
            return target.integer(static_cast<std::int64_t>(signedNumber(*decimal)));
        const auto sortable = sortableBytes(signedNumber(*decimal));
        return target.blob(sortable.data(), sortable.size());
    }
    if (const auto *time = std::get_if<DateTimeValue>(&value)) {
        if (type.id == TypeId::DateTimeOffset) {
            const std::string text = offsetText(*time);
            return target.text(text.data(), text.size());
        }
        return target.integer(type.id == TypeId::Date   ? time->days
                              : type.id == TypeId::Time ? time->ticks
                                                        : totalTicks(*time));
    }
    if (const auto *guid = std::get_if<Guid>(&value)) {
        const auto bytes = sortableBytes(*guid);
        return target.blob(bytes.data(), bytes.size());
    }
    const Bytes bytes = variantBytes(*std::get<std::shared_ptr<const VariantValue>>(value));
    target.blob(bytes.data(), bytes.size());
}

template <typename Source>
void decode(const Source &source, const SqlType &type, Value &value);

Value variantFrom(const std::uint8_t *bytes, std::size_t size)
{
    if (size < VariantHeader)
        return {};
    VariantValue variant;
    std::uint32_t length = 0;
    for (int i = 1; i <= 4; ++i)
        length = length << 8 | bytes[i];
    variant.type = {static_cast<TypeId>(bytes[0]), static_cast<int>(length), bytes[5], bytes[6]};
    decode(BytesSource{bytes + VariantHeader, size - VariantHeader}, variant.type, variant.value);
    return std::make_shared<const VariantValue>(std::move(variant));
}

/// Assigns text or bytes, reusing the memory of the value if possible.
template <typename Container, typename Item>
void assign(Value &value, const Item *data, std::size_t size)
{
    if (auto *container = std::get_if<Container>(&value))
        container->assign(data, data + size);
    else
        value = Container(data, data + size);
}

template <typename Source>
void decode(const Source &source, const SqlType &type, Value &value)
{
    if (source.isNull()) {
        value = Value();
        return;
    }
    if (isInteger(type.id)) {
        value = source.integer();
    } else if (isFloat(type.id)) {
        value = source.real();
    } else if (isText(type.id) || type.id == TypeId::Xml) {
        const char *text = source.text();
        assign<std::string>(value, text, source.size());
    } else if (isMoney(type.id)) {
        value = decimalFrom(source.integer(), 4);
    } else if (type.id == TypeId::Decimal) {
        if (isSmallDecimal(type.precision))
            value = decimalFrom(source.integer(), type.scale);
        else
            value = decimalFrom(numberFromSortableBytes(static_cast<const std::uint8_t *>(source.blob())),
                                type.scale);
    } else if (type.id == TypeId::DateTimeOffset) {
        const char *text = source.text();
        value = fromOffsetText(text, source.size());
    } else if (type.id == TypeId::Date) {
        value = DateTimeValue{static_cast<std::int32_t>(source.integer()), 0, 0};
    } else if (type.id == TypeId::Time) {
        value = DateTimeValue{Days1900, source.integer(), 0};
    } else if (isDateTime(type.id)) {
        value = fromTotalTicks(source.integer());
    } else {
        const auto *bytes = static_cast<const std::uint8_t *>(source.blob());
        const std::size_t size = source.size();
        if (type.id == TypeId::UniqueIdentifier)
            value = guidFromSortableBytes(bytes);
        else if (type.id == TypeId::SqlVariant)
            value = variantFrom(bytes, size);
        else
            assign<Bytes>(value, bytes, size);
    }
}

} // namespace

std::array<std::uint8_t, 16> sortableBytes(Int128 number)
{
    UInt128 shifted = static_cast<UInt128>(number) ^ (UInt128(1) << 127);
    std::array<std::uint8_t, 16> bytes{};
    for (std::size_t i = 16; i > 0; --i, shifted >>= 8)
        bytes[i - 1] = static_cast<std::uint8_t>(shifted);
    return bytes;
}

Int128 numberFromSortableBytes(const std::uint8_t *bytes)
{
    UInt128 number = 0;
    for (int i = 0; i < 16; ++i)
        number = number << 8 | bytes[i];
    return static_cast<Int128>(number ^ (UInt128(1) << 127));
}

void bindValue(sqlite3_stmt *statement, int index, const Value &value, const SqlType &type)
{
    encode(ParameterTarget{statement, index}, value, type);
}

void readColumn(sqlite3_stmt *statement, int index, const SqlType &type, Value &value)
{
    decode(ColumnSource{statement, index}, type, value);
}

void readArgument(sqlite3_value *argument, const SqlType &type, Value &value)
{
    decode(ArgumentSource{argument}, type, value);
}

void returnValue(sqlite3_context *context, const Value &value, const SqlType &type)
{
    encode(ResultTarget{context}, value, type);
}

} // namespace SampleServer
