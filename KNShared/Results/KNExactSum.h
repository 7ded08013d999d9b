#pragma once

#include "Foundation/KNDecimal.h"

#include <boost/multiprecision/cpp_int.hpp>

#include <array>

/// Adds decimal numbers without loss. Any thread, one at a time.
class KNExactSum
{
public:
    void add(const KNDecimal &number);

    /// The sum with the digits after the point of its most exact number.
    QString text() const;
    /// The sum divided by `count`, rounded to six digits more, without trailing zeros.
    QString average(qint64 count) const;
    double toDouble() const;

private:
    using Integer = boost::multiprecision::int512_t;
    /// A billion numbers of 38 digits need less than 160 bits.
    using Partial = boost::multiprecision::int256_t;

    Integer total() const;
    static QString text(const Integer &number, int scale);

    std::array<Partial, KNDecimal::MaximumDigits + 1> m_byScale =
        {};          ///< sums of the magnitudes of each scale
    int m_scale = 0; ///< the largest
};
