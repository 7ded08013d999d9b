#pragma once

#include "KNSharedExport.h"

#include <QString>

#include <limits>

/// The facts about the values of one column of a file, collected value by value. Nulls and empty values say
/// nothing about a column's type. A value type of any thread.
class KNSHARED_EXPORT KNImportColumnAnalysis
{
public:
    enum DataType : int {
        Text = 0,
        Numeric = 1, ///< every value is a number
        Date = 2,    ///< every value is a date, or a date and a time, in ISO 8601 form
    };

    QString name;

    /// Text for a column without values.
    int dataType() const;
    /// Whether some number has a fractional part.
    bool isDecimal() const { return m_fractionDigits > 0 || m_hasExponent; }
    /// The largest and the smallest number, rounded towards zero; the limits of the type beyond these.
    qint64 maxNumericValue() const { return hasNumbers() ? m_maximum : 0; }
    qint64 minNumericValue() const { return hasNumbers() ? m_minimum : 0; }
    /// The length of the longest value in characters.
    quint64 maxLength() const { return m_maxLength; }
    /// The most digits before and behind the decimal point of any number.
    int integerDigits() const { return m_integerDigits; }
    int fractionDigits() const { return m_fractionDigits; }
    /// Whether some number has an exponent, as floating-point numbers are written.
    bool hasExponent() const { return m_hasExponent; }
    quint64 nullCount() const { return m_nulls; }
    quint64 valueCount() const { return m_values; }

    /// Adds a value; null for NULL.
    void add(const QString &value);
    void addNulls(quint64 count) { m_nulls += count; }

private:
    bool hasNumbers() const { return m_minimum <= m_maximum; }
    void addNumber(const QString &value);

    bool m_areNumbers = true;
    bool m_areDates = true;
    bool m_hasExponent = false;
    int m_integerDigits = 0;
    int m_fractionDigits = 0;
    qint64 m_maximum = std::numeric_limits<qint64>::min();
    qint64 m_minimum = std::numeric_limits<qint64>::max();
    quint64 m_maxLength = 0;
    quint64 m_nulls = 0;
    quint64 m_values = 0;
};
