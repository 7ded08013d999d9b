#include "CommandLine/InterruptWatcher.h"

#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>

namespace {

constexpr unsigned SecondsToEnd = 2;
constexpr eventfd_t EndOfWatching = 1u << 30;

// Variables that the signal handlers use: handlers may only write to a descriptor, set an alarm or exit.
std::atomic<int> wakeUp = -1;
std::atomic<int> interruptCount = 0;
std::atomic<int> statusOfInterrupt = 1;

void endProgram(int)
{
    _exit(statusOfInterrupt);
}

void handleInterrupt(int)
{
    if (interruptCount.fetch_add(1) > 0)
        _exit(statusOfInterrupt);
    alarm(SecondsToEnd);
    eventfd_write(wakeUp, 1);
}

void handle(int signal, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, nullptr);
}

} // namespace

InterruptWatcher::InterruptWatcher(int exitStatus)
    : m_exitStatus(exitStatus)
{
    statusOfInterrupt = exitStatus;
    wakeUp = eventfd(0, EFD_CLOEXEC);
    m_thread = std::thread([this] { watch(); });
    handle(SIGALRM, endProgram);
    handle(SIGINT, handleInterrupt);
}

InterruptWatcher::~InterruptWatcher()
{
    signal(SIGINT, SIG_DFL);
    eventfd_write(wakeUp, EndOfWatching);
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
    for (;;) {
        eventfd_t count = 0;
        if (eventfd_read(wakeUp, &count) != 0)
            continue;
        if (count >= EndOfWatching)
            return;
        const std::lock_guard lock(m_mutex);
        if (!m_target)
            _exit(m_exitStatus);
        m_target();
    }
}
