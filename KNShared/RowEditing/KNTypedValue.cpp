#include "RowEditing/KNTypedValue.h"

#include "Foundation/KNGuidText.h"

#include <QDate>
#include <QRegularExpression>
#include <QTime>

#include <cmath>

namespace {

using Match = QRegularExpressionMatch;

Match matchOf(const char *pattern, const QString &text)
{
    const QRegularExpression expression(QRegularExpression::anchoredPattern(QLatin1String(pattern)));
    return expression.match(text);
}

std::optional<KNValue> integerOf(const QString &text)
{
    bool isNumber = false;
    const qint64 number = text.toLongLong(&isNumber);
    return isNumber ? std::optional(KNValue(number)) : std::nullopt;
}

std::optional<KNValue> numberOf(const QString &text)
{
    if (!matchOf("[+-]?(\\d+\\.?\\d*|\\.\\d+)([eE][+-]?\\d{1,4})?", text).hasMatch())
        return std::nullopt;
    const bool hasExponent = text.contains(u'e', Qt::CaseInsensitive);
    if (!hasExponent) {
        const std::optional<KNDecimal> exact = KNDecimal::fromString(text);
        return exact ? std::optional(KNValue(*exact)) : std::nullopt;
    }
    const double number = text.toDouble();
    return std::isfinite(number) ? std::optional(KNValue(number)) : std::nullopt;
}

std::optional<KNValue> booleanOf(const QString &text)
{
    const QString word = text.toLower();
    if (word == QLatin1String("1") || word == QLatin1String("true"))
        return KNValue(true);
    if (word == QLatin1String("0") || word == QLatin1String("false"))
        return KNValue(false);
    return std::nullopt;
}

/// "hh:mm:ss.fffffff" of three captures: hours and minutes, seconds, and the fraction with its point. Null if
/// there is no such time.
QString timeOf(const Match &match, int firstCapture)
{
    QString hoursAndMinutes = match.captured(firstCapture);
    if (hoursAndMinutes.size() == 4)
        hoursAndMinutes.prepend(u'0');
    QString seconds = match.captured(firstCapture + 1);
    if (seconds.isEmpty())
        seconds = QStringLiteral("00");
    const QString time = hoursAndMinutes + u':' + seconds;
    if (!QTime::fromString(time, QStringLiteral("HH:mm:ss")).isValid())
        return {};
    return time + match.captured(firstCapture + 2);
}

std::optional<KNValue> dateOf(const QString &text)
{
    const bool isDate = QDate::fromString(text, QStringLiteral("yyyy-MM-dd")).isValid();
    return isDate ? std::optional(KNValue(text)) : std::nullopt;
}

std::optional<KNValue> dateAndTimeOf(const QString &text)
{
    const Match match = matchOf("(\\d{4}-\\d\\d-\\d\\d)(?:[T ](\\d?\\d:\\d\\d)(?::(\\d\\d)(\\.\\d{1,7})?)?)?"
                                " ?(Z|[+-]\\d\\d:\\d\\d)?",
                                text);
    if (!match.hasMatch() || !dateOf(match.captured(1)))
        return std::nullopt;
    const QString time = match.captured(2).isEmpty() ? QStringLiteral("00:00:00") : timeOf(match, 2);
    if (time.isNull())
        return std::nullopt;
    return KNValue(match.captured(1) + u'T' + time + match.captured(5));
}

std::optional<KNValue> timeValueOf(const QString &text)
{
    const Match match = matchOf("(\\d?\\d:\\d\\d)(?::(\\d\\d)(\\.\\d{1,7})?)?", text);
    const QString time = match.hasMatch() ? timeOf(match, 1) : QString();
    return time.isNull() ? std::nullopt : std::optional(KNValue(time));
}

std::optional<KNValue> guidOf(const QString &text)
{
    const auto guid = KNGuidText::read(text);
    return guid ? std::optional(KNValue(*guid)) : std::nullopt;
}

std::optional<KNValue> bytesOf(const QString &text)
{
    if (!matchOf("0[xX]([0-9a-fA-F]{2})*", text).hasMatch())
        return std::nullopt;
    const QByteArray bytes = QByteArray::fromHex(QStringView(text).mid(2).toLatin1());
    return KNValue(bytes.isNull() ? QByteArray("") : bytes);
}

std::optional<KNValue> valueOf(const QString &text, KNTypedValue::Input input)
{
    switch (input) {
    case KNTypedValue::Input::Text:
        break;
    case KNTypedValue::Input::Integer:
        return integerOf(text);
    case KNTypedValue::Input::Number:
        return numberOf(text);
    case KNTypedValue::Input::Boolean:
        return booleanOf(text);
    case KNTypedValue::Input::Date:
        return dateOf(text);
    case KNTypedValue::Input::DateAndTime:
        return dateAndTimeOf(text);
    case KNTypedValue::Input::Time:
        return timeValueOf(text);
    case KNTypedValue::Input::Guid:
        return guidOf(text);
    case KNTypedValue::Input::Binary:
        return bytesOf(text);
    }
    return KNValue(text);
}

} // namespace

std::optional<KNValue> KNTypedValue::read(const QString &text, Input input, QString *problem)
{
    problem->clear();
    if (input == Input::Text)
        return KNValue(text.isNull() ? QStringLiteral("") : text);
    const std::optional<KNValue> value = valueOf(text.trimmed(), input);
    if (value)
        return value;
    switch (input) {
    case Input::Text:
        break;
    case Input::Integer:
        *problem = tr("Enter a whole number, such as 42.");
        break;
    case Input::Number:
        *problem = tr("Enter a number of at most 38 digits, such as 12.50, or one such as 1e-5.");
        break;
    case Input::Boolean:
        *problem = tr("Enter 1 or 0.");
        break;
    case Input::Date:
        *problem = tr("Enter a date such as 2024-02-29.");
        break;
    case Input::DateAndTime:
        *problem = tr("Enter a date and a time such as 2024-02-29 13:45:00.");
        break;
    case Input::Time:
        *problem = tr("Enter a time such as 13:45:00.");
        break;
    case Input::Guid:
        *problem = tr("Enter a GUID such as 6F9619FF-8B86-D011-B42D-00C04FC964FF.");
        break;
    case Input::Binary:
        *problem = tr("Enter 0x and pairs of hexadecimal digits, such as 0x0AFF.");
        break;
    }
    return std::nullopt;
}
