#pragma once

#include <pthread.h>

#include <atomic>
#include <chrono>
#include <mutex>

/// How a run on one connection is stopped from another thread without two threads ever being inside db-lib.
///
/// The running thread either waits for the server outside db-lib, on waitForAnswer(), which a request ends at
/// once; or it is inside db-lib, which asks wantsInterrupt() and timeoutAction() whenever its own waiting is
/// interrupted. A request interrupts that waiting with a signal to the thread. In both cases it is the
/// running thread itself that tells the server to stop, so the session lives on.
class MSSQLCancellation
{
public:
    using Clock = std::chrono::steady_clock;

    /// What db-lib is to do when its waiting was interrupted.
    enum class Action { KeepWaiting, SendAttention, GiveUpConnection };

    /// How long a server may take to acknowledge a request before the connection is given up: while it has
    /// stalled in the middle of rows, and otherwise, when it may have work to undo.
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

    /// \name On the running thread
    /// @{
    /// Begins a run, which takes back earlier requests. Runs nest: the outermost counts.
    void beginRun();
    void endRun();
    /// Gives the connection up when the server has not answered by then. For the time of a login.
    void setDeadline(Clock::time_point deadline) { m_deadline = deadline; }
    void clearDeadline() { m_deadline = Clock::time_point::max(); }
    bool hasDeadline() const { return deadline() != Clock::time_point::max(); }
    /// time_point::max() if there is none.
    Clock::time_point deadline() const { return m_deadline; }
    bool isDeadlineOver() const { return Clock::now() >= deadline(); }
    /// Waits until the first packet of an answer, or its first TLS record, is there whole, a request comes or
    /// the deadline passes.
    /// Called outside db-lib, so that a server that stalls in the middle of that packet keeps nobody inside
    /// it. `packetSize` is what was agreed on, in bytes.
    void waitForAnswer(int socket, int packetSize);
    /// The rows of a result, from the first to the last: a server that is silent there has stalled.
    void beginRows() { m_isStreaming = true; }
    void endRows() { m_isStreaming = false; }
    /// The stretch during which this thread is inside db-lib, where it may wait for the server.
    void enterLibrary();
    void leaveLibrary();
    /// The request has been told to the server: its patience runs from now.
    void attentionSent();
    /// @}

    /// \name Inside db-lib, on the thread that waits there
    /// @{
    bool wantsInterrupt() const;
    Action timeoutAction();
    /// @}

    /// \name On any thread
    /// @{
    /// Asks the current run to stop; false when none is running.
    bool request();
    /// Interrupts the waiting of the thread that is inside db-lib, if one is. To be repeated until it has
    /// left: it may be just about to wait.
    void interruptLibrary();
    /// Whether the current or the last run was asked to stop.
    bool isRequested() const { return m_requested.load(std::memory_order_acquire); }
    /// Can be read as long as the current run is asked to stop. It belongs to this object.
    int requestDescriptor() const { return m_wakeUp; }
    /// Waits until the current run is asked to stop or its deadline has passed; false when `endDescriptor`
    /// can be read first.
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

/// The time of a login: sets a deadline for its duration, unless there is one already.
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

/// Marks a run for its duration, so that a cancel finds something to stop.
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
