#include "Foundation/KNSemaphore.h"

KNSemaphore::KNSemaphore(QString identifier, int initialValue)
    : m_identifier(std::move(identifier))
    , m_value(initialValue)
{
}

void KNSemaphore::wait()
{
    std::unique_lock lock(m_mutex);
    m_available.wait(lock, [this] { return m_value > 0; });
    --m_value;
}

bool KNSemaphore::tryWait()
{
    return waitFor(std::chrono::milliseconds::zero());
}

bool KNSemaphore::waitFor(std::chrono::milliseconds timeout)
{
    std::unique_lock lock(m_mutex);
    if (!m_available.wait_for(lock, timeout, [this] { return m_value > 0; }))
        return false;
    --m_value;
    return true;
}

void KNSemaphore::signal()
{
    // Notify under the lock: the waiter may destroy the semaphore once it has acquired it.
    const std::lock_guard lock(m_mutex);
    ++m_value;
    m_available.notify_one();
}
