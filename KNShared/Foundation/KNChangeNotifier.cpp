#include "Foundation/KNChangeNotifier.h"

#include "Foundation/KNDispatch.h"

#include <QTimer>

#include <algorithm>
#include <atomic>

namespace {

/// The minimum pause after a call, as a multiple of the call's duration.
constexpr int LongestShare = 4;

} // namespace

struct KNChangeNotifier::State : std::enable_shared_from_this<State>
{
    using Clock = std::chrono::steady_clock;

    std::atomic<bool> isPending = false; ///< a call is due, and an event or a timer is scheduled for it
    std::function<void()> changed; ///< empty after the notifier was destroyed; main thread, as all below
    std::chrono::milliseconds interval;
    Clock::time_point next = {}; ///< the earliest time of the next call

    void schedule()
    {
        const auto wait = std::chrono::ceil<std::chrono::milliseconds>(next - Clock::now());
        if (wait.count() <= 0)
            call();
        else
            QTimer::singleShot(wait, [self = shared_from_this()] { self->call(); });
    }

    void call()
    {
        if (!changed)
            return;
        // Reset before the call, so that a change during the call causes another one.
        isPending = false;
        const auto begin = Clock::now();
        const auto callee = changed; // the call may destroy the notifier
        callee();
        const auto end = Clock::now();
        next = std::max(begin + interval, end + LongestShare * (end - begin));
    }
};

KNChangeNotifier::KNChangeNotifier(std::function<void()> changed, std::chrono::milliseconds interval)
    : m_state(std::make_shared<State>())
{
    m_state->changed = std::move(changed);
    m_state->interval = interval;
}

KNChangeNotifier::~KNChangeNotifier()
{
    m_state->changed = nullptr;
}

std::function<void()> KNChangeNotifier::trigger() const
{
    return [state = m_state] {
        if (!state->isPending.exchange(true))
            KNDispatch::mainQueue([state] { state->schedule(); });
    };
}
