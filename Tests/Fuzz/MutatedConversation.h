#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

/// A conversation of vantor-cli with a sample server whose bytes a seed changes.
class MutatedConversation
{
public:
    /// A run of vantor-cli, and the first byte of the server that may be changed.
    struct Scenario
    {
        std::vector<std::string> arguments; ///< without the server
        std::uint64_t begin = 0;
        std::uint64_t end = 0;
    };

    /// The kinds of conversations: login, rows, tree, script.
    static std::vector<std::string> phases();
    /// The scenarios of a phase, between which its seeds alternate. Holds the conversation of each
    /// undisturbed to measure it. Throws std::runtime_error when it fails.
    static std::vector<Scenario> scenarios(const std::string &phase, std::uint16_t serverPort);

    MutatedConversation(const std::vector<Scenario> &scenarios, std::uint16_t serverPort, std::uint64_t seed);

    enum class Verdict {
        Good,
        FailedInLibrary, ///< a crash or an endless loop inside of FreeTDS
        Failed,
    };
    struct Result
    {
        Verdict verdict = Verdict::Good;
        std::string report; ///< what was changed and what happened; empty when all is good
    };

    /// Holds the conversation. `folder` takes what the program writes meanwhile, and is removed afterwards.
    Result hold(const std::filesystem::path &folder) const;

private:
    const Scenario &m_scenario;
    std::uint16_t m_serverPort;
    std::uint64_t m_seed;
};
