#include "Import/KNImportColumnAnalysis.h"

#include "Import/KNImportDateText.h"
#include "Import/KNImportNumberText.h"

#include <algorithm>
#include <cmath>

int KNImportColumnAnalysis::dataType() const
{
    if (m_values == 0)
        return Text;
    return m_areNumbers ? Numeric : m_areDates ? Date : Text;
}

void KNImportColumnAnalysis::add(const QString &value)
{
    if (value.isEmpty()) {
        ++m_nulls;
        return;
    }
    ++m_values;
    m_maxLength = std::max(m_maxLength, static_cast<quint64>(value.size()));
    if (m_areNumbers)
        addNumber(value);
    if (m_areDates)
        m_areDates = KNImportDateText::read(value, {}).has_value();
}

/// "007" is no number: as one it would lose its zeros.
void KNImportColumnAnalysis::addNumber(const QString &value)
{
    const auto number = KNImportNumberText::read(value, QLatin1Char('.'));
    m_areNumbers = number && number->text == value && !number->hasLeadingZeros;
    if (!m_areNumbers)
        return;
    m_hasExponent = m_hasExponent || number->hasExponent;
    m_integerDigits = std::max(m_integerDigits, number->integerDigits);
    m_fractionDigits = std::max(m_fractionDigits, number->fractionDigits);
    bool fits = false;
    qint64 whole = number->text.section(QLatin1Char('.'), 0, 0).toLongLong(&fits);
    if (!fits || number->hasExponent) {
        const double rounded = std::trunc(number->text.toDouble());
        constexpr double Limit = 9223372036854775808.0; // 2^63
        whole = rounded >= Limit    ? std::numeric_limits<qint64>::max()
                : rounded <= -Limit ? std::numeric_limits<qint64>::min()
                                    : static_cast<qint64>(rounded);
    }
    m_maximum = std::max(m_maximum, whole);
    m_minimum = std::min(m_minimum, whole);
}
