#include "Fuzz/MutatedConversation.h"

#include "Fuzz/BoundedProgram.h"
#include "Fuzz/MutatingRelay.h"
#include "Support/SampleServerFixture.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace {

using Arguments = std::vector<std::string>;

/// A login may take three seconds and is tried with four versions of the protocol.
constexpr std::chrono::seconds MostTime{20};
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr long MostMegabytes = 2000; // a sanitizer keeps freed memory for a while
#else
constexpr long MostMegabytes = 300;
#endif

const char AllRows[] = "SELECT * FROM shop.dbo.AllTypes "
                       "PRINT 'a message' "
                       "SELECT TOP 20 * FROM generate_rows(20) "
                       "RAISERROR('an error', 16, 1) "
                       "SELECT * FROM shop.dbo.Orders FOR XML AUTO "
                       "\nGO 2\n"
                       "SELECT * FROM nowhere "
                       "\nGO\n"
                       "SELECT 1 AS a, NULL AS b, N'' AS c";

Arguments query(const std::string &sql, const Arguments &options)
{
    Arguments arguments = {"query"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.push_back(sql);
    return arguments;
}

std::vector<Arguments> loginsToDisturb()
{
    const std::string sql = "SELECT 1";
    const Arguments clear = {"--encrypt", "off", "--user", "sa"};
    return {
        query(sql, clear), query(sql, {"--encrypt", "off", "--user", "EXAMPLE\\sa"}),
        query(sql, clear), query(sql, {"--encrypt", "request", "--user", "sa"}),
        query(sql, clear), query(sql, {"--encrypt", "require", "--trust-server-certificate", "--user", "sa"}),
    };
}

std::vector<Arguments> conversationsOf(const std::string &phase)
{
    const auto clear = [](Arguments arguments) {
        arguments.insert(arguments.begin() + 1, {"--encrypt", "off", "--user", "sa"});
        return arguments;
    };
    if (phase == "login")
        return loginsToDisturb();
    if (phase == "rows")
        return {clear({"query", AllRows, "--format", "table"}), clear({"query", AllRows, "--format", "json"}),
                clear({"query", AllRows, "--format", "csv"})};
    if (phase == "tree")
        return {clear({"tree", "--depth", "2"}),
                clear({"tree", "shop/Tables/Orders", "--depth", "3", "--details"}),
                clear({"tree", "shop", "--depth", "2"}), clear({"tree", "--search", "or"}),
                clear({"menu", "shop/Tables/Orders"})};
    if (phase == "script")
        return {clear({"script", "shop/Tables/Orders", "CREATE to"}),
                clear({"script", "shop/Tables/AllTypes", "MySQL"}),
                clear({"script", "shop/Views/sales.OrderTotals", "Alter view"}), clear({"catalog", "--all"})};
    throw std::runtime_error("There is no phase " + phase + ".");
}

std::string contentsOf(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

Arguments environmentIn(const std::filesystem::path &folder)
{
    Arguments environment = {
        "VANTOR_PASSWORD=Sample-1",
        // Memory that the client library loses with a broken answer ends with the program.
        // FreeTDS handles an allocation that fails, as it does when a server asks for too much.
        "ASAN_OPTIONS=detect_leaks=0:allocator_may_return_null=1"};
    for (const char *name :
         {"HOME", "TMPDIR", "XDG_STATE_HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"})
        environment.push_back(std::string(name) + "=" + folder.string());
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    environment.push_back("LD_PRELOAD=" STACK_ON_SIGNAL); // sanitizers write the stack themselves
#endif
    return environment;
}

BoundedProgram programFor(const Arguments &arguments, std::uint16_t port, const std::filesystem::path &folder)
{
    BoundedProgram program{{VANTOR_CLI}, environmentIn(folder), folder / "errors"};
    program.command.insert(program.command.end(), arguments.begin(), arguments.end());
    program.command.insert(program.command.begin() + 2,
                           {"--server", "127.0.0.1," + std::to_string(port), "--login-timeout", "3"});
    return program;
}

/// All files that the program wrote: its errors and its log.
std::string writtenIn(const std::filesystem::path &folder)
{
    std::string text;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            text += contentsOf(entry.path());
    return text;
}

/// Success, an error of SQL, no connection; and usage, when the object that the command names has another
/// name.
bool isExpectedStatus(int status)
{
    return status >= 0 && status <= 3;
}

std::string faultOf(const BoundedProgram::Outcome &outcome, const std::string &written)
{
    std::ostringstream fault;
    if (outcome.wasTooSlow)
        fault << "It took more than " << MostTime.count() << " s.\n";
    else if (outcome.signal)
        fault << "Signal " << outcome.signal << " ended it.\n";
    else if (!isExpectedStatus(outcome.status))
        fault << "Its exit status was " << outcome.status << ".\n";
    if (outcome.maximumKilobytes > MostMegabytes * 1024)
        fault << "It used " << outcome.maximumKilobytes / 1024 << " MB.\n";
    if (written.find(SampleServerFixture::Password) != std::string::npos)
        fault << "It wrote the password.\n";
    for (const char *text :
         {"Assertion failed", "Internal error", "runtime error:", "ERROR: AddressSanitizer"})
        if (written.find(text) != std::string::npos)
            fault << "It wrote: " << text << "\n";
    return fault.str();
}

/// Whether the innermost function of the stack that StackOnSignal wrote belongs to FreeTDS, those of the C
/// library left aside.
bool isStackInLibrary(const std::string &written)
{
    std::istringstream lines(written.substr(std::min(written.find("Stack of the thread:"), written.size())));
    std::string line;
    std::getline(lines, line);
    while (std::getline(lines, line))
        if (line.find("StackOnSignal") == std::string::npos && line.find("/libc.so") == std::string::npos)
            return line.find("/libsybdb.so") != std::string::npos;
    return false;
}

} // namespace

std::vector<std::string> MutatedConversation::phases()
{
    return {"login", "rows", "tree", "script"};
}

std::vector<MutatedConversation::Scenario> MutatedConversation::scenarios(const std::string &phase,
                                                                          std::uint16_t serverPort)
{
    const auto folder =
        std::filesystem::temp_directory_path() / ("fuzz-conversation-" + std::to_string(serverPort));
    std::filesystem::create_directories(folder);
    const auto bytesOf = [&](const Arguments &arguments) {
        MutatingRelay relay(serverPort, {});
        const auto outcome = programFor(arguments, relay.port(), folder).run(MostTime);
        if (outcome.status != 0 && outcome.status != 1)
            throw std::runtime_error("vantor-cli " + arguments[0] + " fails undisturbed:\n" +
                                     writtenIn(folder));
        return relay.longestConnection();
    };
    const std::uint64_t loginBytes = bytesOf(query("", {"--encrypt", "off", "--user", "sa"}));
    std::vector<Scenario> scenarios;
    for (const Arguments &arguments : conversationsOf(phase))
        scenarios.push_back({arguments, phase == "login" ? 0 : loginBytes, bytesOf(arguments)});
    std::filesystem::remove_all(folder);
    return scenarios;
}

MutatedConversation::MutatedConversation(const std::vector<Scenario> &scenarios, std::uint16_t serverPort,
                                         std::uint64_t seed)
    : m_scenario(scenarios[seed % scenarios.size()])
    , m_serverPort(serverPort)
    , m_seed(seed)
{
}

MutatedConversation::Result MutatedConversation::hold(const std::filesystem::path &folder) const
{
    std::filesystem::create_directories(folder);
    const ServerMutation mutation(m_seed, m_scenario.begin, m_scenario.end);
    MutatingRelay relay(m_serverPort, mutation);
    const auto outcome = programFor(m_scenario.arguments, relay.port(), folder).run(MostTime);
    const std::string written = writtenIn(folder);
    std::filesystem::remove_all(folder);
    const std::string fault = faultOf(outcome, written);
    if (fault.empty())
        return {};
    const bool isOfLibrary = (outcome.signal || outcome.wasTooSlow) && isStackInLibrary(written);
    return {isOfLibrary ? Verdict::FailedInLibrary : Verdict::Failed,
            mutation.description() + "\n" + fault + written};
}
