#pragma once

#include "KNSharedExport.h"

#include <QString>

#include <initializer_list>
#include <type_traits>
#include <variant>

/// An argument of KNFormat.
class KNSHARED_EXPORT KNFormatArgument
{
public:
    KNFormatArgument(const QString &text)
        : m_value(text)
    {
    }
    KNFormatArgument(const char *utf8)
        : m_value(QString::fromUtf8(utf8))
    {
    }
    KNFormatArgument(double number)
        : m_value(number)
    {
    }
    KNFormatArgument(const void *pointer)
        : m_value(pointer)
    {
    }
    template <typename Integer>
    requires std::is_integral_v<Integer> KNFormatArgument(Integer number)
    {
        if constexpr (std::is_signed_v<Integer>)
            m_value = static_cast<qint64>(number);
        else
            m_value = static_cast<quint64>(number);
    }

    /// Formats the argument for the conversion `type`.
    QString formatted(QChar type, int width, bool zeroPadded, int precision) const;

private:
    std::variant<QString, qint64, quint64, double, const void *> m_value;
};

/// Replaces the conversions of a template with its arguments in one pass. Supports %@ %d %i %u %ld %lu %lld
/// %llu %x %X %f %0.2f %02ld %s %p and %%. A null text is written as "(null)"; a conversion without an
/// argument stays unchanged.
KNSHARED_EXPORT QString KNFormatList(QStringView format, std::initializer_list<KNFormatArgument> arguments);

/// KNFormat("DROP TABLE %@.%@", schema, table)
template <typename... Arguments>
QString KNFormat(const char *format, const Arguments &...arguments)
{
    return KNFormatList(QString::fromUtf8(format), {KNFormatArgument(arguments)...});
}

template <typename... Arguments>
QString KNFormat(const QString &format, const Arguments &...arguments)
{
    return KNFormatList(format, {KNFormatArgument(arguments)...});
}
