#pragma once

#include "Database/KNRowCell.h"
#include "KNSharedExport.h"

/// The sort key of a row for one of its cells, small enough to have one for each of many millions of rows.
/// Valid as long as the store keeps the rows. NULL comes first, then numbers by value, dates, text without
/// regard to case (by code point, independent of the locale) and then exactly, and bytes.
class KNSHARED_EXPORT KNRowSortKey
{
public:
    KNRowSortKey() = default;
    explicit KNRowSortKey(const KNRowCell &cell);

    /// Returns a negative number, 0 or a positive number.
    static int compared(const KNRowSortKey &left, const KNRowSortKey &right)
    {
        if (left.m_rank != right.m_rank)
            return left.m_rank < right.m_rank ? -1 : 1;
        if (left.m_prefix != right.m_prefix)
            return left.m_prefix < right.m_prefix ? -1 : 1;
        return left.m_isExact && right.m_isExact ? 0 : left.comparedWhole(right);
    }

private:
    enum class Rank : quint8 { Null, Number, Date, Text, Bytes };

    /// Compares keys of the same rank and prefix.
    int comparedWhole(const KNRowSortKey &other) const;

    quint64 m_prefix = 0; ///< orders keys of the same rank unless their prefixes are equal
    const unsigned char *m_data = nullptr;
    quint32 m_length = 0;
    KNRowCell::Tag m_tag = KNRowCell::Null;
    Rank m_rank = Rank::Null;
    bool m_isExact = true; ///< the prefix contains the whole value

    KNRowCell cell() const { return {m_tag, m_data, m_length}; }
};
