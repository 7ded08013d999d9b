#include "Implementations/MSSQLQueryTimer.h"

#include "Implementations/MSSQLClient.h"

MSSQLQueryTimer::MSSQLQueryTimer(MSSQLClient &client, std::chrono::seconds timeout)
{
    if (timeout.count() == 0)
        return;
    m_thread = std::thread([this, &client, timeout] {
        std::unique_lock lock(m_mutex);
        if (m_stopped.wait_for(lock, timeout, [this] { return m_isStopped; }))
            return;
        m_hasFired = true;
        lock.unlock();
        KNError ignored; // the run itself reports the result
        client.cancelCurrentQuery(&ignored);
    });
}

MSSQLQueryTimer::~MSSQLQueryTimer()
{
    stop();
}

bool MSSQLQueryTimer::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isStopped = true;
        m_stopped.notify_all();
    }
    if (m_thread.joinable())
        m_thread.join();
    return m_hasFired;
}
