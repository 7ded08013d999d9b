#pragma once

#include "Database/KNRowCell.h"
#include "KNSharedExport.h"

/// By what rows are sorted by one of their cells, small enough to have one for each of many millions of rows.
/// Usable as long as the store keeps the rows. NULL comes first, then numbers by value, dates, text without
/// regard to case (by code point, whatever the locale) and then exactly, and bytes.
class KNSHARED_EXPORT KNRowSortKey
{
public:
    KNRowSortKey() = default;
    explicit KNRowSortKey(const KNRowCell &cell);

    /// Below, at or above 0.
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

    /// For keys of the same rank and prefix.
    int comparedWhole(const KNRowSortKey &other) const;

    quint64 m_prefix = 0; ///< orders keys of the same rank as far as it goes
    const unsigned char *m_data = nullptr;
    quint32 m_length = 0;
    KNRowCell::Tag m_tag = KNRowCell::Null;
    Rank m_rank = Rank::Null;
    bool m_isExact = true; ///< the prefix says all

    KNRowCell cell() const { return {m_tag, m_data, m_length}; }
};
