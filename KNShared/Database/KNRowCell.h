#pragma once

#include "Foundation/KNValue.h"
#include "KNSharedExport.h"

#include <cstddef>

/// One cell of a KNRowStore as it stands in its memory: a tag and the raw value. Usable as long as the store
/// keeps the row. Any thread.
///
/// Most cells have one value. The last three kinds have two: value(), which a connector's code reads, and
/// storedValue(), which is what the server sent and what copies, exports and grids show.
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

    /// Reads the cell that begins at a place of a store's memory.
    static KNRowCell at(const unsigned char *position);
    /// Where the next cell begins.
    const unsigned char *end() const { return data + length; }

    KNValue value() const;
    /// The same, but of text and bytes only the first `limit` bytes, without a character that is cut there.
    KNValue value(std::size_t limit) const;
    /// Everything that the server sent. Text that is not UTF-8 has U+FFFD for what does not decode.
    KNValue storedValue() const;
    KNValue storedValue(std::size_t limit) const;

    /// Whether the value is a number or a boolean, as KNValue::isNumber() of the stored value.
    bool isNumber() const;
    /// The date of a cell of the kind Date or OffsetDate; a default one for every other kind.
    KNDateTime dateTime() const;

private:
    KNRowCell limitedTo(std::size_t limit) const;
};
