#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

/// Work for the main thread, in order of arrival. Other threads touch nothing but the lock and a wake-up
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
    /// Waits up to `timeoutMilliseconds` for the first piece, then runs all that is queued; true when
    /// something ran.
    bool pump(int timeoutMilliseconds);

    /// Becomes readable when there is work.
    int wakeUpDescriptor() const { return m_wakeUpDescriptor; }
    /// Takes the wake-up and runs one piece; asks for the next wake-up first, so that work that runs an event
    /// loop of its own does not hold up what was queued behind it.
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
