#include "Wire/ResultWriter.h"

#include "Types/Text.h"

#include <stdexcept>

namespace SampleServer {

namespace {

namespace Token {
constexpr std::uint8_t ColumnMetadata = 0x81, AltMetadata = 0x88, ReturnValue = 0xAC, Row = 0xD1,
                       NullBitmapRow = 0xD2, AltRow = 0xD3;
} // namespace Token

namespace ColumnFlag {
constexpr std::uint16_t Nullable = 0x01, Updatable = 0x04, Identity = 0x10, Computed = 0x20;
} // namespace ColumnFlag

std::uint8_t computeOperator(ComputeColumn::Function function)
{
    switch (function) {
    case ComputeColumn::Function::Count:
        return 0x4B;
    case ComputeColumn::Function::Sum:
        return 0x4D;
    case ComputeColumn::Function::Avg:
        return 0x4F;
    case ComputeColumn::Function::Min:
        return 0x51;
    case ComputeColumn::Function::Max:
        break;
    }
    return 0x52;
}

std::uint16_t flagsOf(const ColumnInfo &column)
{
    unsigned flags = 0;
    if (column.nullable)
        flags |= ColumnFlag::Nullable;
    if (column.updatable)
        flags |= ColumnFlag::Updatable;
    if (column.identity)
        flags |= ColumnFlag::Identity;
    if (column.computed)
        flags |= ColumnFlag::Computed;
    return static_cast<std::uint16_t>(flags);
}

} // namespace

/// UserType, flags, TYPE_INFO and, if the type requires it, an empty table name.
void ResultWriter::putDescription(const WireType &wire, std::uint16_t flags)
{
    if (m_version >= TdsVersion::V72)
        m_out.put<std::uint32_t>(0);
    else
        m_out.put<std::uint16_t>(0);
    m_out.put(flags);
    putTypeInfo(m_out, wire);
}

void ResultWriter::columns(const std::vector<ColumnInfo> &columns)
{
    m_columns.clear();
    m_computeColumns.clear();
    m_out.put(Token::ColumnMetadata);
    m_out.put(static_cast<std::uint16_t>(columns.size()));
    for (const ColumnInfo &column : columns) {
        const WireType &wire = m_columns.emplace_back(wireType(column.type, column.nullable, m_version));
        putDescription(wire, flagsOf(column));
        if (wire.form == LengthForm::TextPointer) {
            // An empty table name: a count of parts from 7.2, one text before.
            if (m_version >= TdsVersion::V72)
                m_out.put<std::uint8_t>(0);
            else
                m_out.put<std::uint16_t>(0);
        }
        m_out.putShortText(toUtf16(column.name));
    }
    m_nullBitmap.resize((columns.size() + 7) / 8);
}

void ResultWriter::row(std::span<const Value> values)
{
    if (values.size() != m_columns.size())
        throw std::logic_error("A row has not as many values as there are columns.");
    if (m_version >= TdsVersion::V73B && putNullBitmapRow(values))
        return;
    m_out.put(Token::Row);
    for (std::size_t index = 0; index < values.size(); ++index)
        m_values.put(m_columns[index], values[index]);
}

/// Writes the row with a NULL bitmap if that is shorter; otherwise returns false.
bool ResultWriter::putNullBitmapRow(std::span<const Value> values)
{
    std::size_t saved = 0;
    for (std::size_t index = 0; index < values.size(); ++index) {
        if (isNull(values[index]))
            saved += m_columns[index].nullSize();
    }
    if (saved <= m_nullBitmap.size())
        return false;
    std::fill(m_nullBitmap.begin(), m_nullBitmap.end(), std::uint8_t{0});
    for (std::size_t index = 0; index < values.size(); ++index) {
        if (isNull(values[index]))
            m_nullBitmap[index / 8] = static_cast<std::uint8_t>(m_nullBitmap[index / 8] | 1u << index % 8);
    }
    m_out.put(Token::NullBitmapRow);
    m_out.putBytes(m_nullBitmap.data(), m_nullBitmap.size());
    for (std::size_t index = 0; index < values.size(); ++index) {
        if (!isNull(values[index]))
            m_values.put(m_columns[index], values[index]);
    }
    return true;
}

void ResultWriter::computeColumns(std::uint16_t id, const std::vector<ComputeColumn> &columns,
                                  const std::vector<std::uint16_t> &byColumns)
{
    std::vector<WireType> &wires = m_computeColumns[id];
    wires.clear();
    m_out.put(Token::AltMetadata);
    m_out.put(static_cast<std::uint16_t>(columns.size()));
    m_out.put(id);
    m_out.put(static_cast<std::uint8_t>(byColumns.size()));
    m_out.putBytes(byColumns.data(), byColumns.size() * sizeof byColumns[0]);
    for (const ComputeColumn &column : columns) {
        m_out.put(computeOperator(column.function));
        m_out.put(column.operand);
        putDescription(wires.emplace_back(wireType(column.type, true, m_version)), ColumnFlag::Nullable);
        m_out.put<std::uint8_t>(0); // no name
    }
}

void ResultWriter::computeRow(std::uint16_t id, std::span<const Value> values)
{
    const auto found = m_computeColumns.find(id);
    if (found == m_computeColumns.end() || found->second.size() != values.size())
        throw std::logic_error("A compute row does not match what was announced.");
    m_out.put(Token::AltRow);
    m_out.put(id);
    for (std::size_t index = 0; index < values.size(); ++index)
        m_values.put(found->second[index], values[index]);
}

void ResultWriter::returnValue(std::uint16_t ordinal, std::string_view name, const SqlType &type,
                               const Value &value)
{
    constexpr std::uint8_t outputParameter = 1;
    const WireType wire = wireType(type, true, m_version);
    m_out.put(Token::ReturnValue);
    m_out.put(ordinal);
    m_out.putShortText(toUtf16(name));
    m_out.put(outputParameter);
    putDescription(wire, ColumnFlag::Nullable);
    m_values.put(wire, value);
}

} // namespace SampleServer
