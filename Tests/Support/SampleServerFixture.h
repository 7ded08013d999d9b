#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

/// A vantor-sample-server as a child process on a free loopback port, from construction to destruction.
/// Create it on a thread that outlives it: the child is killed when that thread ends, so that a crashed test
/// leaves nothing behind.
class SampleServerFixture
{
public:
    static constexpr const char *Host = "127.0.0.1";
    static constexpr const char *User = "sa";
    static constexpr const char *Password = "Sample-1";

    /// The path of the program.
    static const char *program();

    struct Options
    {
        std::vector<std::string> arguments = {};             ///< beside --port 0
        std::map<std::string, std::string> environment = {}; ///< added to this process's environment
    };

    /// Returns when the server listens. Throws std::runtime_error when it does not come up within half a
    /// minute.
    SampleServerFixture();
    explicit SampleServerFixture(const Options &options);
    /// Ends the server: SIGTERM, and SIGKILL when it does not heed that.
    ~SampleServerFixture();
    SampleServerFixture(const SampleServerFixture &) = delete;
    SampleServerFixture &operator=(const SampleServerFixture &) = delete;

    /// One server for all tests of a program that need nothing special, started when first asked for.
    static SampleServerFixture &shared();

    std::uint16_t port() const { return m_port; }
    /// The UDP port of the Browser; 0 unless started with --browser-port.
    std::uint16_t browserPort() const { return m_browserPort; }
    pid_t processId() const { return m_pid; }

    /// Sends SIGTERM and waits. The exit status, 128 + number for death by a signal; empty when time ran out
    /// or it had ended before.
    std::optional<int> stop(std::chrono::milliseconds bound = std::chrono::seconds(10));
    /// Ends the server as a crash would.
    void kill();

private:
    void start(const Options &options);
    void readPorts();
    std::optional<int> waitForEnd(std::chrono::milliseconds bound);

    pid_t m_pid = -1; ///< -1 once it has ended
    int m_output = -1;
    std::uint16_t m_port = 0;
    std::uint16_t m_browserPort = 0;
};
