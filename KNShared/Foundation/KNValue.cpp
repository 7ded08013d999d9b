#include "Foundation/KNValue.h"

#include "Foundation/KNFloatText.h"

#include <cmath>
#include <limits>
#include <type_traits>

namespace {

qint64 cutToInt64(double number)
{
    constexpr double Limit = 9223372036854775808.0; // 2^63, the first double that no longer fits
    if (std::isnan(number))
        return 0;
    if (number >= Limit)
        return std::numeric_limits<qint64>::max();
    if (number < -Limit)
        return std::numeric_limits<qint64>::min();
    return static_cast<qint64>(number);
}

qint64 cutToInt64(const KNDecimal &number)
{
    const QString text = number.toString();
    bool fits = false;
    const qint64 whole = QStringView(text).left(text.indexOf(u'.')).toLongLong(&fits);
    if (fits)
        return whole;
    return number.isNegative() ? std::numeric_limits<qint64>::min() : std::numeric_limits<qint64>::max();
}

qint64 readInt64(const QString &text)
{
    const QString trimmed = text.trimmed();
    if (const auto decimal = KNDecimal::fromString(trimmed))
        return cutToInt64(*decimal);
    return cutToInt64(trimmed.toDouble());
}

bool readsAsTrue(const QString &text)
{
    QStringView rest = QStringView(text).trimmed();
    if (rest.startsWith(u'+') || rest.startsWith(u'-'))
        rest = rest.sliced(1);
    while (rest.startsWith(u'0'))
        rest = rest.sliced(1);
    return !rest.isEmpty() && QStringView(u"YyTt123456789").contains(rest.front());
}

} // namespace

KNValue::KNValue(const QString &value)
{
    if (!value.isNull())
        m_value = value;
}

bool KNValue::isNumber() const
{
    return kind() >= Kind::Bool && kind() <= Kind::Decimal;
}

QString KNValue::text() const
{
    const auto *text = std::get_if<QString>(&m_value);
    return text != nullptr ? *text : QString();
}

QByteArray KNValue::bytes() const
{
    const auto *bytes = std::get_if<QByteArray>(&m_value);
    return bytes != nullptr ? *bytes : QByteArray();
}

QDateTime KNValue::date() const
{
    const auto *date = std::get_if<KNDateTime>(&m_value);
    return date != nullptr ? date->toQDateTime() : QDateTime();
}

KNDateTime KNValue::dateTime() const
{
    const auto *date = std::get_if<KNDateTime>(&m_value);
    return date != nullptr ? *date : KNDateTime();
}

KNDecimal KNValue::decimal() const
{
    return std::visit(
        []<typename Stored>(const Stored &stored) -> KNDecimal {
            if constexpr (std::is_same_v<Stored, KNDecimal>)
                return stored;
            else if constexpr (std::is_integral_v<Stored>)
                return KNDecimal(qint64(stored));
            else
                return {};
        },
        m_value);
}

double KNValue::toDouble() const
{
    return std::visit(
        []<typename Stored>(const Stored &stored) -> double {
            if constexpr (std::is_arithmetic_v<Stored>)
                return static_cast<double>(stored);
            else if constexpr (std::is_same_v<Stored, KNDecimal>)
                return stored.toDouble();
            else
                return 0;
        },
        m_value);
}

qint64 KNValue::toInt64() const
{
    return std::visit(
        []<typename Stored>(const Stored &stored) -> qint64 {
            if constexpr (std::is_integral_v<Stored>)
                return static_cast<qint64>(stored);
            else if constexpr (std::is_floating_point_v<Stored> || std::is_same_v<Stored, KNDecimal>)
                return cutToInt64(stored);
            else if constexpr (std::is_same_v<Stored, QString>)
                return readInt64(stored);
            else
                return 0;
        },
        m_value);
}

bool KNValue::toBool() const
{
    return std::visit(
        []<typename Stored>(const Stored &stored) {
            if constexpr (std::is_arithmetic_v<Stored>)
                return stored != 0;
            else if constexpr (std::is_same_v<Stored, KNDecimal>)
                return !stored.isZero();
            else if constexpr (std::is_same_v<Stored, QString>)
                return readsAsTrue(stored);
            else
                return false;
        },
        m_value);
}

QString KNValue::displayText() const
{
    return std::visit(
        []<typename Stored>(const Stored &stored) -> QString {
            if constexpr (std::is_same_v<Stored, std::monostate>)
                return {};
            else if constexpr (std::is_integral_v<Stored>)
                return QString::number(qint64(stored));
            else if constexpr (std::is_floating_point_v<Stored>)
                return KNFloatText(stored);
            else if constexpr (std::is_same_v<Stored, QString>)
                return stored;
            else if constexpr (std::is_same_v<Stored, QByteArray>)
                return QStringLiteral("0x") + QString::fromLatin1(stored.toHex().toUpper());
            else
                return stored.toString();
        },
        m_value);
}
