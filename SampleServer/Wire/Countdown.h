#pragma once

#include "Wire/Transport.h"

#include <algorithm>

namespace SampleServer {

/// The remaining time of a timeout shared by several waits.
class Countdown
{
public:
    using Clock = std::chrono::steady_clock;

    /// `timeout` as in Transport::waitReadable().
    explicit Countdown(std::chrono::milliseconds timeout)
        : m_end(timeout < std::chrono::milliseconds::zero() ? Clock::time_point::max()
                                                            : Clock::now() + timeout)
    {
    }
    explicit Countdown(Clock::time_point end)
        : m_end(end)
    {
    }

    /// Transport::Forever, or the remaining time, which is never negative.
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
