#pragma once

#include <pthread.h>

#include <atomic>
#include <chrono>
#include <mutex>

/// Stops a run on one connection from another thread, so that two threads are never inside db-lib at once.
/// || The running thread either waits for the server outside db-lib, in waitForAnswer(), which a request ends
/// at once; or it is inside db-lib, which calls wantsInterrupt() and timeoutAction() whenever its wait is
/// interrupted. A request interrupts that wait with a signal to the thread. In both cases the running thread
/// itself sends the attention to the server, so the session survives.
class MSSQLCancellation
{
public:
    using Clock = std::chrono::steady_clock;

    /// The result that db-lib's interrupt handler returns.
    enum class Action { KeepWaiting, SendAttention, GiveUpConnection };

    /// Time limits for a server to acknowledge a cancel before the connection is closed: while it stalls
    /// between rows, and otherwise, when it may be rolling work back.
    struct Patience
    {
        std::chrono::milliseconds inRows = std::chrono::milliseconds(900);
        std::chrono::milliseconds otherwise = std::chrono::seconds(60);
    };

    MSSQLCancellation();
    explicit MSSQLCancellation(Patience patience);
    ~MSSQLCancellation();
    MSSQLCancellation(const MSSQLCancellation &) = delete;
    MSSQLCancellation &operator=(const MSSQLCancellation &) = delete;

    /// Begins a run and clears earlier requests. Runs nest: only the outermost begins and ends one.
    void beginRun();
    void endRun();
    /// Closes the connection if the server has not answered by then. Used during a login.
    void setDeadline(Clock::time_point deadline) { m_deadline = deadline; }
    void clearDeadline() { m_deadline = Clock::time_point::max(); }
    bool hasDeadline() const { return deadline() != Clock::time_point::max(); }
    /// time_point::max() if there is none.
    Clock::time_point deadline() const { return m_deadline; }
    bool isDeadlineOver() const { return Clock::now() >= deadline(); }
    /// Waits until the first packet of an answer, or its first TLS record, has arrived completely, a request
    /// arrives or the deadline passes. Called outside db-lib, so that a server that stalls within that packet
    /// does not block a thread inside it. `packetSize` is the negotiated size, in bytes.
    void waitForAnswer(int socket, int packetSize);
    /// Enclose the reading of a result's rows: a server that is silent there has stalled.
    void beginRows() { m_isStreaming = true; }
    void endRows() { m_isStreaming = false; }
    /// Enclose the time during which this thread is inside db-lib, where it may wait for the server.
    void enterLibrary();
    void leaveLibrary();
    /// Notes that the attention was sent: the acknowledgement's time limit starts now.
    void attentionSent();
    /// @}

    /// \name Inside db-lib, on the thread that waits there
    /// @{
    bool wantsInterrupt() const;
    Action timeoutAction();
    /// @}

    /// Requests that the current run stops; false if none is running.
    bool request();
    /// Interrupts the wait of the thread inside db-lib, if there is one. Call it repeatedly until that thread
    /// has left db-lib: it may be about to wait.
    void interruptLibrary();
    /// Whether a stop of the current or the last run was requested.
    bool isRequested() const { return m_requested.load(std::memory_order_acquire); }
    /// A descriptor that is readable while a stop of the current run is requested. Owned by this object.
    int requestDescriptor() const { return m_wakeUp; }
    /// Waits until a stop of the current run is requested or its deadline has passed; false if
    /// `endDescriptor` becomes readable first.
    bool waitForStop(int endDescriptor) const;
    /// @}

private:
    bool isPatienceOver() const;
    void waitFor(int socket) const;

    const Patience m_patience;
    const int m_wakeUp; ///< an eventfd

    std::atomic<bool> m_requested = false;
    std::atomic<bool> m_attentionSent = false;
    std::atomic<bool> m_isStreaming = false;
    std::atomic<Clock::time_point> m_attentionTime{};
    std::atomic<Clock::time_point> m_deadline = Clock::time_point::max();

    std::mutex m_mutex;
    int m_runs = 0;              ///< guarded by m_mutex
    bool m_inLibrary = false;    ///< guarded by m_mutex
    pthread_t m_libraryThread{}; ///< guarded by m_mutex
};

/// Sets a deadline for its own lifetime, unless one is set already. Used for a login.
class MSSQLDeadlineScope
{
public:
    MSSQLDeadlineScope(MSSQLCancellation &cancellation, std::chrono::milliseconds timeout)
        : m_cancellation(cancellation)
        , m_isOutermost(!cancellation.hasDeadline())
    {
        if (m_isOutermost)
            m_cancellation.setDeadline(MSSQLCancellation::Clock::now() + timeout);
    }
    ~MSSQLDeadlineScope()
    {
        if (m_isOutermost)
            m_cancellation.clearDeadline();
    }
    MSSQLDeadlineScope(const MSSQLDeadlineScope &) = delete;
    MSSQLDeadlineScope &operator=(const MSSQLDeadlineScope &) = delete;

private:
    MSSQLCancellation &m_cancellation;
    const bool m_isOutermost;
};

/// Marks a run for its lifetime, so that a cancel finds a run to stop.
class MSSQLRunScope
{
public:
    explicit MSSQLRunScope(MSSQLCancellation &cancellation)
        : m_cancellation(cancellation)
    {
        m_cancellation.beginRun();
    }
    ~MSSQLRunScope() { m_cancellation.endRun(); }
    MSSQLRunScope(const MSSQLRunScope &) = delete;
    MSSQLRunScope &operator=(const MSSQLRunScope &) = delete;

private:
    MSSQLCancellation &m_cancellation;
};
