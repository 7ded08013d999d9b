#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

/// A pool whose tasks may block: it has always one thread per task that is running or queued.
class KNGlobalQueue
{
public:
    using Work = std::function<void()>;

    /// Queues `work` for an idle thread or a new one. When the system refuses a new thread the work waits for
    /// one that becomes free, and runs on the caller when there is none at all.
    void add(Work work);
    /// Waits until nothing is running or queued; false after `timeoutMilliseconds`.
    bool waitUntilIdle(int timeoutMilliseconds);

private:
    void runThread();
    bool startThread();

    std::mutex m_mutex; ///< guards everything below
    std::condition_variable m_workArrived;
    std::condition_variable m_becameIdle;
    std::deque<Work> m_queued;
    std::size_t m_threads = 0;
    std::size_t m_idleThreads = 0;
    std::size_t m_running = 0;
};
