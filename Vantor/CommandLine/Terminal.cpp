#include "CommandLine/Terminal.h"

#include "Foundation/KNFormat.h"

#include <stdio.h>
#include <unistd.h>
#include <wchar.h>

#include <algorithm>

namespace Terminal {

namespace {

void writeToError(const QByteArray &bytes)
{
    fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
    fflush(stderr);
}

const char *codeOf(Colour colour)
{
    switch (colour) {
    case Colour::Red:
        return "\033[31m";
    case Colour::Yellow:
        return "\033[33m";
    case Colour::Grey:
        return "\033[90m";
    case Colour::None:
        break;
    }
    return "";
}

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

bool isOutputTerminal()
{
    return isatty(STDOUT_FILENO);
}

bool isErrorTerminal()
{
    return isatty(STDERR_FILENO);
}

void printLine(const QString &line)
{
    const QByteArray bytes = escapedInOneLine(line).toUtf8() + '\n';
    fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
}

void printText(const QByteArray &utf8)
{
    const QByteArray bytes = isOutputTerminal() ? escaped(QString::fromUtf8(utf8)).toUtf8() : utf8;
    fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
}

void printError(const QString &line, Colour colour)
{
    const bool coloured =
        colour != Colour::None && isErrorTerminal() && qEnvironmentVariableIsEmpty("NO_COLOR");
    writeToError((coloured ? codeOf(colour) : "") + escaped(line).toUtf8() + (coloured ? "\033[0m\n" : "\n"));
}

int fail(ExitStatus status, const QString &line)
{
    printError(line, Colour::Red);
    return status;
}

void Spinner::tick(qint64 rows)
{
    static constexpr char pictures[] = "|/-\\";
    const auto now = std::chrono::steady_clock::now();
    if (!m_enabled || now - m_drawn < std::chrono::milliseconds(100))
        return;
    m_drawn = now;
    m_visible = true;
    const double seconds = std::chrono::duration<double>(now - m_start).count();
    writeToError(
        KNFormat("\r%@ %lld rows, %0.1f s ", QString(QLatin1Char(pictures[m_picture++ % 4])), rows, seconds)
            .toUtf8());
}

void Spinner::clear()
{
    if (m_visible)
        writeToError("\r\033[K");
    m_visible = false;
}

} // namespace Terminal
