#pragma once

#include "KNSharedExport.h"

#include <chrono>
#include <functional>
#include <memory>

/// Combines frequent changes on any thread into few calls on the main thread: at most one call per interval,
/// and none without a change. At most one event is pending in the main thread. Needs an event loop.
class KNSHARED_EXPORT KNChangeNotifier
{
public:
    static constexpr std::chrono::milliseconds DefaultInterval{33};

    /// Calls `changed` on the main thread until the notifier is destroyed. Slow calls are made at longer
    /// intervals, so that most of the main thread's time remains for other work. On the main thread.
    explicit KNChangeNotifier(std::function<void()> changed,
                              std::chrono::milliseconds interval = DefaultInterval);
    /// On the main thread.
    ~KNChangeNotifier();
    KNChangeNotifier(const KNChangeNotifier &) = delete;
    KNChangeNotifier &operator=(const KNChangeNotifier &) = delete;

    /// Returns a function that reports a change. It is cheap, may be called on any thread, and may outlive
    /// the notifier.
    std::function<void()> trigger() const;

private:
    struct State;
    const std::shared_ptr<State> m_state;
};
