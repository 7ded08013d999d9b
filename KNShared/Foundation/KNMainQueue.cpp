#include "Foundation/KNMainQueue.h"

#include "Foundation/KNLoggedRun.h"

#include <chrono>
#include <cstdint>

#include <sys/eventfd.h>
#include <unistd.h>

KNMainQueue::KNMainQueue()
    : m_wakeUpDescriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
}

void KNMainQueue::add(Work work)
{
    {
        const std::lock_guard lock(m_mutex);
        m_queued.push_back(std::move(work));
        m_workArrived.notify_one();
    }
    wakeUp();
}

void KNMainQueue::wakeUp() const
{
    // Fails only if the counter has its maximum value; the descriptor is readable then.
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(m_wakeUpDescriptor, &one, sizeof one);
}

bool KNMainQueue::isMainThread()
{
    const std::lock_guard lock(m_mutex);
    return m_mainThread == std::this_thread::get_id();
}

void KNMainQueue::claimMainThread()
{
    const std::lock_guard lock(m_mutex);
    m_mainThread = std::this_thread::get_id();
}

KNMainQueue::Work KNMainQueue::takeFirst()
{
    const std::lock_guard lock(m_mutex);
    if (m_queued.empty())
        return {};
    Work work = std::move(m_queued.front());
    m_queued.pop_front();
    if (!m_queued.empty())
        wakeUp();
    return work;
}

bool KNMainQueue::pump(int timeoutMilliseconds)
{
    std::unique_lock lock(m_mutex);
    const bool hasWork = m_workArrived.wait_for(lock, std::chrono::milliseconds(timeoutMilliseconds),
                                                [this] { return !m_queued.empty(); });
    lock.unlock();
    if (!hasWork)
        return false;
    while (const Work work = takeFirst())
        KNLoggedRun(work);
    return true;
}

void KNMainQueue::runOneAfterWakeUp()
{
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t taken = read(m_wakeUpDescriptor, &count, sizeof count);
    if (const Work work = takeFirst())
        KNLoggedRun(work);
}
