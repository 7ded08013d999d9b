#include "Import/KNImportNumberText.h"

namespace {

bool isAsciiDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

/// Reads a number from left to right and writes it in the notation of SQL.
class NumberScanner
{
public:
    NumberScanner(QStringView text, QChar decimalPoint)
        : m_text(text.trimmed())
        , m_point(decimalPoint)
        , m_group(decimalPoint == QLatin1Char(',') ? QLatin1Char('.') : QLatin1Char(','))
    {
        m_number.text.reserve(m_text.size() + 1);
    }

    std::optional<KNImportNumberText> number()
    {
        readSign();
        if (!readInteger() || !readFraction() || m_digits == 0 || !readExponent() || !isAtEnd())
            return std::nullopt;
        return m_number;
    }

private:
    bool isAtEnd() const { return m_position >= m_text.size(); }
    QChar current() const { return isAtEnd() ? QChar() : m_text[m_position]; }
    bool take(QChar expected)
    {
        const bool isThere = !isAtEnd() && current() == expected;
        m_position += isThere;
        return isThere;
    }

    void readSign()
    {
        if (take(QLatin1Char('-')))
            m_number.text += QLatin1Char('-');
        else
            take(QLatin1Char('+'));
        take(QLatin1Char('$'));
    }

    bool readInteger()
    {
        int group = 0;
        bool isGrouped = false;
        for (; !isAtEnd(); ++m_position) {
            const QChar c = current();
            if (c == m_group) {
                if (group == 0 || group > 3 || (isGrouped && group != 3))
                    return false;
                isGrouped = true;
                group = 0;
                continue;
            }
            if (!isAsciiDigit(c))
                break;
            ++group;
            ++m_digits;
            if (m_number.integerDigits > 0 || c != QLatin1Char('0'))
                ++m_number.integerDigits;
            m_number.text += c;
        }
        m_number.hasLeadingZeros = m_digits > 1 && m_digits > m_number.integerDigits;
        return !isGrouped || group == 3;
    }

    bool readFraction()
    {
        if (!take(m_point))
            return true;
        if (m_digits == 0)
            m_number.text += QLatin1Char('0');
        m_number.text += QLatin1Char('.');
        int count = 0;
        for (; isAsciiDigit(current()); ++m_position) {
            ++count;
            if (current() != QLatin1Char('0'))
                m_number.fractionDigits = count;
            m_number.text += current();
        }
        if (count == 0)
            m_number.text.chop(1);
        m_digits += count;
        return true;
    }

    bool readExponent()
    {
        if (current() != QLatin1Char('e') && current() != QLatin1Char('E'))
            return true;
        ++m_position;
        m_number.hasExponent = true;
        m_number.text += QLatin1Char('e');
        if (current() == QLatin1Char('-'))
            m_number.text += QLatin1Char('-');
        if (current() == QLatin1Char('-') || current() == QLatin1Char('+'))
            ++m_position;
        constexpr int MostDigits = 4;
        int count = 0;
        for (; isAsciiDigit(current()) && count <= MostDigits; ++m_position, ++count)
            m_number.text += current();
        return count > 0 && count <= MostDigits;
    }

    const QStringView m_text;
    const QChar m_point;
    const QChar m_group;
    qsizetype m_position = 0;
    int m_digits = 0;
    KNImportNumberText m_number;
};

} // namespace

std::optional<KNImportNumberText> KNImportNumberText::read(const QString &text, QChar decimalPoint)
{
    constexpr qsizetype LongestNumber = 400; // a double has at most 309 digits before the point
    if (text.size() > LongestNumber)
        return std::nullopt;
    return NumberScanner(text, decimalPoint).number();
}
