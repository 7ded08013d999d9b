#pragma once

#include "Vantor/Program.h"

#include "Support/SampleServerFixture.h"

#include <gtest/gtest.h>

#include <QByteArray>
#include <QElapsedTimer>
#include <QStringList>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <utmp.h>

#include <cstring>
#include <vector>

/// vantor-cli with a terminal of its own, in the foreground of a session as a shell would start it.
class TerminalProgram
{
public:
    static constexpr int Bound = 30'000; ///< milliseconds that any wait takes at most

    explicit TerminalProgram(const QStringList &arguments,
                             const char *password = SampleServerFixture::Password)
    {
        int slave = -1;
        EXPECT_EQ(openpty(&m_master, &slave, nullptr, nullptr, nullptr), 0);
        fcntl(m_master, F_SETFD, FD_CLOEXEC);
        m_session = fork();
        if (m_session == 0)
            runSession(slave, arguments, password);
        m_slave = slave;
    }
    ~TerminalProgram()
    {
        if (m_session > 0) {
            kill(-m_session, SIGKILL);
            waitpid(m_session, nullptr, 0);
        }
        close(m_slave);
        close(m_master);
    }
    TerminalProgram(const TerminalProgram &) = delete;
    TerminalProgram &operator=(const TerminalProgram &) = delete;

    void type(const QByteArray &keys)
    {
        EXPECT_EQ(write(m_master, keys.constData(), static_cast<std::size_t>(keys.size())), keys.size());
    }

    /// Reads until the screen has shown a text that many times.
    bool waitForText(const QByteArray &text, int times = 1)
    {
        return waitFor([&] { return m_screen.count(text) >= times; });
    }
    bool waitForEcho(bool isOn)
    {
        return waitFor([&] { return hasEcho() == isOn; });
    }
    bool hasEcho() const
    {
        termios settings = {};
        return tcgetattr(m_slave, &settings) == 0 && (settings.c_lflag & ECHO) != 0;
    }

    /// The exit status as a shell shows it; -1 when the program has not ended in time.
    int wait()
    {
        int status = 0;
        if (!waitFor([&] { return waitpid(m_session, &status, WNOHANG) == m_session; }))
            return -1;
        m_session = -1;
        readSome(0);
        return WEXITSTATUS(status);
    }
    /// Everything that was shown so far.
    const QByteArray &screen() const { return m_screen; }

private:
    template <typename Condition>
    bool waitFor(const Condition &condition)
    {
        QElapsedTimer timer;
        timer.start();
        while (!condition()) {
            if (timer.elapsed() > Bound)
                return false;
            readSome(10);
        }
        return true;
    }

    void readSome(int milliseconds)
    {
        pollfd descriptor = {m_master, POLLIN, 0};
        while (poll(&descriptor, 1, milliseconds) > 0 && (descriptor.revents & POLLIN)) {
            char bytes[65536];
            const ssize_t count = read(m_master, bytes, sizeof bytes);
            if (count <= 0)
                return;
            m_screen.append(bytes, count);
            milliseconds = 0;
        }
    }

    /// In the child: the leader of the session, which continues the program whenever it is stopped.
    [[noreturn]] static void runSession(int slave, const QStringList &arguments, const char *password)
    {
        login_tty(slave);
        signal(SIGTTOU, SIG_IGN);
        const rlimit noCore = {0, 0};
        setrlimit(RLIMIT_CORE, &noCore);
        const pid_t program = fork();
        if (program == 0) {
            setpgid(0, 0);
            tcsetpgrp(STDIN_FILENO, getpid());
            signal(SIGTTOU, SIG_DFL);
            runProgram(arguments, password);
        }
        int status = 0;
        while (waitpid(program, &status, WUNTRACED) == program && WIFSTOPPED(status)) {
            termios settings = {};
            tcgetattr(STDIN_FILENO, &settings);
            const char *const report =
                (settings.c_lflag & ECHO) ? "stopped with echo\n" : "stopped, silent\n";
            if (write(STDOUT_FILENO, report, std::strlen(report)) < 0)
                _exit(126);
            kill(-program, SIGCONT);
        }
        _exit(WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
    }

    [[noreturn]] static void runProgram(const QStringList &arguments, const char *password)
    {
        setenv("NO_COLOR", "1", 1);
        becomeProgram(arguments, password);
    }

    int m_master = -1;
    int m_slave = -1;
    pid_t m_session = -1;
    QByteArray m_screen;
};
