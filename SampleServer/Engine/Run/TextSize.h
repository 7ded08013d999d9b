#pragma once

#include "Engine/Bind/Bound.h"

#include <span>
#include <vector>

namespace SampleServer {

/// SET TEXTSIZE: truncates the values of text, image and the (max) types to this number of bytes when they
/// are sent.
class TextSizeLimit
{
public:
    TextSizeLimit(const Bound::Query &query, std::int32_t bytes);

    /// Returns the row itself if nothing is truncated, otherwise a copy that is valid until the next call.
    std::span<const Value> apply(std::span<const Value> row) const;

private:
    bool exceeds(std::size_t column, const Value &value) const;

    std::size_t m_bytes;
    std::vector<std::pair<std::size_t, bool>>
        m_long; ///< positions of long columns, and whether they are Unicode
    mutable std::vector<Value> m_cut;
};

} // namespace SampleServer
