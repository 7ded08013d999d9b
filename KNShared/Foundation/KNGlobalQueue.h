#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

/// A thread pool whose tasks may block: it has one thread per running or queued task.
class KNGlobalQueue
{
public:
    using Work = std::function<void()>;

    /// Queues `work` for an idle or new thread. If the system cannot create a thread, the work waits for a
    /// free thread, or runs on the caller if the pool has no threads.
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
