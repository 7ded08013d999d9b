#include "CommandLine/Terminal.h"

#include "Foundation/KNFormat.h"
#include "Foundation/KNTerminalText.h"

#include <stdio.h>
#include <unistd.h>

namespace Terminal {

namespace {

constinit int errorLineHolders = 0;  ///< main thread
constinit QByteArray heldErrorLines; ///< main thread

void writeToError(const QByteArray &bytes)
{
    constexpr qsizetype MostHeldBytes = 64 * 1024;
    heldErrorLines += bytes;
    if (errorLineHolders == 0 || heldErrorLines.size() > MostHeldBytes)
        ErrorLines::flush();
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

} // namespace

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
    const QByteArray bytes = KNTerminalText::escapedInOneLine(line).toUtf8() + '\n';
    fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
}

void printText(const QByteArray &utf8)
{
    const QByteArray bytes =
        isOutputTerminal() ? KNTerminalText::escaped(QString::fromUtf8(utf8)).toUtf8() : utf8;
    fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
}

void printError(const QString &line, Colour colour)
{
    const bool coloured =
        colour != Colour::None && isErrorTerminal() && qEnvironmentVariableIsEmpty("NO_COLOR");
    writeToError((coloured ? codeOf(colour) : "") + KNTerminalText::escaped(line).toUtf8() +
                 (coloured ? "\033[0m\n" : "\n"));
}

ErrorLines::ErrorLines()
{
    ++errorLineHolders;
}

ErrorLines::~ErrorLines()
{
    if (--errorLineHolders == 0)
        flush();
}

void ErrorLines::flush()
{
    if (heldErrorLines.isEmpty())
        return;
    fwrite(heldErrorLines.constData(), 1, static_cast<size_t>(heldErrorLines.size()), stderr);
    fflush(stderr);
    heldErrorLines.clear();
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
    ErrorLines::flush();
}

void Spinner::clear()
{
    if (m_visible)
        writeToError("\r\033[K");
    m_visible = false;
}

} // namespace Terminal
