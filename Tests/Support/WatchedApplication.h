#pragma once

#include <QApplication>
#include <QEvent>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <string>
#include <sys/resource.h>
#include <typeinfo>
#include <unistd.h>

/// An application that measures how long each event holds the UI thread up.
class WatchedApplication : public QApplication
{
public:
    using QApplication::QApplication;

    /// Milliseconds that no call may take; more in a sanitized build, which is several times as slow.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    static constexpr double LongestAllowed = 500;
#else
    static constexpr double LongestAllowed = 100;
#endif

    struct Call
    {
        double milliseconds = 0; ///< of the thread's own work, or altogether if it waited for something
        std::string what;
    };

    static WatchedApplication &instance()
    {
        return *static_cast<WatchedApplication *>(qApp);
    }

    /// Forgets what was measured so far.
    void beginWatch()
    {
        m_longest = {};
    }
    /// The longest call since beginWatch().
    const Call &longestCall() const
    {
        return m_longest;
    }

    /// Measures something that the test does itself on the UI thread as if it were an event.
    template <typename Work>
    void watch(const char *what, const Work &work)
    {
        const Moment begin = now();
        ++m_depth;
        work();
        --m_depth;
        record(begin, what);
    }

    bool notify(QObject *receiver, QEvent *event) override
    {
        if (m_depth > 0)
            return QApplication::notify(receiver, event); // a part of the call that is measured
        const std::string what = std::string(typeid(*receiver).name()) + ", event " +
                                 std::to_string(static_cast<int>(event->type()));
        bool answer = false;
        watch(what.c_str(), [&] { answer = QApplication::notify(receiver, event); });
        return answer;
    }

private:
    struct Moment
    {
        double wall; ///< milliseconds, as the next
        double own;
        double queued; ///< ready to run, while other threads had the processors
        long waits;
    };

    static double millisecondsOf(clockid_t clock)
    {
        timespec time{};
        clock_gettime(clock, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    }
    /// The second number of the thread's schedstat, in nanoseconds; 0 where the kernel does not count it.
    static double millisecondsQueued()
    {
        static const int file = ::open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC);
        char text[96] = {};
        unsigned long long running = 0, queued = 0;
        if (file < 0 || ::pread(file, text, sizeof text - 1, 0) <= 0 ||
            std::sscanf(text, "%llu %llu", &running, &queued) != 2)
            return 0;
        return static_cast<double>(queued) / 1e6;
    }
    static Moment now()
    {
        rusage usage{};
        getrusage(RUSAGE_THREAD, &usage);
        return {millisecondsOf(CLOCK_MONOTONIC), millisecondsOf(CLOCK_THREAD_CPUTIME_ID),
                millisecondsQueued(), usage.ru_nvcsw};
    }

    void record(const Moment &begin, const char *what)
    {
        const Moment end = now();
        // Other programs may have had the processors meanwhile: that time is not the call's.
        const bool hasWaited = end.waits > begin.waits;
        const double waited = end.wall - begin.wall - (end.queued - begin.queued);
        const double milliseconds = hasWaited ? waited : end.own - begin.own;
        if (milliseconds > m_longest.milliseconds)
            m_longest = {milliseconds, what};
    }

    int m_depth = 0;
    Call m_longest;
};
