#include "CommandLine/InterruptWatcher.h"

#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>

namespace {

// What the signal handler touches: it may do no more than write to a descriptor.
std::atomic<int> wakeUp = -1;
std::atomic<bool> isCalling = false;
std::atomic<int> statusOfImpatience = 1;

void handleInterrupt(int)
{
    if (isCalling)
        _exit(statusOfImpatience);
    eventfd_write(wakeUp, 1);
}

} // namespace

InterruptWatcher::InterruptWatcher(int exitStatus)
    : m_exitStatus(exitStatus)
{
    statusOfImpatience = exitStatus;
    wakeUp = eventfd(0, EFD_CLOEXEC);
    m_thread = std::thread([this] { watch(); });
    struct sigaction action = {};
    action.sa_handler = handleInterrupt;
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
}

InterruptWatcher::~InterruptWatcher()
{
    signal(SIGINT, SIG_DFL);
    constexpr eventfd_t End = 1u << 30;
    eventfd_write(wakeUp, End);
    m_thread.join();
    close(wakeUp.exchange(-1));
}

void InterruptWatcher::setTarget(std::function<void()> target)
{
    const std::lock_guard lock(m_mutex);
    m_target = std::move(target);
}

void InterruptWatcher::watch()
{
    constexpr eventfd_t End = 1u << 30;
    for (;;) {
        eventfd_t count = 0;
        if (eventfd_read(wakeUp, &count) != 0)
            continue;
        if (count >= End)
            return;
        const std::lock_guard lock(m_mutex);
        if (!m_target)
            _exit(m_exitStatus);
        isCalling = true;
        m_target();
        isCalling = false;
    }
}
