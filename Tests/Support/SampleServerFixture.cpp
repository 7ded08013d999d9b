#include "Support/SampleServerFixture.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds StartBound{30};

std::vector<std::string> environmentWith(const std::map<std::string, std::string> &added)
{
    std::vector<std::string> environment;
    for (char **entry = environ; *entry; ++entry) {
        const std::string text = *entry;
        if (!added.contains(text.substr(0, text.find('='))))
            environment.push_back(text);
    }
    for (const auto &[name, value] : added)
        environment.emplace_back(name).append("=").append(value);
    return environment;
}

std::vector<char *> pointersTo(std::vector<std::string> &texts)
{
    std::vector<char *> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// The number after the last colon of "Listening on 127.0.0.1:14330".
std::uint16_t portIn(const std::string &line)
{
    return static_cast<std::uint16_t>(std::stoi(line.substr(line.rfind(':') + 1)));
}

/// Reads up to a line end, byte by byte so that nothing of the next line is taken.
std::string readLine(int fd, Clock::time_point deadline)
{
    std::string line;
    for (char byte = 0; byte != '\n'; line += byte) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        pollfd poller{fd, POLLIN, 0};
        if (left.count() <= 0 || ::poll(&poller, 1, static_cast<int>(left.count())) <= 0)
            throw std::runtime_error("The sample server did not say in time where it listens.");
        if (::read(fd, &byte, 1) != 1)
            throw std::runtime_error("The sample server ended before it listened.");
    }
    line.pop_back();
    return line;
}

} // namespace

SampleServerFixture::SampleServerFixture()
    : SampleServerFixture(Options{})
{
}

SampleServerFixture::SampleServerFixture(const Options &options)
{
    start(options);
    try {
        readPorts();
    } catch (...) {
        kill();
        ::close(m_output);
        throw;
    }
}

SampleServerFixture::~SampleServerFixture()
{
    if (m_pid > 0 && !stop())
        kill();
    ::close(m_output);
}

const char *SampleServerFixture::program()
{
    return VANTOR_TEST_SERVER;
}

SampleServerFixture &SampleServerFixture::shared()
{
    static SampleServerFixture server;
    return server;
}

void SampleServerFixture::start(const Options &options)
{
    std::vector<std::string> arguments = {program(), "--port", "0"};
    arguments.insert(arguments.end(), options.arguments.begin(), options.arguments.end());
    std::vector<std::string> environment = environmentWith(options.environment);
    // Ready before the fork: after it, in a process of many threads, nothing may be allocated.
    const std::vector<char *> argumentPointers = pointersTo(arguments);
    const std::vector<char *> environmentPointers = pointersTo(environment);

    int pipe[2];
    if (::pipe2(pipe, O_CLOEXEC) != 0)
        throw std::runtime_error("There is no pipe for the sample server.");
    const pid_t parent = ::getpid();
    m_pid = ::fork();
    if (m_pid == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() == parent && ::dup2(pipe[1], STDOUT_FILENO) >= 0)
            ::execve(argumentPointers[0], argumentPointers.data(), environmentPointers.data());
        ::_exit(127);
    }
    ::close(pipe[1]);
    m_output = pipe[0];
    if (m_pid < 0) {
        ::close(m_output);
        throw std::runtime_error("The sample server cannot be started.");
    }
}

void SampleServerFixture::readPorts()
{
    const auto deadline = Clock::now() + StartBound;
    while (m_port == 0) {
        const std::string line = readLine(m_output, deadline);
        if (line.starts_with("Browser on "))
            m_browserPort = portIn(line);
        else if (line.starts_with("Listening on "))
            m_port = portIn(line);
    }
}

std::optional<int> SampleServerFixture::waitForEnd(std::chrono::milliseconds bound)
{
    for (const auto deadline = Clock::now() + bound;;) {
        int status = 0;
        const pid_t ended = ::waitpid(m_pid, &status, WNOHANG);
        if (ended == m_pid || (ended < 0 && errno == ECHILD)) {
            m_pid = -1;
            return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        }
        if (Clock::now() >= deadline)
            return std::nullopt;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

std::optional<int> SampleServerFixture::stop(std::chrono::milliseconds bound)
{
    if (m_pid <= 0)
        return std::nullopt;
    ::kill(m_pid, SIGTERM);
    return waitForEnd(bound);
}

void SampleServerFixture::kill()
{
    if (m_pid <= 0)
        return;
    ::kill(m_pid, SIGKILL);
    waitForEnd(std::chrono::seconds(10));
}
