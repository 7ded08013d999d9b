#pragma once

#include <functional>
#include <mutex>
#include <thread>

/// Calls a function on Ctrl-C (SIGINT). One at a time in a program.
class InterruptWatcher
{
public:
    /// The program exits with `exitStatus`: at once if no target is set or on the second Ctrl-C, otherwise
    /// two seconds after the first one, even if it is still waiting.
    explicit InterruptWatcher(int exitStatus);
    ~InterruptWatcher();
    InterruptWatcher(const InterruptWatcher &) = delete;
    InterruptWatcher &operator=(const InterruptWatcher &) = delete;

    /// Sets the function to call, on a separate thread; null removes it and waits until a running call has
    /// returned.
    void setTarget(std::function<void()> target);

private:
    void watch();

    const int m_exitStatus;
    std::mutex m_mutex;
    std::function<void()> m_target; ///< guarded by m_mutex
    std::thread m_thread;
};
