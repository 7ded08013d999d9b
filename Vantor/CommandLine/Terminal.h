#pragma once

#include "CommandLine/ExitStatus.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <optional>

/// What the terminal program needs of a terminal.
namespace Terminal {

enum class Colour { None, Red, Yellow, Grey };

bool isOutputTerminal();
bool isErrorTerminal();
/// Writes a line to standard output, escaped.
void printLine(const QString &line);
/// Writes text that programs read (JSON, scripts) to standard output, escaped when that is a terminal.
void printText(const QByteArray &utf8);
/// Writes a line to standard error, escaped, in a colour when that is a terminal (and NO_COLOR is not set).
void printError(const QString &line, Colour colour = Colour::None);
/// Writes a line to standard error, in red, and returns the status.
int fail(ExitStatus status, const QString &line);
/// Asks for a text on the controlling terminal without echo; empty when there is none. A signal that ends or
/// stops the program meanwhile does so with the echo on; Ctrl-C ends it with ExitCancelled.
std::optional<QString> promptWithoutEcho(const QString &prompt);

/// A turning sign with rows and seconds on standard error, while it is a terminal and results are not shown
/// on it.
class Spinner
{
public:
    explicit Spinner(bool enabled)
        : m_enabled(enabled)
    {
    }
    ~Spinner() { clear(); }
    /// Draws the next picture if the last one is older than a tenth of a second.
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
