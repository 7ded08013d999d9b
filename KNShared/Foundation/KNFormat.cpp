#include "Foundation/KNFormat.h"

#include "Foundation/KNFloatText.h"

#include <cmath>
#include <optional>

namespace {

/// The parts of a conversion such as "%08.3lld".
struct Conversion
{
    QChar type;
    int width = 0;
    int precision = -1;
    bool zeroPadded = false;
    qsizetype length = 0; ///< in UTF-16 units, including the percent sign
};

/// Reads a number of at most three digits; further digits make the conversion invalid.
int readNumber(QStringView format, qsizetype *index)
{
    int number = 0;
    for (int digits = 0; digits < 3 && *index < format.size(); ++digits, ++*index) {
        const char16_t unit = format[*index].unicode();
        if (unit < u'0' || unit > u'9')
            break;
        number = number * 10 + (unit - u'0');
    }
    return number;
}

/// Reads the conversion at the start of `format`, which begins with a percent sign; empty if there is none.
std::optional<Conversion> readConversion(QStringView format)
{
    Conversion conversion;
    qsizetype index = 1;
    if (index < format.size() && format[index] == u'0') {
        conversion.zeroPadded = true;
        ++index;
    }
    conversion.width = readNumber(format, &index);
    if (index < format.size() && format[index] == u'.')
        conversion.precision = readNumber(format, &++index);
    for (int modifiers = 0; modifiers < 2 && index < format.size() && format[index] == u'l'; ++modifiers)
        ++index;
    if (index >= format.size() || !QStringView(u"@diuxXfsp%").contains(format[index]))
        return std::nullopt;
    conversion.type = format[index];
    conversion.length = index + 1;
    return conversion;
}

QString padded(const QString &text, int width, bool zeroPadded)
{
    if (!zeroPadded || !text.startsWith(u'-'))
        return text.rightJustified(width, zeroPadded ? u'0' : u' ');
    return u'-' + text.mid(1).rightJustified(width - 1, u'0');
}

QString pointerText(const void *pointer)
{
    return QStringLiteral("0x") + QString::number(reinterpret_cast<quintptr>(pointer), 16);
}

template <typename Number>
QString numberText(Number number, QChar type, int precision)
{
    switch (type.unicode()) {
    case u'f':
        return QString::number(static_cast<double>(number), 'f', precision < 0 ? 6 : precision);
    case u'd':
    case u'i':
    case u'u':
        if constexpr (std::is_floating_point_v<Number>)
            return QString::number(number < 0 ? std::ceil(number) : std::floor(number), 'f', 0);
        else if (type == u'u')
            return QString::number(static_cast<quint64>(number));
        else
            return QString::number(number);
    case u'x':
    case u'X':
        if constexpr (std::is_integral_v<Number>) {
            const QString text = QString::number(static_cast<quint64>(number), 16);
            return type == u'X' ? text.toUpper() : text;
        }
        break;
    default:
        break;
    }
    if constexpr (std::is_floating_point_v<Number>)
        return KNFloatText(number);
    else
        return QString::number(number);
}

} // namespace

QString KNFormatArgument::formatted(QChar type, int width, bool zeroPadded, int precision) const
{
    return std::visit(
        [&]<typename Stored>(const Stored &stored) {
            if constexpr (std::is_same_v<Stored, QString>)
                return padded(stored.isNull() ? QStringLiteral("(null)") : stored, width, false);
            else if constexpr (std::is_same_v<Stored, const void *>)
                return padded(pointerText(stored), width, false);
            else
                return padded(numberText(stored, type, precision), width, zeroPadded);
        },
        m_value);
}

QString KNFormatList(QStringView format, std::initializer_list<KNFormatArgument> arguments)
{
    QString result;
    result.reserve(format.size() * 2);
    const auto *argument = arguments.begin();
    qsizetype position = 0;
    while (position < format.size()) {
        const qsizetype percent = format.indexOf(u'%', position);
        if (percent < 0)
            break;
        result += format.mid(position, percent - position);
        position = percent;

        const auto conversion = readConversion(format.mid(position));
        if (conversion && conversion->type == u'%') {
            result += u'%';
        } else if (conversion && argument != arguments.end()) {
            result += argument->formatted(conversion->type, conversion->width, conversion->zeroPadded,
                                          conversion->precision);
            ++argument;
        } else {
            const qsizetype kept = conversion ? conversion->length : 1;
            result += format.mid(position, kept);
            position += kept;
            continue;
        }
        position += conversion->length;
    }
    return result += format.mid(position);
}
