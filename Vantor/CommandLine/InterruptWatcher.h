#pragma once

#include <functional>
#include <mutex>
#include <thread>

/// Turns Ctrl-C (SIGINT) into a call. One at a time in a program.
class InterruptWatcher
{
public:
    /// The program ends with `exitStatus` at once when there is no target and at the second Ctrl-C, and two
    /// seconds after the first one whatever it waits for.
    explicit InterruptWatcher(int exitStatus);
    ~InterruptWatcher();
    InterruptWatcher(const InterruptWatcher &) = delete;
    InterruptWatcher &operator=(const InterruptWatcher &) = delete;

    /// What to call, on a thread of its own; nothing ends it, and waits for a call that is under way.
    void setTarget(std::function<void()> target);

private:
    void watch();

    const int m_exitStatus;
    std::mutex m_mutex;
    std::function<void()> m_target; ///< guarded by m_mutex
    std::thread m_thread;
};
