#pragma once

#include "Foundation/KNError.h"

#include <QString>

#include <sys/types.h>

/// A private sample server for this program: a child process on a free loopback port, with a password of its
/// own.
class SampleServerProcess
{
public:
    SampleServerProcess() = default;
    /// Stops the server.
    ~SampleServerProcess();
    SampleServerProcess(const SampleServerProcess &) = delete;
    SampleServerProcess &operator=(const SampleServerProcess &) = delete;

    /// Starts the program "vantor-sample-server" that stands beside this one. On a thread that lives as long
    /// as this program: the server ends with it.
    bool launch(KNError *error);
    /// Waits until the server that was launched is ready (10 s at most). Any thread.
    bool waitUntilReady(KNError *error);
    /// Both.
    bool start(KNError *error) { return launch(error) && waitUntilReady(error); }

    /// "127.0.0.1,port"
    QString host() const { return m_host; }
    QString userName() const;
    QString password() const { return m_password; }

private:
    pid_t m_process = -1;
    int m_output = -1; ///< where the server says that it is ready
    QString m_host;
    QString m_password;
};
