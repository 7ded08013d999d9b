#pragma once

#include "Support/PrintQt.h"
#include "Support/SampleServerFixture.h"

#include <gtest/gtest.h>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <vector>

/// How a program ended, and what it wrote.
struct Outcome
{
    int status = -1;
    QByteArray output;
    QByteArray errors;
    long maximumKilobytes = 0;
    double processorSeconds = 0; ///< of the program and what it waited for
    double userSeconds = 0;      ///< the part of them outside the kernel
    long waits = 0;              ///< voluntary context switches
};

/// Turns a child process into vantor-cli. `password` goes into its environment; null for none.
[[noreturn]] inline void becomeProgram(const QStringList &arguments, const char *password)
{
    if (password)
        setenv("VANTOR_PASSWORD", password, 1);
    else
        unsetenv("VANTOR_PASSWORD");
    QList<QByteArray> texts = {VANTOR_CLI};
    for (const QString &argument : arguments)
        texts.append(argument.toUtf8());
    std::vector<char *> pointers;
    for (QByteArray &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    execv(VANTOR_CLI, pointers.data());
    _exit(127);
}

/// vantor-cli as a child process.
class Program
{
public:
    /// `outputFile`: a file for standard output, which is not read then. `memory`: the most address space
    /// that it may take, in bytes.
    explicit Program(const QStringList &arguments, const QByteArray &input = {},
                     const char *password = SampleServerFixture::Password, const char *outputFile = nullptr,
                     rlim_t memory = RLIM_INFINITY)
    {
        int in[2];
        EXPECT_EQ(pipe2(in, O_CLOEXEC), 0);
        EXPECT_EQ(pipe2(m_output, O_CLOEXEC), 0);
        EXPECT_EQ(pipe2(m_errors, O_CLOEXEC), 0);
        m_process = fork();
        if (m_process == 0) {
            setsid();
            dup2(in[0], STDIN_FILENO);
            dup2(outputFile ? ::open(outputFile, O_WRONLY) : m_output[1], STDOUT_FILENO);
            dup2(m_errors[1], STDERR_FILENO);
            const rlimit limit = {memory, memory};
            setrlimit(RLIMIT_AS, &limit);
            becomeProgram(arguments, password);
        }
        close(in[0]);
        close(m_output[1]);
        close(m_errors[1]);
        EXPECT_EQ(write(in[1], input.constData(), static_cast<size_t>(input.size())), input.size());
        close(in[1]);
    }

    pid_t processId() const { return m_process; }
    void interrupt() const { kill(m_process, SIGINT); }

    /// Waits until the program has filled the pipe of its output, which nobody reads.
    bool waitUntilOutputIsFull() const
    {
        int before = -1;
        for (int tries = 0; tries < 300; ++tries) {
            int available = 0;
            ioctl(m_output[0], FIONREAD, &available);
            if (available > 0 && available == before)
                return true;
            before = available;
            usleep(100'000);
        }
        return false;
    }
    /// Waits for the end without reading; false when it takes longer.
    bool endsWithin(int milliseconds) const
    {
        for (int waited = 0; waited < milliseconds; waited += 10) {
            siginfo_t info = {};
            if (waitid(P_PID, static_cast<id_t>(m_process), &info, WEXITED | WNOWAIT | WNOHANG) == 0 &&
                info.si_pid == m_process)
                return true;
            usleep(10'000);
        }
        return false;
    }

    /// Reads until `amount` bytes of output are there, or its end.
    void readOutput(qsizetype amount)
    {
        while (m_outcome.output.size() < amount && readSome()) {
        }
    }

    Outcome wait()
    {
        while (readSome()) {
        }
        int status = 0;
        rusage usage = {};
        wait4(m_process, &status, 0, &usage);
        m_outcome.maximumKilobytes = usage.ru_maxrss;
        m_outcome.waits = usage.ru_nvcsw;
        m_outcome.userSeconds =
            static_cast<double>(usage.ru_utime.tv_sec) + static_cast<double>(usage.ru_utime.tv_usec) / 1e6;
        m_outcome.processorSeconds =
            static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
            static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
        m_outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        return m_outcome;
    }

private:
    bool readSome()
    {
        pollfd descriptors[] = {{m_output[0], POLLIN, 0}, {m_errors[0], POLLIN, 0}};
        if (poll(descriptors, 2, 60'000) <= 0)
            return false;
        bool open = false;
        QByteArray *targets[] = {&m_outcome.output, &m_outcome.errors};
        for (int i = 0; i < 2; ++i) {
            if (!descriptors[i].revents)
                continue;
            char bytes[65536];
            const ssize_t count = read(descriptors[i].fd, bytes, sizeof bytes);
            if (count > 0)
                targets[i]->append(bytes, count);
            else
                (i == 0 ? m_output[0] : m_errors[0]) = -1;
            open = open || count > 0;
        }
        return open || m_output[0] >= 0 || m_errors[0] >= 0;
    }

    pid_t m_process = -1;
    int m_output[2];
    int m_errors[2];
    Outcome m_outcome;
};
