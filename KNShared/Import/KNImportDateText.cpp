#include "Import/KNImportDateText.h"

#include "Foundation/KNFormat.h"

#include <QDateTime>
#include <QLocale>

namespace {

/// Reads ISO 8601 texts from left to right.
class DateScanner
{
public:
    explicit DateScanner(QStringView text)
        : m_text(text.trimmed())
    {
    }

    std::optional<KNImportDateText> value()
    {
        if (m_text.size() > 4 && m_text[4] == QLatin1Char('-')) {
            if (!readDate())
                return std::nullopt;
            if (isAtEnd())
                return m_value;
            if (!take(QLatin1Char('T')) && !take(QLatin1Char(' ')))
                return std::nullopt;
        }
        if (!readTime() || !readOffset() || !isAtEnd())
            return std::nullopt;
        return m_value;
    }

private:
    bool isAtEnd() const { return m_position >= m_text.size(); }
    QChar current() const { return isAtEnd() ? QChar() : m_text[m_position]; }
    bool isAtDigit() const { return current() >= QLatin1Char('0') && current() <= QLatin1Char('9'); }
    bool take(QChar expected)
    {
        const bool isThere = !isAtEnd() && current() == expected;
        m_position += isThere;
        return isThere;
    }
    /// -1 if there are fewer digits.
    int number(int least, int most)
    {
        int value = 0;
        int count = 0;
        for (; count < most && isAtDigit(); ++count, ++m_position)
            value = value * 10 + current().digitValue();
        return count >= least ? value : -1;
    }

    bool readDate()
    {
        const int year = number(4, 4);
        const bool hasMonth = take(QLatin1Char('-'));
        const int month = number(2, 2);
        const bool hasDay = take(QLatin1Char('-'));
        const int day = number(2, 2);
        if (year < 1 || !hasMonth || !hasDay || !QDate::isValid(year, month, day))
            return false;
        m_value.year = year;
        m_value.date = m_text.mid(0, 10).toString();
        return true;
    }

    bool readTime()
    {
        const qsizetype begin = m_position;
        const int hour = number(1, 2);
        if (hour < 0 || hour > 23 || !take(QLatin1Char(':')))
            return false;
        const bool isShort = m_position - begin == 2;
        const int minute = number(2, 2);
        if (minute < 0 || minute > 59)
            return false;
        m_value.time =
            (isShort ? QStringLiteral("0") : QString()) + m_text.mid(begin, m_position - begin).toString();
        if (!take(QLatin1Char(':'))) {
            m_value.time += QLatin1String(":00");
            return true;
        }
        const qsizetype seconds = m_position;
        const int second = number(2, 2);
        if (second < 0 || second > 59)
            return false;
        m_value.time += QLatin1Char(':') + m_text.mid(seconds, 2).toString();
        return readFraction();
    }

    bool readFraction()
    {
        if (!take(QLatin1Char('.')) && !take(QLatin1Char(',')))
            return true;
        const qsizetype begin = m_position;
        while (isAtDigit())
            ++m_position;
        qsizetype end = m_position;
        while (end > begin && m_text[end - 1] == QLatin1Char('0'))
            --end;
        constexpr qsizetype MostDigits = 7;
        m_value.fraction = m_text.mid(begin, end - begin).toString();
        return m_position > begin && end - begin <= MostDigits;
    }

    bool readOffset()
    {
        if (m_value.date.isEmpty())
            return true;
        take(QLatin1Char(' '));
        if (take(QLatin1Char('Z'))) {
            m_value.offset = QStringLiteral("Z");
            return true;
        }
        if (isAtEnd())
            return m_text.back() != QLatin1Char(' ');
        const qsizetype begin = m_position++;
        const int hours = number(2, 2);
        take(QLatin1Char(':'));
        const int minutes = number(2, 2);
        const bool isOffset =
            hours >= 0 && hours <= 14 && minutes >= 0 && minutes <= 59 && (hours < 14 || minutes == 0);
        m_value.offset = KNFormat("%@%02ld:%02ld", m_text.mid(begin, 1).toString(), hours, minutes);
        return isOffset &&
               (m_value.offset.front() == QLatin1Char('+') || m_value.offset.front() == QLatin1Char('-'));
    }

    const QStringView m_text;
    qsizetype m_position = 0;
    KNImportDateText m_value;
};

std::optional<KNImportDateText> formattedDate(const QString &text, const QString &format)
{
    const QDateTime value = QLocale::c().toDateTime(text.trimmed(), format);
    if (!value.isValid() || value.date().year() < 1 || value.date().year() > 9999)
        return std::nullopt;
    return KNImportDateText::read(value.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz")), {});
}

} // namespace

bool KNImportDateText::isMidnight() const
{
    return fraction.isEmpty() && (time.isEmpty() || time == QLatin1String("00:00:00"));
}

std::optional<KNImportDateText> KNImportDateText::read(const QString &text, const QString &format)
{
    constexpr qsizetype LongestDate = 64;
    if (text.size() > LongestDate)
        return std::nullopt;
    return format.isEmpty() ? DateScanner(text).value() : formattedDate(text, format);
}
