#pragma once

#include "Wire/Transport.h"

#include <algorithm>

namespace SampleServer {

/// What is left of a time-out while several waits share it.
class Countdown
{
public:
    using Clock = std::chrono::steady_clock;

    /// `timeout` as Transport::waitReadable() takes it.
    explicit Countdown(std::chrono::milliseconds timeout)
        : m_end(timeout < std::chrono::milliseconds::zero() ? Clock::time_point::max()
                                                            : Clock::now() + timeout)
    {
    }
    explicit Countdown(Clock::time_point end)
        : m_end(end)
    {
    }

    /// Transport::Forever, or what is left, which is never less than zero.
    std::chrono::milliseconds left() const
    {
        if (m_end == Clock::time_point::max())
            return Transport::Forever;
        return std::max(std::chrono::ceil<std::chrono::milliseconds>(m_end - Clock::now()),
                        std::chrono::milliseconds::zero());
    }

private:
    Clock::time_point m_end;
};

} // namespace SampleServer
