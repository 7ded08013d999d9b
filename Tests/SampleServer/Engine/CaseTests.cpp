#include "CaseTests.h"
#include "Engine/SampleDatabase.h"
#include "Engine/Server.h"
#include "Engine/Session.h"
#include "Support/RecordingSink.h"

#include <cctype>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <stdexcept>

namespace SampleServer {

namespace {

struct Case
{
    std::string title;
    std::string sql;
    std::string expected;
};

class CaseTest : public testing::Test
{
public:
    explicit CaseTest(Case testCase)
        : m_case(std::move(testCase))
    {
    }

    void TestBody() override
    {
        // A server without the samples but for the tables that cases read.
        Server::Options options;
        options.samples = false;
        const auto server = std::make_shared<Server>(options);
        RecordingSink ignored;
        Session(server, "sa", "master").executeBatch("CREATE DATABASE shop", ignored);
        Session session(server, "sa", "shop");
        runScript(session, sampleScript("shop"), ignored);
        session.useOdbcDefaults();
        RecordingSink sink;
        runScript(session, m_case.sql, sink);
        EXPECT_EQ(sink.log(), m_case.expected) << m_case.title << '\n' << m_case.sql;
    }

private:
    static std::string_view sampleScript(std::string_view database)
    {
        for (const SampleScript &script : sampleScripts())
            if (script.database == database)
                return script.text;
        throw std::logic_error("no script of the database");
    }

    /// Runs the batches of a text that has GO lines between them.
    static void runScript(Session &session, std::string_view sql, RecordingSink &sink)
    {
        for (std::size_t at = 0; at < sql.size();) {
            std::size_t end = at;
            while (end < sql.size() && sql.substr(end, 4) != "\ngo\n" && sql.substr(end, 4) != "\nGO\n")
                ++end;
            session.executeBatch(sql.substr(at, end - at), sink);
            at = end + 4;
        }
    }

    Case m_case;
};

/// The title as a name that CTest can handle: "NULL sorts first" becomes "NULLSortsFirst".
std::string testName(const std::string &title)
{
    std::string name;
    bool startsWord = true;
    for (const char c : title) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x80 || !std::isalnum(byte)) {
            startsWord = true;
            continue;
        }
        name += startsWord ? static_cast<char>(std::toupper(byte)) : c;
        startsWord = false;
    }
    return name;
}

std::string readFile(const std::filesystem::path &path)
{
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

Case parseCase(const std::string &text)
{
    const std::size_t titleEnd = text.find('\n'), sqlEnd = text.find("\n----\n");
    if (!text.starts_with("# ") || sqlEnd == std::string::npos)
        throw std::runtime_error("not a case: " + text);
    return {text.substr(2, titleEnd - 2), text.substr(titleEnd + 1, sqlEnd - titleEnd - 1),
            text.substr(sqlEnd + 6)};
}

} // namespace

void registerCases(const std::string &folder)
{
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        const std::string text = readFile(entry.path());
        const std::string suite = entry.path().stem().string() + "Cases";
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = std::min(text.find("\n====\n", at), text.size());
            // The separator's own line end belongs to the expected text.
            const Case testCase = parseCase(text.substr(at, end + 1 - at));
            testing::RegisterTest(suite.c_str(), testName(testCase.title).c_str(), nullptr, nullptr, __FILE__,
                                  __LINE__,
                                  [testCase]() -> testing::Test * { return new CaseTest(testCase); });
            at = end + 6;
        }
    }
}

} // namespace SampleServer
