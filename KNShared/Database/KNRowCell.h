#pragma once

#include "Foundation/KNValue.h"
#include "KNSharedExport.h"

#include <cstddef>

/// One cell in the memory of a KNRowStore: a tag and the raw value. Valid as long as the store keeps the row.
/// Any thread.
///
/// Most kinds have one value. The last three have two: value(), which the connector's code reads, and
/// storedValue(), the value that the server sent, for copies, exports and grids.
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
        OffsetDate, ///< a date with an offset; value() is text
        FloatMoney, ///< ten-thousandths in 32 bits; value() is a float
        FlagBytes,  ///< bytes of an unknown type; value() is whether the first 32-bit word is not zero
    };

    Tag tag = Null;
    const unsigned char *data = nullptr;
    std::size_t length = 0;

    /// Reads the cell that begins at `position` in a store's memory.
    static KNRowCell at(const unsigned char *position);
    /// The start of the next cell.
    const unsigned char *end() const { return data + length; }

    KNValue value() const;
    /// Like value(), but reads only the first `limit` bytes of text and bytes, without a partial character at
    /// the end.
    KNValue value(std::size_t limit) const;
    /// The complete value that the server sent. In text that is not UTF-8, U+FFFD replaces undecodable bytes.
    KNValue storedValue() const;
    KNValue storedValue(std::size_t limit) const;

    /// Whether KNValue::isNumber() is true for the stored value: a number or a boolean.
    bool isNumber() const;
    /// The date of a cell of kind Date or OffsetDate; a default-constructed one for other kinds.
    KNDateTime dateTime() const;

private:
    KNRowCell limitedTo(std::size_t limit) const;
};
