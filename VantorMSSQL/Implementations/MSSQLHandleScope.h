#pragma once

#include "Foundation/KNSemaphore.h"
#include "Implementations/MSSQLCancellation.h"

/// Encloses the db-lib calls of this thread on a connection's handle: holds the handle's semaphore, and lets
/// a cancel interrupt db-lib's waits.
class MSSQLHandleScope
{
public:
    MSSQLHandleScope(KNSemaphore &semaphore, MSSQLCancellation &cancellation)
        : m_semaphore(semaphore)
        , m_cancellation(cancellation)
    {
        retake();
    }
    ~MSSQLHandleScope() { release(); }
    MSSQLHandleScope(const MSSQLHandleScope &) = delete;
    MSSQLHandleScope &operator=(const MSSQLHandleScope &) = delete;

    void release()
    {
        if (!m_held)
            return;
        m_cancellation.leaveLibrary();
        m_semaphore.signal();
        m_held = false;
    }
    void retake()
    {
        m_semaphore.wait();
        m_cancellation.enterLibrary();
        m_held = true;
    }

private:
    KNSemaphore &m_semaphore;
    MSSQLCancellation &m_cancellation;
    bool m_held = false;
};
