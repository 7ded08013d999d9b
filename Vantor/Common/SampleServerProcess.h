#pragma once

#include "Foundation/KNError.h"

#include <QString>

#include <sys/types.h>

/// A private sample server for this program: a child process on a free loopback port, with its own password.
class SampleServerProcess
{
public:
    SampleServerProcess() = default;
    /// Stops the server.
    ~SampleServerProcess();
    SampleServerProcess(const SampleServerProcess &) = delete;
    SampleServerProcess &operator=(const SampleServerProcess &) = delete;

    /// Starts the program "vantor-sample-server" from this program's folder. Call it on a thread that lives
    /// as long as this program: the server ends with that thread.
    bool launch(KNError *error);
    /// Waits until the launched server is ready (10 s at most). Any thread.
    bool waitUntilReady(KNError *error);
    /// Calls launch() and waitUntilReady().
    bool start(KNError *error) { return launch(error) && waitUntilReady(error); }

    /// "127.0.0.1,port"
    QString host() const { return m_host; }
    QString userName() const;
    QString password() const { return m_password; }

private:
    pid_t m_process = -1;
    int m_output = -1; ///< the pipe on which the server reports that it is ready
    QString m_host;
    QString m_password;
};
