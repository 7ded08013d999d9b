#include "Foundation/KNGlobalQueue.h"

#include "Foundation/KNLoggedRun.h"

#include <chrono>
#include <system_error>
#include <thread>

namespace {

constexpr std::chrono::seconds IdleThreadLifetime(5);

} // namespace

void KNGlobalQueue::add(Work work)
{
    std::unique_lock lock(m_mutex);
    m_queued.push_back(std::move(work));
    if (m_queued.size() <= m_idleThreads || startThread()) {
        m_workArrived.notify_one();
        return;
    }
    if (m_threads > 0)
        return;
    const Work orphan = std::move(m_queued.back());
    m_queued.pop_back();
    lock.unlock();
    KNLoggedRun(orphan);
}

bool KNGlobalQueue::startThread()
{
    try {
        std::thread([this] { runThread(); }).detach();
    } catch (const std::system_error &) {
        return false;
    }
    ++m_threads;
    return true;
}

void KNGlobalQueue::runThread()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        ++m_idleThreads;
        const bool hasWork =
            m_workArrived.wait_for(lock, IdleThreadLifetime, [this] { return !m_queued.empty(); });
        --m_idleThreads;
        if (!hasWork)
            break;
        Work work = std::move(m_queued.front());
        m_queued.pop_front();
        ++m_running;
        lock.unlock();
        KNLoggedRun(work);
        // Destroy the work's captured objects outside the lock, before the work counts as done.
        work = nullptr;
        lock.lock();
        if (--m_running == 0 && m_queued.empty())
            m_becameIdle.notify_all();
    }
    --m_threads;
}

bool KNGlobalQueue::waitUntilIdle(int timeoutMilliseconds)
{
    std::unique_lock lock(m_mutex);
    return m_becameIdle.wait_for(lock, std::chrono::milliseconds(timeoutMilliseconds),
                                 [this] { return m_running == 0 && m_queued.empty(); });
}
