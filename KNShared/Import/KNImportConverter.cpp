#include "Import/KNImportConverter.h"

#include "Foundation/KNDecimal.h"
#include "Foundation/KNGuidText.h"
#include "Import/KNImportDateText.h"
#include "Import/KNImportNumberText.h"

#include <algorithm>
#include <cmath>

using ColumnKind = KNImportColumnType::Kind;

namespace {

std::nullopt_t refused(QString *reason, const QString &text)
{
    *reason = text;
    return std::nullopt;
}

/// Whether each UTF-16 unit belongs to a character that a statement can contain.
bool isSendable(const QString &text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c.isNull())
            return false;
        if (!c.isSurrogate())
            continue;
        if (!c.isHighSurrogate() || i + 1 >= text.size() || !text[i + 1].isLowSurrogate())
            return false;
        ++i;
    }
    return true;
}

bool isAnyOf(const QString &text, std::initializer_list<const char *> words)
{
    return std::any_of(words.begin(), words.end(), [&](const char *word) {
        return text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
    });
}

/// Whether a text is what a statement contains for this number. Most integers need no further reading.
bool isPlainInteger(const QString &text)
{
    constexpr qsizetype SafeDigits = 18;
    if (text.isEmpty() || text.size() > SafeDigits || (text.front() == QLatin1Char('0') && text.size() > 1))
        return false;
    return std::all_of(text.begin(), text.end(),
                       [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); });
}

/// Without exponent, or null for a number of more than 38 digits.
QString plainNumber(const KNImportNumberText &number)
{
    if (!number.hasExponent)
        return number.text;
    const auto exact = KNDecimal::fromString(number.text);
    return exact ? exact->toString() : QString();
}

} // namespace

KNImportConverter::KNImportConverter(KNImportColumnType type, bool allowsNulls, KNImportValueFormat format)
    : m_type(std::move(type))
    , m_allowsNulls(allowsNulls)
    , m_format(std::move(format))
{
}

std::optional<KNValue> KNImportConverter::convert(const QString &text, QString *reason) const
{
    using Empty = KNImportValueFormat::Empty;
    const bool isNull =
        m_format.empty == Empty::Null ? text.isEmpty() : text.isNull() && m_format.empty == Empty::AsWritten;
    if (isNull && !m_allowsNulls)
        return refused(reason, tr("The column takes no NULL."));
    if (isNull)
        return KNValue();
    return valueOf(text.isNull() ? QStringLiteral("") : text, reason);
}

std::optional<KNValue> KNImportConverter::valueOf(const QString &text, QString *reason) const
{
    switch (m_type.kind) {
    case ColumnKind::Other:
    case ColumnKind::Text:
        return textValue(text, reason);
    case ColumnKind::Integer:
        return integerValue(text, reason);
    case ColumnKind::Decimal:
        return decimalValue(text, reason);
    case ColumnKind::Real:
        return realValue(text, reason);
    case ColumnKind::Boolean:
        return booleanValue(text, reason);
    case ColumnKind::Date:
    case ColumnKind::DateAndTime:
    case ColumnKind::DateTimeOffset:
    case ColumnKind::Time:
        return dateValue(text, reason);
    case ColumnKind::Guid:
        return guidValue(text, reason);
    case ColumnKind::Binary:
        break;
    }
    return binaryValue(text, reason);
}

std::optional<KNValue> KNImportConverter::textValue(const QString &text, QString *reason) const
{
    if (!isSendable(text))
        return refused(reason, tr("The text contains U+0000 or half of a surrogate pair."));
    if (m_type.codePage.isKnown())
        return codePageValue(text, reason);
    if (text.size() > m_type.maximumLength)
        return refused(reason, tr("The text has %1 characters, the column holds %2.")
                                   .arg(text.size())
                                   .arg(m_type.maximumLength));
    return KNValue(text);
}

/// A server replaces a character that the column does not have, by a similar one or a question mark.
std::optional<KNValue> KNImportConverter::codePageValue(const QString &text, QString *reason) const
{
    QString missing;
    const auto size = m_type.codePage.sizeOf(text, &missing);
    if (!size)
        return refused(reason, tr("The column's code page %1 does not have the character \"%2\".")
                                   .arg(m_type.codePage.number())
                                   .arg(missing));
    if (*size > m_type.maximumLength)
        return refused(reason, tr("The text has %1 bytes in code page %2, the column holds %3.")
                                   .arg(*size)
                                   .arg(m_type.codePage.number())
                                   .arg(m_type.maximumLength));
    return KNValue(text);
}

std::optional<KNValue> KNImportConverter::integerValue(const QString &text, QString *reason) const
{
    if (isPlainInteger(text)) {
        const qint64 value = text.toLongLong();
        if (value >= m_type.minimum && value <= m_type.maximum)
            return KNValue(text);
    }
    const auto number = KNImportNumberText::read(text, m_format.decimalPoint);
    QString whole = number ? plainNumber(*number) : QString();
    if (const qsizetype point = whole.indexOf(QLatin1Char('.')); point >= 0) {
        const bool hasFraction = std::any_of(whole.begin() + point + 1, whole.end(),
                                             [](QChar c) { return c != QLatin1Char('0'); });
        if (hasFraction)
            return refused(reason, tr("The column holds whole numbers only."));
        whole.truncate(point);
    }
    if (!number)
        return refused(reason, tr("This is not a number."));
    bool fits = false;
    const qint64 value = whole.toLongLong(&fits);
    if (!fits || value < m_type.minimum || value > m_type.maximum)
        return refused(reason, tr("The column holds %1 to %2.").arg(m_type.minimum).arg(m_type.maximum));
    return KNValue(QString::number(value));
}

/// The text always has a point if the column has decimals: a server gives whole numbers ten digits, and
/// reduces the decimals of the other rows of a statement for them.
std::optional<KNValue> KNImportConverter::decimalValue(const QString &text, QString *reason) const
{
    const auto number = KNImportNumberText::read(text, m_format.decimalPoint);
    if (!number)
        return refused(reason, tr("This is not a number."));
    const QString plain = plainNumber(*number);
    const auto digits = number->hasExponent ? KNImportNumberText::read(plain, QLatin1Char('.')) : number;
    if (!digits || digits->integerDigits > m_type.precision - m_type.scale)
        return refused(
            reason,
            tr("The column holds %1 digits before the decimal point.").arg(m_type.precision - m_type.scale));
    if (digits->fractionDigits > m_type.scale)
        return refused(reason, tr("The number has %1 decimals, the column keeps %2.")
                                   .arg(digits->fractionDigits)
                                   .arg(m_type.scale));
    const qsizetype point = plain.indexOf(QLatin1Char('.'));
    QString result = point < 0 ? plain : plain.left(point);
    if (m_type.scale == 0)
        return KNValue(result);
    result += QLatin1Char('.');
    result += digits->fractionDigits == 0 ? QStringView(u"0")
                                          : QStringView(plain).mid(point + 1, digits->fractionDigits);
    return KNValue(result);
}

/// With an exponent the number is a floating-point one in every statement.
std::optional<KNValue> KNImportConverter::realValue(const QString &text, QString *reason) const
{
    const auto number = KNImportNumberText::read(text, m_format.decimalPoint);
    if (!number)
        return refused(reason, tr("This is not a number."));
    if (!std::isfinite(number->text.toDouble()))
        return refused(reason, tr("The number is too large."));
    return KNValue(number->hasExponent ? number->text : number->text + QLatin1String("e0"));
}

std::optional<KNValue> KNImportConverter::booleanValue(const QString &text, QString *reason) const
{
    const QString word = text.trimmed();
    if (isAnyOf(word, {"1", "true", "yes", "y"}))
        return KNValue(true);
    if (isAnyOf(word, {"0", "false", "no", "n"}))
        return KNValue(false);
    return refused(reason, tr("This is neither true nor false."));
}

std::optional<KNValue> KNImportConverter::dateValue(const QString &text, QString *reason) const
{
    const auto date = KNImportDateText::read(text, m_format.dateFormat);
    if (!date || (m_type.kind == ColumnKind::Time ? date->time.isEmpty() : date->date.isEmpty()))
        return refused(reason, m_type.kind == ColumnKind::Time ? tr("This is not a time.")
                                                               : tr("This is not a date."));
    const QString problem = dateProblem(*date);
    if (!problem.isNull())
        return refused(reason, problem);
    if (m_type.kind == ColumnKind::Date)
        return KNValue(date->date);
    QString time = date->time.isEmpty() ? QStringLiteral("00:00:00") : date->time;
    if (!date->fraction.isEmpty())
        time += QLatin1Char('.') + date->fraction;
    return KNValue(m_type.kind == ColumnKind::Time ? time
                                                   : date->date + QLatin1Char('T') + time + date->offset);
}

/// Why the column would not keep the date as it is; null if it would.
QString KNImportConverter::dateProblem(const KNImportDateText &date) const
{
    if (!date.date.isEmpty() && (date.year < m_type.firstYear || date.year > m_type.lastYear))
        return tr("The column holds the years %1 to %2.").arg(m_type.firstYear).arg(m_type.lastYear);
    if (m_type.kind == ColumnKind::Date)
        return date.isMidnight() && date.offset.isEmpty() ? QString()
                                                          : tr("The column keeps no time of day.");
    if (m_type.kind == ColumnKind::Time && !date.date.isEmpty())
        return tr("The column keeps no date.");
    if (m_type.kind != ColumnKind::DateTimeOffset && !date.offset.isEmpty())
        return tr("The column keeps no offset from UTC.");
    if (m_type.fractionDigits < 0 &&
        !(date.fraction.isEmpty() && (date.time.isEmpty() || date.time.endsWith(QLatin1String(":00")))))
        return tr("The column keeps no seconds.");
    if (date.fraction.size() > std::max(m_type.fractionDigits, 0))
        return tr("The seconds have %1 decimals, the column keeps %2.")
            .arg(date.fraction.size())
            .arg(m_type.fractionDigits);
    const bool isRounded = m_type.keepsThirdsOfCentiseconds && date.fraction.size() == 3 &&
                           date.fraction[2] != QLatin1Char('3') && date.fraction[2] != QLatin1Char('7');
    return isRounded ? tr("The column keeps .000, .003 and .007 seconds only.") : QString();
}

std::optional<KNValue> KNImportConverter::guidValue(const QString &text, QString *reason) const
{
    const auto guid = KNGuidText::read(text.trimmed());
    if (!guid)
        return refused(reason, tr("This is not a GUID."));
    return KNValue(*guid);
}

std::optional<KNValue> KNImportConverter::binaryValue(const QString &text, QString *reason) const
{
    const QStringView digits = QStringView(text).trimmed().mid(2);
    const bool isHexadecimal =
        text.trimmed().startsWith(QLatin1String("0x"), Qt::CaseInsensitive) && digits.size() % 2 == 0 &&
        std::all_of(digits.begin(), digits.end(),
                    [](QChar c) { return isxdigit(c.unicode() < 0x80 ? c.unicode() : 0); });
    if (!isHexadecimal)
        return refused(reason, tr("This is not 0x and pairs of hexadecimal digits."));
    if (digits.size() / 2 > m_type.maximumLength)
        return refused(reason, tr("The value has %1 bytes, the column holds %2.")
                                   .arg(digits.size() / 2)
                                   .arg(m_type.maximumLength));
    const QByteArray bytes = QByteArray::fromHex(digits.toLatin1());
    return KNValue(bytes.isNull() ? QByteArray("") : bytes);
}
