#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

class MSSQLClient;

/// Cancels what a client runs when it takes longer than it may. On the running thread, within the run.
class MSSQLQueryTimer
{
public:
    /// Zero allows any time.
    MSSQLQueryTimer(MSSQLClient &client, std::chrono::seconds timeout);
    ~MSSQLQueryTimer();
    MSSQLQueryTimer(const MSSQLQueryTimer &) = delete;
    MSSQLQueryTimer &operator=(const MSSQLQueryTimer &) = delete;

    /// Ends the waiting; whether the time was over before.
    bool stop();

private:
    std::mutex m_mutex;
    std::condition_variable m_stopped;
    bool m_isStopped = false; ///< guarded by m_mutex
    bool m_hasFired = false;  ///< guarded by m_mutex
    std::thread m_thread;
};
