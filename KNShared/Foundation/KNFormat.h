#pragma once

#include "KNSharedExport.h"

#include <QString>

#include <initializer_list>
#include <type_traits>
#include <variant>

/// One argument of KNFormat.
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

    /// The argument as the conversion between % and `type` wants it.
    QString formatted(QChar type, int width, bool zeroPadded, int precision) const;

private:
    std::variant<QString, qint64, quint64, double, const void *> m_value;
};

/// Fills a template with its arguments in one pass. Understands %@ %d %i %u %ld %lu %lld %llu %x %X %f %0.2f
/// %02ld %s %p and %%; a null text prints as "(null)"; a conversion without an argument stays as it is.
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
