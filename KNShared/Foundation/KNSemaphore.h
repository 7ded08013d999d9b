#pragma once

#include "KNSharedExport.h"

#include <QString>

#include <chrono>
#include <condition_variable>
#include <mutex>

/// A named counting semaphore. All operations may be called from any thread.
class KNSHARED_EXPORT KNSemaphore
{
public:
    explicit KNSemaphore(QString identifier, int initialValue = 1);
    KNSemaphore(const KNSemaphore &) = delete;
    KNSemaphore &operator=(const KNSemaphore &) = delete;

    const QString &identifier() const { return m_identifier; }
    /// Waits without a timeout.
    void wait();
    /// Acquires the semaphore if that does not block; true if acquired.
    bool tryWait();
    /// Waits for at most `timeout`; true if acquired.
    bool waitFor(std::chrono::milliseconds timeout);
    void signal();

private:
    const QString m_identifier;
    std::mutex m_mutex;
    std::condition_variable m_available;
    int m_value; ///< guarded by m_mutex
};

/// Holds a semaphore for a scope; can release and reacquire it within the scope.
class KNSHARED_EXPORT KNSemaphoreLocker
{
public:
    explicit KNSemaphoreLocker(KNSemaphore &semaphore)
        : m_semaphore(semaphore)
    {
        m_semaphore.wait();
    }
    ~KNSemaphoreLocker() { release(); }
    KNSemaphoreLocker(const KNSemaphoreLocker &) = delete;
    KNSemaphoreLocker &operator=(const KNSemaphoreLocker &) = delete;

    void release()
    {
        if (m_held)
            m_semaphore.signal();
        m_held = false;
    }
    void retake()
    {
        if (!m_held)
            m_semaphore.wait();
        m_held = true;
    }

private:
    KNSemaphore &m_semaphore;
    bool m_held = true;
};
