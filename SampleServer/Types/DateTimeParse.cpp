#include "Types/DateTime.h"
#include "Types/Text.h"

#include <vector>

namespace SampleServer {

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}
bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

struct Number
{
    int value = 0;
    std::size_t digits = 0;
};

/// Collects the parts of a date and a time from left to right.
class DateTimeReader
{
public:
    DateTimeReader(std::string_view text, DateOrder order)
        : m_text(text)
        , m_order(order)
    {
    }

    std::optional<ParsedDateTime> read()
    {
        while (m_at < m_text.size()) {
            if (!readPart())
                return {};
        }
        if (!m_hasTime && m_numbers.empty() && m_month == 0)
            return m_text.empty() ? combined() : std::nullopt;
        if (!assignDate())
            return {};
        return combined();
    }

private:
    bool readPart()
    {
        const char c = m_text[m_at];
        if (c == ' ' || c == ',') {
            ++m_at;
            return true;
        }
        if (isDigit(c))
            return m_numbers.size() + (m_month != 0) >= 3 || nextIsTime() ? readTime() : readDateNumber();
        if (isLetter(c))
            return readWord();
        if ((c == '+' || c == '-') && m_hasTime)
            return readOffset();
        return false;
    }

    /// Whether the digits here start a time: "10:" or "10 PM".
    bool nextIsTime() const
    {
        std::size_t at = m_at;
        while (at < m_text.size() && isDigit(m_text[at]))
            ++at;
        if (at < m_text.size() && m_text[at] == ':')
            return true;
        while (at < m_text.size() && m_text[at] == ' ')
            ++at;
        const std::string word = asciiUpper(m_text.substr(at, 2));
        return word == "AM" || word == "PM";
    }

    std::optional<Number> readNumber()
    {
        Number number;
        while (m_at < m_text.size() && isDigit(m_text[m_at]) && number.digits < 9) {
            number.value = number.value * 10 + (m_text[m_at++] - '0');
            ++number.digits;
        }
        if (number.digits == 0)
            return {};
        return number;
    }

    bool readDateNumber()
    {
        const auto number = readNumber();
        if (!number)
            return false;
        if (number->digits == 8 && m_numbers.empty()) {
            m_numbers = {
                {number->value / 10000, 4}, {number->value / 100 % 100, 2}, {number->value % 100, 2}};
        } else if (number->digits == 6 && m_numbers.empty() && m_month == 0) {
            m_numbers = {{fullYear({number->value / 10000, 2}), 4},
                         {number->value / 100 % 100, 2},
                         {number->value % 100, 2}};
        } else if (number->digits == 4 && m_numbers.empty() && m_month == 0 && m_at == m_text.size()) {
            m_numbers = {*number, {1, 2}, {1, 2}};
        } else if (number->digits > 4) {
            return false;
        } else {
            m_numbers.push_back(*number);
        }
        if (m_at < m_text.size() && std::string_view("-/.").find(m_text[m_at]) != std::string_view::npos) {
            ++m_at;
            return m_at < m_text.size() && (isDigit(m_text[m_at]) || isLetter(m_text[m_at]));
        }
        return true;
    }

    bool readWord()
    {
        const std::size_t start = m_at;
        while (m_at < m_text.size() && isLetter(m_text[m_at]))
            ++m_at;
        const std::string word = asciiUpper(m_text.substr(start, m_at - start));
        if (word == "T" && m_numbers.size() == 3 && !m_hasTime)
            return m_at < m_text.size() && isDigit(m_text[m_at]);
        if (word == "Z" && m_hasTime)
            return m_at == m_text.size();
        for (int month = 1; month <= 12 && m_month == 0; ++month) {
            const std::string name = asciiUpper(monthName(month));
            if (word == name || word == name.substr(0, 3)) {
                m_month = month;
                if (m_at < m_text.size() && (m_text[m_at] == '-' || m_text[m_at] == '.'))
                    ++m_at;
                return true;
            }
        }
        return false;
    }

    bool readTime()
    {
        if (m_hasTime)
            return false;
        m_hasTime = true;
        const auto hour = readNumber();
        if (!hour || hour->digits > 2 || hour->value > 23)
            return false;
        m_parts.hour = hour->value;
        if (readSeparator(':')) {
            const auto minute = readNumber();
            if (!minute || minute->digits > 2 || minute->value > 59)
                return false;
            m_parts.minute = minute->value;
            if (readSeparator(':')) {
                const auto second = readNumber();
                if (!second || second->digits > 2 || second->value > 59)
                    return false;
                m_parts.second = second->value;
                if (!readFraction())
                    return false;
            }
        }
        return readAmPm();
    }

    bool readSeparator(char separator)
    {
        if (m_at >= m_text.size() || m_text[m_at] != separator)
            return false;
        ++m_at;
        return true;
    }

    /// ".1234567" is a fraction, ":123" are milliseconds.
    bool readFraction()
    {
        const bool point = readSeparator('.');
        if (!point && !readSeparator(':'))
            return true;
        const auto number = readNumber();
        if (!number || number->digits > (point ? 9U : 3U))
            return false;
        std::int64_t ticks = number->value;
        for (std::size_t digits = point ? number->digits : 3; digits < 7; ++digits)
            ticks *= 10;
        for (std::size_t digits = number->digits; digits > 7; --digits)
            ticks /= 10;
        m_parts.ticks = static_cast<int>(ticks);
        return true;
    }

    bool readAmPm()
    {
        std::size_t at = m_at;
        while (at < m_text.size() && m_text[at] == ' ')
            ++at;
        const std::string word = asciiUpper(m_text.substr(at, 2));
        if (word != "AM" && word != "PM")
            return true;
        if (m_parts.hour > 12 && word == "AM")
            return false;
        if (m_parts.hour <= 12)
            m_parts.hour = m_parts.hour % 12 + (word == "PM" ? 12 : 0);
        m_at = at + 2;
        return true;
    }

    bool readOffset()
    {
        const bool negative = m_text[m_at++] == '-';
        const auto hours = readNumber();
        if (!hours || hours->digits != 2 || !readSeparator(':'))
            return false;
        const auto minutes = readNumber();
        if (!minutes || minutes->digits != 2 || minutes->value > 59 ||
            hours->value * 60 + minutes->value > 840)
            return false;
        const int offset = hours->value * 60 + minutes->value;
        m_offset = static_cast<std::int16_t>(negative ? -offset : offset);
        return m_at == m_text.size();
    }

    static int fullYear(const Number &year)
    {
        return year.digits > 2 ? year.value : year.value + (year.value < 50 ? 2000 : 1900);
    }

    void setDate(const Number &year, int month, int day)
    {
        m_parts.year = fullYear(year);
        m_parts.month = month;
        m_parts.day = day;
    }

    bool assignDate()
    {
        const auto &n = m_numbers;
        if (m_month != 0) {
            if (n.size() == 1 && n[0].digits == 4)
                setDate(n[0], m_month, 1);
            else if (n.size() == 2 && n[0].digits == 4)
                setDate(n[0], m_month, n[1].value);
            else if (n.size() == 2)
                setDate(n[1], m_month, n[0].value);
            else
                return false;
            return true;
        }
        if (n.empty())
            return true; // a time alone
        if (n.size() != 3)
            return false;
        const bool dayFirst = m_order == DateOrder::YearDayMonth || m_order == DateOrder::DayMonthYear;
        if (n[0].digits == 4)
            setDate(n[0], n[1].value, n[2].value);
        else if (n[2].digits == 4)
            setDate(n[2], dayFirst ? n[1].value : n[0].value, dayFirst ? n[0].value : n[1].value);
        else
            assignByOrder();
        return true;
    }

    void assignByOrder()
    {
        const auto &n = m_numbers;
        switch (m_order) {
        case DateOrder::MonthDayYear:
            return setDate(n[2], n[0].value, n[1].value);
        case DateOrder::DayMonthYear:
            return setDate(n[2], n[1].value, n[0].value);
        case DateOrder::YearMonthDay:
            return setDate(n[0], n[1].value, n[2].value);
        case DateOrder::YearDayMonth:
            return setDate(n[0], n[2].value, n[1].value);
        case DateOrder::MonthYearDay:
            return setDate(n[1], n[0].value, n[2].value);
        case DateOrder::DayYearMonth:
            return setDate(n[1], n[2].value, n[0].value);
        }
    }

    std::optional<ParsedDateTime> combined() const
    {
        ParsedDateTime result;
        if (!isRealDate(m_parts.year, m_parts.month, m_parts.day)) {
            result.outOfRange = true;
            return result;
        }
        result.value = fromParts(m_parts);
        result.value.offsetMinutes = m_offset;
        return result;
    }

    std::string_view m_text;
    DateOrder m_order;
    std::size_t m_at = 0;
    std::vector<Number> m_numbers;
    int m_month = 0;
    bool m_hasTime = false;
    std::int16_t m_offset = 0;
    DateTimeParts m_parts;
};

} // namespace

std::optional<ParsedDateTime> parseDateTime(std::string_view text, DateOrder order)
{
    return DateTimeReader(trimmed(text), order).read();
}

} // namespace SampleServer
