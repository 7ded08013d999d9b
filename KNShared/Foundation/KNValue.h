#pragma once

#include "Foundation/KNDateTime.h"
#include "Foundation/KNDecimal.h"
#include "KNSharedExport.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <variant>

/// One value of a result row or an edit: null, bool, 32- or 64-bit integer, float, double, decimal, text,
/// date or bytes. A value type, usable on any thread.
class KNSHARED_EXPORT KNValue
{
public:
    enum class Kind { Null, Bool, Int32, Int64, Float, Double, Decimal, Text, Date, Bytes };

    KNValue() = default;
    explicit KNValue(bool value)
        : m_value(value)
    {
    }
    explicit KNValue(qint32 value)
        : m_value(value)
    {
    }
    explicit KNValue(qint64 value)
        : m_value(value)
    {
    }
    explicit KNValue(float value)
        : m_value(value)
    {
    }
    explicit KNValue(double value)
        : m_value(value)
    {
    }
    explicit KNValue(const KNDecimal &value)
        : m_value(value)
    {
    }
    explicit KNValue(const KNDateTime &value)
        : m_value(value)
    {
    }
    explicit KNValue(const QDateTime &value)
        : m_value(KNDateTime::fromQDateTime(value))
    {
    }
    explicit KNValue(QByteArray value)
        : m_value(std::move(value))
    {
    }
    /// A null QString gives the null value, an empty one gives empty text.
    explicit KNValue(const QString &value);
    KNValue(const char *) = delete;

    Kind kind() const { return static_cast<Kind>(m_value.index()); }
    bool isNull() const { return kind() == Kind::Null; }
    bool isText() const { return kind() == Kind::Text; }
    /// True for integers, floating-point and exact numbers, and booleans.
    bool isNumber() const;

    /// The text of a text value; a null QString for other kinds.
    QString text() const;
    /// The bytes of a bytes value; null for other kinds.
    QByteArray bytes() const;
    /// The date of a date value in UTC with milliseconds; invalid for other kinds.
    QDateTime date() const;
    /// The date with all stored parts; a default-constructed one for other kinds.
    KNDateTime dateTime() const;
    /// The value of a decimal, integer or boolean; 0 for other kinds.
    KNDecimal decimal() const;
    /// A number as a double; 0 for other kinds.
    double toDouble() const;
    /// A number truncated to an integer; text is parsed as a number; 0 for other kinds.
    qint64 toInt64() const;
    /// For numbers, whether it is not zero. For text, whether its first character is one of Y y T t 1 to 9,
    /// after blanks, one sign and zeros. Otherwise false.
    bool toBool() const;

    /// The value as text without loss: integers and decimals in plain notation, float and double in the
    /// shortest form that reads back the same, dates as stored, bytes as 0x and upper-case hexadecimal,
    /// booleans as 1 and 0. A null QString for null. Independent of the locale.
    QString displayText() const;

    /// Equal kind and equal value.
    friend bool operator==(const KNValue &left, const KNValue &right) = default;

private:
    std::variant<std::monostate, bool, qint32, qint64, float, double, KNDecimal, QString, KNDateTime,
                 QByteArray>
        m_value;
};
