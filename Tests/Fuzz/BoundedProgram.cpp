#include "Fuzz/BoundedProgram.h"

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds TimeForTheStack{5};

std::vector<char *> pointersTo(std::vector<std::string> &texts)
{
    std::vector<char *> pointers;
    for (std::string &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> environmentWith(const std::vector<std::string> &added)
{
    std::vector<std::string> environment = added;
    for (char **entry = environ; *entry; ++entry) {
        const std::string text = *entry;
        const std::string name = text.substr(0, text.find('=') + 1);
        if (std::none_of(added.begin(), added.end(),
                         [&](const std::string &replaced) { return replaced.starts_with(name); }))
            environment.push_back(text);
    }
    return environment;
}

/// Between fork and exec in a process of several threads: only system calls.
[[noreturn]] void becomeProgram(char *const *arguments, char *const *environment, const char *errorFile)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    // Protects this machine from a program that allocates without end.
    const rlimit addresses{rlim_t{4} << 30, rlim_t{4} << 30};
    ::setrlimit(RLIMIT_AS, &addresses);
#endif
    const rlimit noCore{0, 0};
    ::setrlimit(RLIMIT_CORE, &noCore);
    ::dup2(::open("/dev/null", O_RDWR | O_CLOEXEC), STDIN_FILENO);
    ::dup2(STDIN_FILENO, STDOUT_FILENO);
    ::dup2(::open(errorFile, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600), STDERR_FILENO);
    ::execve(arguments[0], arguments, environment);
    ::_exit(127);
}

/// The processor time of a thread in clock ticks.
long ticksOf(const std::filesystem::path &threadFolder)
{
    std::ifstream file(threadFolder / "stat");
    std::string text(std::istreambuf_iterator<char>(file), {});
    std::istringstream fields(text.substr(std::min(text.rfind(')') + 1, text.size())));
    std::string ignored;
    for (int field = 0; field < 11; ++field)
        fields >> ignored;
    long userTicks = 0;
    long systemTicks = 0;
    fields >> userTicks >> systemTicks;
    return userTicks + systemTicks;
}

pid_t busiestThread(pid_t process)
{
    pid_t busiest = process;
    long mostTicks = -1;
    std::error_code error;
    const std::filesystem::directory_iterator threads("/proc/" + std::to_string(process) + "/task", error);
    for (const auto &thread : threads) {
        const long ticks = ticksOf(thread.path());
        if (ticks > mostTicks) {
            mostTicks = ticks;
            busiest = static_cast<pid_t>(std::stol(thread.path().filename().string()));
        }
    }
    return busiest;
}

} // namespace

BoundedProgram::Outcome BoundedProgram::run(std::chrono::seconds bound) const
{
    std::vector<std::string> arguments = command;
    std::vector<std::string> variables = environmentWith(environment);
    const std::vector<char *> argumentPointers = pointersTo(arguments);
    const std::vector<char *> variablePointers = pointersTo(variables);
    const auto begin = Clock::now();
    const pid_t process = ::fork();
    if (process == 0)
        becomeProgram(argumentPointers.data(), variablePointers.data(), errorFile.c_str());
    if (process < 0)
        throw std::runtime_error("The program cannot be started.");

    Outcome outcome;
    int status = 0;
    rusage usage{};
    while (::wait4(process, &status, WNOHANG, &usage) == 0) {
        if (!outcome.wasTooSlow && Clock::now() - begin > bound) {
            outcome.wasTooSlow = true;
            ::syscall(SYS_tgkill, process, busiestThread(process), SIGXCPU);
        } else if (Clock::now() - begin > bound + TimeForTheStack) {
            ::kill(process, SIGKILL);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    outcome.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    outcome.maximumKilobytes = usage.ru_maxrss;
    return outcome;
}
