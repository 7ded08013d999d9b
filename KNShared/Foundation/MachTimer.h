#pragma once

#include <chrono>

/// Measures the time since its construction on the monotonic clock.
class MachTimer
{
public:
    MachTimer()
        : m_start(std::chrono::steady_clock::now())
    {
    }

    double seconds() const
    {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_start).count();
    }
    void restart() { m_start = std::chrono::steady_clock::now(); }

private:
    std::chrono::steady_clock::time_point m_start;
};
