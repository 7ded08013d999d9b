// Disturbs conversations of vantor-cli with a sample server, as each of many seeds says:
// fuzz-conversation PHASE [FIRST [COUNT]]. Exit status: 0 all is good, 1 a conversation failed, 2 usage, 3
// some failed, but all of them inside of FreeTDS.

#include "Fuzz/MutatedConversation.h"
#include "Support/SampleServerFixture.h"
#include "Support/TestCertificates.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <unistd.h>

namespace {

/// More than there are processors, because a conversation that is cut waits for the most part.
constexpr unsigned Workers = 10;

struct Seeds
{
    std::string phase;
    std::uint64_t first = 0;
    std::uint64_t count = 1;
};

struct Tally
{
    std::atomic<int> failed = 0;
    std::atomic<int> failedInLibrary = 0;
};

void report(const MutatedConversation::Result &result, const std::string &replay, Tally &tally)
{
    static std::mutex printing;
    const std::lock_guard lock(printing);
    const bool isOfLibrary = result.verdict == MutatedConversation::Verdict::FailedInLibrary;
    ++(isOfLibrary ? tally.failedInLibrary : tally.failed);
    std::printf("%s. Replay: %s\n%s\n", isOfLibrary ? "Failed in libsybdb" : "FAILED", replay.c_str(),
                result.report.c_str());
    std::fflush(stdout);
}

/// Holds the conversations of all seeds and prints those that fail.
void run(const Seeds &seeds, std::uint16_t port, const std::string &program, Tally &tally)
{
    const auto scenarios = MutatedConversation::scenarios(seeds.phase, port);
    const auto folder =
        std::filesystem::temp_directory_path() / ("fuzz-conversation-" + std::to_string(::getpid()));
    std::atomic<std::uint64_t> next = seeds.first;
    const auto work = [&](unsigned worker) {
        for (std::uint64_t seed = next++; seed < seeds.first + seeds.count; seed = next++) {
            const auto result =
                MutatedConversation(scenarios, port, seed).hold(folder / std::to_string(worker));
            if (result.verdict != MutatedConversation::Verdict::Good)
                report(result, program + ' ' + seeds.phase + ' ' + std::to_string(seed), tally);
        }
    };
    std::vector<std::thread> workers;
    for (unsigned worker = 0; worker < Workers; ++worker)
        workers.emplace_back(work, worker);
    for (std::thread &worker : workers)
        worker.join();
    std::filesystem::remove_all(folder);
}

int usage(const char *program)
{
    std::fprintf(stderr, "usage: %s PHASE [FIRST [COUNT]]\nPHASE is one of:", program);
    for (const std::string &phase : MutatedConversation::phases())
        std::fprintf(stderr, " %s", phase.c_str());
    std::fputs("\n", stderr);
    return 2;
}

} // namespace

int main(int argumentCount, char **arguments)
{
    if (argumentCount < 2 || argumentCount > 4)
        return usage(arguments[0]);
    Seeds seeds{arguments[1]};
    if (argumentCount > 2)
        seeds.first = std::strtoull(arguments[2], nullptr, 10);
    if (argumentCount > 3)
        seeds.count = std::strtoull(arguments[3], nullptr, 10);
    try {
        const SampleServerFixture server(
            {.arguments = TestCertificates::shared().usual().arguments("request")});
        Tally tally;
        run(seeds, server.port(), arguments[0], tally);
        std::printf("%s: %llu conversations, %d failed, %d failed in libsybdb\n", seeds.phase.c_str(),
                    static_cast<unsigned long long>(seeds.count), tally.failed.load(),
                    tally.failedInLibrary.load());
        if (tally.failed)
            return 1;
        return tally.failedInLibrary ? 3 : 0;
    } catch (const std::exception &problem) {
        std::fprintf(stderr, "%s\n", problem.what());
        return 2;
    }
}
