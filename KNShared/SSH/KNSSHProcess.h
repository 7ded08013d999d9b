#pragma once

#include "KNSharedExport.h"

#include <QDeadlineTimer>
#include <QStringList>

#include <mutex>

/// A running `ssh` process without a controlling terminal: no prompts, no terminal signals. It ends with this
/// object or with the thread that created it, even if the program crashes. Used on that thread.
class KNSHARED_EXPORT KNSSHProcess
{
public:
    enum class Event { Output, Complaint, Ended, Stopped, TimedOut };

    /// `variables` are added to the environment, as NAME=value.
    explicit KNSSHProcess(const QStringList &arguments, const QStringList &variables = {});
    /// Ends the process with SIGTERM, or with SIGKILL if it does not react.
    ~KNSSHProcess();
    KNSSHProcess(const KNSSHProcess &) = delete;
    KNSSHProcess &operator=(const KNSSHProcess &) = delete;

    /// Waits until the process writes to its standard output or error or ends, `stopDescriptor` becomes
    /// readable, or the deadline expires.
    Event wait(int stopDescriptor, const QDeadlineTimer &deadline);
    /// The text written to standard error so far. Any thread.
    QString complaints() const;

    /// Sets the program, "ssh" by default, for tests. Process-wide.
    static void setProgram(const QString &program);

private:
    bool readErrors();
    bool waitForEnd(std::chrono::milliseconds bound);

    int m_pid = -1; ///< -1 if it could not be started or has ended
    int m_output = -1;
    int m_errors = -1; ///< closed when the program ends; the output may close earlier
    mutable std::mutex m_mutex;
    QByteArray m_complaints; ///< guarded by m_mutex
};
