#pragma once

#include "CommandLine/ExitStatus.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <optional>

/// Input from and output to a terminal.
namespace Terminal {

enum class Colour { None, Red, Yellow, Grey };

bool isOutputTerminal();
bool isErrorTerminal();
/// Writes a line to standard output, escaped.
void printLine(const QString &line);
/// Writes machine-readable text (JSON, scripts) to standard output, escaped if that is a terminal.
void printText(const QByteArray &utf8);
/// Writes a line to standard error, escaped; in a colour if that is a terminal (and NO_COLOR is not set).
void printError(const QString &line, Colour colour = Colour::None);
/// Holds the lines for standard error back while it exists, and writes them at once: a system call for each
/// of many lines takes longer than to produce them. Main thread.
class ErrorLines
{
public:
    ErrorLines();
    ~ErrorLines();
    ErrorLines(const ErrorLines &) = delete;
    ErrorLines &operator=(const ErrorLines &) = delete;
    /// Writes what is held back now.
    static void flush();
};
/// Writes a line to standard error, in red, and returns the status.
int fail(ExitStatus status, const QString &line);
/// Prompts for a text on the controlling terminal without echo; nullopt if there is none. If a signal ends or
/// stops the program during the prompt, the echo is restored first; Ctrl-C exits with ExitCancelled.
std::optional<QString> promptWithoutEcho(const QString &prompt);

/// A progress indicator with rows and seconds on standard error, shown if that is a terminal and results are
/// not printed to it.
class Spinner
{
public:
    explicit Spinner(bool enabled)
        : m_enabled(enabled)
    {
    }
    ~Spinner() { clear(); }
    /// Draws the next frame if the last one is older than a tenth of a second.
    void tick(qint64 rows);
    void clear();

private:
    const bool m_enabled;
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point m_drawn = m_start;
    int m_picture = 0;
    bool m_visible = false;
};

} // namespace Terminal
