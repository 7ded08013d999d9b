#pragma once

#include "Types/ResultSink.h"
#include "Types/Value.h"

#include <cstdint>
#include <span>
#include <vector>

namespace SampleServer {

/// Generates the rows of the table-valued function generate_rows(n): nine columns of mixed types, some NULL,
/// about 160 bytes per row on the wire. A row number always gives the same row. Specific to this server, for
/// benchmarks: no memory is allocated per row once the buffers have grown.
class RowGenerator
{
public:
    static const std::vector<ColumnInfo> &columns();

    /// `wanted` are positions in columns(), in output order.
    explicit RowGenerator(std::vector<std::size_t> wanted);

    /// Returns the row with this number (from 1); valid until the next call.
    std::span<const Value> row(std::int64_t number);

    /// Writes one column of a row into `value`, reusing its memory.
    static void fill(std::size_t column, std::int64_t number, Value &value);

private:
    std::vector<std::size_t> m_wanted;
    std::vector<Value> m_values;
    std::vector<Value> m_spare; ///< keeps the text buffers of columns that are currently NULL
};

} // namespace SampleServer
