#include "SQL/KNSQLComment.h"

#include <algorithm>

bool KNSQLComment::isLineEnd(QChar character)
{
    const char16_t unit = character.unicode();
    return (unit >= 0x0A && unit <= 0x0D) || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

QString KNSQLComment::inOneLine(QString text)
{
    std::replace_if(text.begin(), text.end(), isLineEnd, QLatin1Char(' '));
    return text;
}

QString KNSQLComment::inBlock(QString text)
{
    // "*/*" contains both marks: the second replacement works on the output of the first.
    return inOneLine(std::move(text))
        .replace(QLatin1String("*/"), QLatin1String("* /"))
        .replace(QLatin1String("/*"), QLatin1String("/ *"));
}

QString KNSQLComment::commentedOut(const QString &text)
{
    QString result;
    for (qsizetype start = 0; start < text.size();) {
        qsizetype end = start;
        while (end < text.size() && !isLineEnd(text[end]))
            ++end;
        result += QLatin1String("-- ") + text.mid(start, end - start) + QLatin1String("\r\n");
        const bool isPair =
            end + 1 < text.size() && text[end] == QLatin1Char('\r') && text[end + 1] == QLatin1Char('\n');
        start = end + (isPair ? 2 : 1);
    }
    return result;
}
