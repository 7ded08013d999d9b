#include "Foundation/KNTerminalText.h"

#include <QList>

#include <wchar.h>

#include <algorithm>

namespace KNTerminalText {

namespace {

bool isControl(QChar c)
{
    const char16_t unit = c.unicode();
    return unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || unit == 0x061C || unit == 0x200E ||
           unit == 0x200F || (unit >= 0x2028 && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
}

template <typename Sign>
QString escapedWith(const QString &text, const Sign &signFor)
{
    if (std::none_of(text.begin(), text.end(), isControl))
        return text;
    QString result;
    for (const QChar c : text) {
        const QChar sign = signFor(c);
        if (isControl(c) && sign.isNull())
            result +=
                QLatin1String("\\u") + QString::number(c.unicode(), 16).rightJustified(4, QLatin1Char('0'));
        else
            result += isControl(c) ? sign : c;
    }
    return result;
}

} // namespace

QString escaped(const QString &text)
{
    QString lines = text;
    lines.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    return escapedWith(
        lines, [](QChar c) { return c == QLatin1Char('\n') || c == QLatin1Char('\t') ? c : QChar(); });
}

QString escapedInOneLine(const QString &text)
{
    return escapedWith(text, [](QChar c) {
        if (c == QLatin1Char('\n') || c == QLatin1Char('\r'))
            return QChar(0x21B5);
        return c == QLatin1Char('\t') ? QChar(0x21E5) : QChar();
    });
}

int displayWidth(const QString &text)
{
    int width = 0;
    const auto codePoints = text.toUcs4();
    for (const uint codePoint : codePoints)
        width += std::max(0, wcwidth(static_cast<wchar_t>(codePoint)));
    return width;
}

} // namespace KNTerminalText
