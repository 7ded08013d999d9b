// Prompts for a text without echo.
#include "CommandLine/Terminal.h"
#include "Foundation/KNTerminalText.h"

#include <fcntl.h>
#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>

namespace {

volatile sig_atomic_t pendingSignal = 0;

/// Catches, during its lifetime, the signals that end or stop a program; they interrupt read().
class CaughtSignals
{
public:
    CaughtSignals()
    {
        pendingSignal = 0;
        struct sigaction action = {};
        action.sa_handler = [](int signal) { pendingSignal = signal; };
        for (std::size_t i = 0; i < std::size(Signals); ++i)
            sigaction(Signals[i], &action, &m_previous[i]);
    }
    ~CaughtSignals()
    {
        for (std::size_t i = 0; i < std::size(Signals); ++i)
            sigaction(Signals[i], &m_previous[i], nullptr);
    }
    CaughtSignals(const CaughtSignals &) = delete;
    CaughtSignals &operator=(const CaughtSignals &) = delete;

private:
    static constexpr int Signals[] = {SIGINT, SIGTERM, SIGQUIT, SIGHUP, SIGTSTP};
    struct sigaction m_previous[std::size(Signals)] = {};
};

/// Switches a terminal's echo off during its lifetime.
class SilentTerminal
{
public:
    explicit SilentTerminal(int descriptor)
        : m_descriptor(descriptor)
    {
        m_isSilent = tcgetattr(m_descriptor, &m_saved) == 0;
        termios silent = m_saved;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        m_isSilent = m_isSilent && tcsetattr(m_descriptor, TCSAFLUSH, &silent) == 0;
    }
    ~SilentTerminal()
    {
        if (m_isSilent)
            tcsetattr(m_descriptor, TCSAFLUSH, &m_saved);
    }
    SilentTerminal(const SilentTerminal &) = delete;
    SilentTerminal &operator=(const SilentTerminal &) = delete;

private:
    const int m_descriptor;
    termios m_saved = {};
    bool m_isSilent = false;
};

/// Reads a line without echo; nullopt at the end of the input or after a signal, which is stored in
/// `pendingSignal`.
std::optional<QByteArray> readSilently(int terminal)
{
    const CaughtSignals signals;
    const SilentTerminal silent(terminal);
    QByteArray line;
    while (pendingSignal == 0) {
        char c = 0;
        const ssize_t count = read(terminal, &c, 1);
        if (count < 0 && errno == EINTR)
            continue;
        if (count != 1)
            return std::nullopt;
        if (c == '\n')
            return line;
        line += c;
    }
    return std::nullopt;
}

bool writeText(int terminal, const QByteArray &text)
{
    return write(terminal, text.constData(), static_cast<std::size_t>(text.size())) == text.size();
}

} // namespace

std::optional<QString> Terminal::promptWithoutEcho(const QString &prompt)
{
    const int terminal = open("/dev/tty", O_RDWR | O_CLOEXEC);
    if (terminal < 0)
        return std::nullopt;
    std::optional<QByteArray> answer;
    for (bool asks = true; asks;) {
        asks = false;
        if (!writeText(terminal, KNTerminalText::escaped(prompt).toUtf8()))
            break;
        answer = readSilently(terminal);
        const bool wroteLineEnd = writeText(terminal, "\n");
        if (answer && !wroteLineEnd)
            answer.reset();
        if (answer || pendingSignal == 0)
            break;
        if (pendingSignal == SIGINT)
            _exit(ExitCancelled);
        // Ends the program, or stops it; after it is continued, the prompt is repeated.
        raise(pendingSignal);
        asks = true;
    }
    close(terminal);
    if (!answer)
        return std::nullopt;
    return QString::fromUtf8(*answer);
}
