// Loaded into a program that a test disturbs (LD_PRELOAD): writes the stack of the thread that crashes, or
// that is sent SIGXCPU, to standard error. The stack tells a defect of this project's code from one of a
// library.

#include <array>
#include <csignal>
#include <execinfo.h>
#include <initializer_list>
#include <unistd.h>

namespace {

void writeStack(int signal)
{
    static const char Title[] = "\nStack of the thread:\n";
    std::array<void *, 64> frames;
    const int count = backtrace(frames.data(), frames.size());
    if (write(STDERR_FILENO, Title, sizeof Title - 1) > 0)
        backtrace_symbols_fd(frames.data(), count, STDERR_FILENO);
    // The default action, which SA_RESETHAND has brought back, tells the parent of the signal.
    raise(signal);
}

[[gnu::constructor]] void installHandlers()
{
    // Loads what backtrace() needs, which must not happen inside a handler.
    std::array<void *, 1> frame;
    backtrace(frame.data(), frame.size());
    struct sigaction action = {};
    action.sa_handler = writeStack;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGXCPU})
        sigaction(signal, &action, nullptr);
}

} // namespace
