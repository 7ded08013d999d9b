#pragma once

#include "Types/ResultSink.h"
#include "Types/Value.h"

#include <cstdint>
#include <span>
#include <vector>

namespace SampleServer {

/// The rows of the table-valued function generate_rows(n): nine columns of mixed types, some NULL, about 160
/// bytes a row on the wire. The same row number always gives the same row. It is this server's own function,
/// for benchmarks: no memory is allocated per row once the buffers have grown.
class RowGenerator
{
public:
    static const std::vector<ColumnInfo> &columns();

    /// Rows of the given columns (places in columns()), in that order.
    explicit RowGenerator(std::vector<std::size_t> wanted);

    /// The row of a number (from 1); valid until the next call.
    std::span<const Value> row(std::int64_t number);

    /// One column of a row, into memory that `value` may already hold.
    static void fill(std::size_t column, std::int64_t number, Value &value);

private:
    std::vector<std::size_t> m_wanted;
    std::vector<Value> m_values;
    std::vector<Value> m_spare; ///< keeps the text buffers of columns that are NULL just now
};

} // namespace SampleServer
