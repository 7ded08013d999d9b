#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

/// Queues work for the main thread, in order of submission. Other threads access only the lock and a wake-up
/// descriptor, which the event loop of the QCoreApplication watches.
class KNMainQueue
{
public:
    using Work = std::function<void()>;

    KNMainQueue();

    void add(Work work);
    /// Whether the caller is the main thread.
    bool isMainThread();
    /// Makes the caller the main thread.
    void claimMainThread();
    /// Waits up to `timeoutMilliseconds` for the first item, then runs all queued items; true if something
    /// ran.
    bool pump(int timeoutMilliseconds);

    /// A descriptor that is readable while work is queued.
    int wakeUpDescriptor() const { return m_wakeUpDescriptor; }
    /// Clears the wake-up and runs one item. Requests the next wake-up first, so that an item that runs a
    /// nested event loop does not delay the items queued after it.
    void runOneAfterWakeUp();

private:
    Work takeFirst();
    void wakeUp() const;

    const int m_wakeUpDescriptor;
    std::mutex m_mutex; ///< guards everything below
    std::condition_variable m_workArrived;
    std::deque<Work> m_queued;
    std::thread::id m_mainThread;
};
