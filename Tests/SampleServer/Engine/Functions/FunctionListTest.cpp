#include "Engine/Functions/FunctionTable.h"
#include "Engine/Server.h"
#include "Engine/Session.h"
#include "Support/RecordingSink.h"

#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <sstream>

// The lists of functions in docs/sample-server.md are those of the engine.
namespace SampleServer {

namespace {

/// The names in backticks between two headings of the page.
std::set<std::string> documentedNames(const std::string &from, const std::string &to)
{
    std::ifstream file(SAMPLE_SERVER_PAGE);
    std::stringstream text;
    text << file.rdbuf();
    const std::string page = text.str();
    const std::size_t start = page.find(from), end = page.find(to, start);
    EXPECT_NE(start, std::string::npos) << from;
    const std::string section = page.substr(start, end - start);
    static const std::regex name("`([A-Z][A-Z0-9_]*)`");
    std::set<std::string> names;
    for (std::sregex_iterator it(section.begin(), section.end(), name), last; it != last; ++it)
        names.insert((*it)[1]);
    return names;
}

std::set<std::string> tableNames()
{
    std::set<std::string> names;
    for (const auto &table :
         {Functions::stringFunctions(), Functions::textFunctions(), Functions::mathFunctions(),
          Functions::dateFunctions(), Functions::datePartFunctions(), Functions::systemFunctions(),
          Functions::sessionFunctions(), Functions::metadataFunctions()})
        for (const Functions::Builtin &function : table)
            names.emplace(function.name);
    return names;
}

/// The number of the error that a call without arguments ends with; 0 when it ends well.
int errorOf(Session &session, const std::string &call)
{
    RecordingSink sink;
    session.executeBatch("SELECT " + call, sink);
    const auto errors = sink.errors();
    return errors.empty() ? 0 : errors.front();
}

} // namespace

TEST(FunctionList, DocumentsEveryBuiltinFunction)
{
    const auto documented = documentedNames("### Functions", "Global variables");
    for (const std::string &name : tableNames())
        EXPECT_TRUE(documented.contains(name)) << name;
}

TEST(FunctionList, DocumentsNoUnknownFunction)
{
    const auto server = std::make_shared<Server>(Server::Options{});
    Session session(server, "sa", "shop");
    for (const std::string &name : documentedNames("### Functions", "Tables:")) {
        const int error = errorOf(session, name + "()");
        EXPECT_NE(error, 195) << name;
        EXPECT_NE(error, 40000) << name;
    }
}

TEST(FunctionList, DocumentsRefusedFunctionsAsRefused)
{
    const auto server = std::make_shared<Server>(Server::Options{});
    Session session(server, "sa", "shop");
    const auto refused = documentedNames("**Functions.**", "## Errors");
    EXPECT_GT(refused.size(), 50U);
    for (const std::string &name : refused) {
        const std::string over = name.starts_with("PERCENTILE") ? " OVER ()" : "";
        EXPECT_EQ(errorOf(session, name + "(1)" + over), 40000) << name;
    }
}

} // namespace SampleServer
