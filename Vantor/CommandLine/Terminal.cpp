#include "CommandLine/Terminal.h"

#include "Foundation/KNFormat.h"

#include <fcntl.h>
#include <stdio.h>
#include <termios.h>
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

/// Switches a terminal's echo off for its life.
class SilentTerminal
{
public:
    explicit SilentTerminal(int descriptor)
        : m_descriptor(descriptor)
    {
        tcgetattr(m_descriptor, &m_saved);
        termios silent = m_saved;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(m_descriptor, TCSAFLUSH, &silent);
    }
    ~SilentTerminal() { tcsetattr(m_descriptor, TCSAFLUSH, &m_saved); }
    SilentTerminal(const SilentTerminal &) = delete;
    SilentTerminal &operator=(const SilentTerminal &) = delete;

private:
    const int m_descriptor;
    termios m_saved = {};
};

} // namespace

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

void printError(const QString &line, Colour colour)
{
    const bool coloured =
        colour != Colour::None && isErrorTerminal() && qEnvironmentVariableIsEmpty("NO_COLOR");
    writeToError((coloured ? codeOf(colour) : "") + line.toUtf8() + (coloured ? "\033[0m\n" : "\n"));
}

int fail(ExitStatus status, const QString &line)
{
    printError(line, Colour::Red);
    return status;
}

std::optional<QString> promptWithoutEcho(const QString &prompt)
{
    const int terminal = open("/dev/tty", O_RDWR | O_CLOEXEC);
    if (terminal < 0)
        return std::nullopt;
    const QByteArray question = prompt.toUtf8();
    QByteArray answer;
    bool complete = false;
    if (write(terminal, question.constData(), static_cast<size_t>(question.size())) >= 0) {
        const SilentTerminal silent(terminal);
        for (char c = 0; read(terminal, &c, 1) == 1;) {
            if (c == '\n') {
                complete = true;
                break;
            }
            answer += c;
        }
    }
    complete = write(terminal, "\n", 1) == 1 && complete;
    close(terminal);
    if (!complete)
        return std::nullopt;
    return QString::fromUtf8(answer);
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
