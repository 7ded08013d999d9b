#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

class MSSQLClient;

/// Cancels a client's run after a time limit. Created on the running thread, within the run.
class MSSQLQueryTimer
{
public:
    /// Zero means no limit.
    MSSQLQueryTimer(MSSQLClient &client, std::chrono::seconds timeout);
    ~MSSQLQueryTimer();
    MSSQLQueryTimer(const MSSQLQueryTimer &) = delete;
    MSSQLQueryTimer &operator=(const MSSQLQueryTimer &) = delete;

    /// Stops the timer; true if the time limit had passed.
    bool stop();

private:
    std::mutex m_mutex;
    std::condition_variable m_stopped;
    bool m_isStopped = false; ///< guarded by m_mutex
    bool m_hasFired = false;  ///< guarded by m_mutex
    std::thread m_thread;
};
