#include "Results/KNExactSum.h"

#include <QtEndian>

namespace {

constexpr int DigitsOfAverage = 6; // more than the numbers have

} // namespace

void KNExactSum::add(const KNDecimal &number)
{
    unsigned char bytes[16];
    number.toBigEndian(bytes);
    Partial magnitude = qFromBigEndian<quint64>(bytes);
    magnitude = (magnitude << 64) | qFromBigEndian<quint64>(bytes + 8);
    Partial &sum = m_byScale[static_cast<std::size_t>(number.scale())];
    if (number.isNegative())
        sum -= magnitude;
    else
        sum += magnitude;
    m_scale = std::max(m_scale, number.scale());
}

QString KNExactSum::text() const
{
    return text(total(), m_scale);
}

QString KNExactSum::average(qint64 count) const
{
    const Integer scaled = total() * boost::multiprecision::pow(Integer(10), DigitsOfAverage);
    const Integer half = scaled < 0 ? Integer(-count / 2) : Integer(count / 2);
    QString average = text((scaled + half) / count, m_scale + DigitsOfAverage);
    while (average.endsWith(u'0'))
        average.chop(1);
    if (average.endsWith(u'.'))
        average.chop(1);
    return average;
}

double KNExactSum::toDouble() const
{
    return text().toDouble();
}

/// The sum times 10^m_scale.
KNExactSum::Integer KNExactSum::total() const
{
    Integer total = 0;
    for (int scale = 0; scale <= m_scale; ++scale)
        total = total * (scale == 0 ? 1 : 10) + Integer(m_byScale[static_cast<std::size_t>(scale)]);
    return total;
}

QString KNExactSum::text(const Integer &number, int scale)
{
    QString digits = QString::fromStdString(Integer(abs(number)).str()).rightJustified(scale + 1, u'0');
    if (scale > 0)
        digits.insert(digits.size() - scale, u'.');
    return number < 0 ? u'-' + digits : digits;
}
