#pragma once

#include "Foundation/KNValue.h"
#include "KNSharedExport.h"

#include <cstddef>

/// One cell of a KNRowStore as it stands in its memory: a tag and the raw value. Usable as long as the store
/// keeps the row. Any thread.
struct KNSHARED_EXPORT KNRowCell
{
    enum Tag : unsigned char {
        Null,
        False,
        True,
        Int32,
        Int64,
        Float,
        Double,
        Text,
        Bytes,
        Guid,
        Date,
        Decimal,
        NegativeDecimal,
    };

    Tag tag = Null;
    const unsigned char *data = nullptr;
    std::size_t length = 0;

    /// Reads the cell that begins at a place of a store's memory.
    static KNRowCell at(const unsigned char *position);
    /// Where the next cell begins.
    const unsigned char *end() const { return data + length; }

    KNValue value() const;
    /// The same, but of text and bytes only the first `limit` bytes, without a character that is cut there.
    KNValue value(std::size_t limit) const;
};
