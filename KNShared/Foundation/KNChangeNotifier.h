#pragma once

#include "KNSharedExport.h"

#include <chrono>
#include <functional>
#include <memory>

/// Turns many changes on any thread into few calls on the main thread: no more than one call in an interval,
/// and none without a change. Events of the main thread stay few, too: at most one is pending. Needs an event
/// loop.
class KNSHARED_EXPORT KNChangeNotifier
{
public:
    static constexpr std::chrono::milliseconds DefaultInterval{33};

    /// `changed` is called on the main thread, until the notifier is destroyed. Calls that take long come at
    /// longer intervals, so that most of the main thread's time is left for other work. On the main thread.
    explicit KNChangeNotifier(std::function<void()> changed,
                              std::chrono::milliseconds interval = DefaultInterval);
    /// On the main thread.
    ~KNChangeNotifier();
    KNChangeNotifier(const KNChangeNotifier &) = delete;
    KNChangeNotifier &operator=(const KNChangeNotifier &) = delete;

    /// A function that reports a change. It costs little, may be called on any thread, and may outlive the
    /// notifier.
    std::function<void()> trigger() const;

private:
    struct State;
    const std::shared_ptr<State> m_state;
};
