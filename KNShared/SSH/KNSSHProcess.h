#pragma once

#include "KNSharedExport.h"

#include <QDeadlineTimer>
#include <QStringList>

#include <mutex>

/// A run of the system's `ssh`. It cannot ask anybody anything, does not hear the terminal's signals, and
/// ends with this object, or with the thread that made it, be it that the program crashes. On that thread.
class KNSHARED_EXPORT KNSSHProcess
{
public:
    enum class Event { Output, Complaint, Ended, Stopped, TimedOut };

    explicit KNSSHProcess(const QStringList &arguments);
    /// Ends the program: SIGTERM, and SIGKILL when it does not heed that.
    ~KNSSHProcess();
    KNSSHProcess(const KNSSHProcess &) = delete;
    KNSSHProcess &operator=(const KNSSHProcess &) = delete;

    /// Waits until the program has written something to its standard output or error, has ended,
    /// `stopDescriptor` can be read or the time is over.
    Event wait(int stopDescriptor, const QDeadlineTimer &deadline);
    /// What it has written to standard error so far. Any thread.
    QString complaints() const;

    /// "ssh", unless a test says otherwise. Process-wide.
    static void setProgram(const QString &program);

private:
    bool readErrors();
    bool waitForEnd(std::chrono::milliseconds bound);

    int m_pid = -1; ///< -1 when it could not be started, or has ended
    int m_output = -1;
    int m_errors = -1; ///< ends with the program; the output ends before it
    mutable std::mutex m_mutex;
    QByteArray m_complaints; ///< guarded by m_mutex
};
