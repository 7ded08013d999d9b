#pragma once

#include "Wire/TokenWriter.h"
#include "Wire/ValueWriter.h"

#include <map>

namespace SampleServer {

/// Writes the tokens for columns and rows: COLMETADATA, ROW, NBCROW, ALTMETADATA, ALTROW, RETURNVALUE.
class ResultWriter
{
public:
    ResultWriter(PacketWriter &out, TdsVersion version)
        : m_out(out)
        , m_version(version)
        , m_values(out, version)
    {
    }

    void columns(const std::vector<ColumnInfo> &columns);
    /// Throws std::logic_error if the number of values differs from the number of columns.
    void row(std::span<const Value> values);
    void computeColumns(std::uint16_t id, const std::vector<ComputeColumn> &columns,
                        const std::vector<std::uint16_t> &byColumns);
    void computeRow(std::uint16_t id, std::span<const Value> values);
    /// Writes an output parameter; `ordinal` counts the procedure's parameters from 0.
    void returnValue(std::uint16_t ordinal, std::string_view name, const SqlType &type, const Value &value);

private:
    void putDescription(const WireType &wire, std::uint16_t flags);
    bool putNullBitmapRow(std::span<const Value> values);

    PacketWriter &m_out;
    TdsVersion m_version;
    ValueWriter m_values;
    std::vector<WireType> m_columns;
    std::map<std::uint16_t, std::vector<WireType>> m_computeColumns; ///< by their id
    std::vector<std::uint8_t> m_nullBitmap;                          ///< member only to reuse its memory
};

} // namespace SampleServer
