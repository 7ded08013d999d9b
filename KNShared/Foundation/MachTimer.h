#pragma once

#include <chrono>

/// Measures elapsed time on the monotonic clock, from its construction on.
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
