#include "Engine/Server.h"
#include "Engine/Session.h"
#include "Support/RecordingSink.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>

// The connector's own queries, each on a server of each edition that it is for.
namespace SampleServer {

namespace {

using Values = std::map<std::string, std::string>; ///< by placeholder

/// What fills the placeholders of a title: objects of the sample databases.
Values valuesFor(const std::string &title)
{
    static const std::map<std::string, Values> own = {
        {"List_IndexesForTable", {{"{TABLE_NAME}", "dbo.Orders"}}},
        {"List_IndexesForView", {{"{TABLE_NAME}", "sales.OrderTotals"}}},
        {"List_KeysForTable", {{"{TABLE_NAME}", "dbo.Orders"}}},
        {"Table_DropPrimaryKey", {{"{TABLE_NAME}", "Scratch"}}},
        {"Table_RemoveDefaultForColumn", {{"{TABLE_NAME}", "Orders"}, {"{COLUMN_NAME}", "Freight"}}},
        {"Table_ReplaceDefaultForColumn",
         {{"{TABLE_NAME}", "Orders"}, {"{COLUMN_NAME}", "Freight"}, {"{NEW_DEFAULT}", "(1)"}}},
        {"INDEX_CREATION_QUERY",
         {{"{INDEX_SRC}", "sys.tables"},
          {"{INDEX_CLAUSE}", "s.name + N'.' + t.name = N'dbo.Orders'"},
          {"{VIEW_NAME}", "sales.OrderTotals"}}},
        {"List_UserTypesByTypeInDatabase_NonSystem", {{"{EXTRA_WHERE_CLAUSE}", ""}}},
        {"List_FunctionsByTypeInDatabase_NonSystem", {{"{EXTRA_WHERE_CLAUSE}", ""}}}};
    Values values = {{"{TABLE_SCHEMA}", "dbo"},
                     {"{TABLE_NAME}", "Orders"},
                     {"{SCHEMA_NAME}", "dbo"},
                     {"{SCHEMA}", "sales"},
                     {"{PROCEDURE_NAME}", "PlaceOrder"},
                     {"{FUNCTION_NAME}", "OrderTotal"},
                     {"{TYPE}", "PhoneNumber"},
                     {"{VIEW_NAME}", "sales.OrderTotals"},
                     {"{SCHEMA_AND_TABLE_NAME}", "dbo.Orders"},
                     {"{SQLAGENT_JOB_ID}", ""}};
    if (const auto found = own.find(title); found != own.end())
        for (const auto &[name, value] : found->second)
            values[name] = value;
    return values;
}

std::string textOf(const std::string &file)
{
    std::ifstream stream(std::string(CATALOG_QUERIES_FOLDER "/") + file + ".sql");
    std::stringstream text;
    text << stream.rdbuf();
    return text.str();
}

std::string filled(std::string text, const Values &values)
{
    for (const auto &[name, value] : values)
        for (std::size_t at = 0; (at = text.find(name, at)) != std::string::npos; at += value.size())
            text.replace(at, name.size(), value);
    return text;
}

std::vector<std::string> titles()
{
    std::vector<std::string> all;
    for (const auto &entry : std::filesystem::directory_iterator(CATALOG_QUERIES_FOLDER))
        if (const std::string title = entry.path().stem().string(); !title.ends_with("_2000"))
            all.push_back(title);
    std::sort(all.begin(), all.end());
    return all;
}

bool isFor(Edition edition, const std::string &title)
{
    static const std::set<std::string> agent = {"List_AgentJobs", "NewSQLAgentJob", "SQLServerAgentStartJob",
                                                "SQLServerAgentStopJob"};
    static const std::set<std::string> later = {"List_SearchableDatabaseEntries", "List_Federations",
                                                "List_SearchableDatabaseEntries_Azure"};
    if (edition == Edition::Azure)
        return !agent.contains(title) && title != "List_SearchableDatabaseEntries";
    return edition != Edition::Sql2000 || !later.contains(title);
}

void runBatches(Session &session, std::string text, RecordingSink &sink)
{
    std::erase(text, '\r');
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find("\nGO\n", at), text.size());
        session.executeBatch(text.substr(at, end - at), sink);
        at = end + 4;
    }
}

using Parameters = std::tuple<Edition, std::string>;

std::string testName(const testing::TestParamInfo<Parameters> &info)
{
    static constexpr const char *editions[] = {"On2000", "On2008", "On2022", "OnAzure"};
    std::string title = std::get<1>(info.param);
    std::erase(title, '_');
    return title + editions[static_cast<int>(std::get<0>(info.param))];
}

class CatalogQuery : public testing::TestWithParam<Parameters>
{
};

} // namespace

TEST_P(CatalogQuery, RunsWithoutAnError)
{
    const auto &[edition, title] = GetParam();
    if (!isFor(edition, title))
        GTEST_SKIP() << "not for this edition";
    Server::Options options;
    options.edition = edition;
    const auto server = std::make_shared<Server>(options);
    Session session(server, "sa", "shop");
    session.useOdbcDefaults();
    Values values = valuesFor(title);
    if (title.starts_with("SQLServerAgent")) {
        RecordingSink job;
        session.executeBatch(
            "SELECT CONVERT(nvarchar(36), job_id) FROM msdb.dbo.sysjobs WHERE name = 'Weekly report'", job);
        values["{SQLAGENT_JOB_ID}"] = job.scalar().substr(1, 36);
        if (title == "SQLServerAgentStopJob")
            session.executeBatch("EXEC msdb.dbo.sp_start_job N'Weekly report'", job);
    }
    RecordingSink sink;
    if (title == "Table_DropPrimaryKey")
        session.executeBatch("CREATE TABLE dbo.Scratch (a int NOT NULL PRIMARY KEY)", sink);
    if (title == "NewTrigger")
        session.executeBatch("CREATE TABLE dbo.YourTable (a int)", sink);
    std::string text = edition == Edition::Sql2000 ? textOf(title + "_2000") : std::string();
    if (text.empty())
        text = textOf(title);
    ASSERT_FALSE(text.empty());
    runBatches(session, filled(text, values), sink);
    std::string log;
    for (const ServerMessage &message : sink.messages())
        if (message.severity > 10)
            log += std::to_string(message.number) + " line " + std::to_string(message.line) + ": " +
                   message.text + '\n';
    EXPECT_EQ(log, "");
}

INSTANTIATE_TEST_SUITE_P(Titles, CatalogQuery,
                         testing::Combine(testing::Values(Edition::Sql2000, Edition::Sql2008,
                                                          Edition::Sql2022, Edition::Azure),
                                          testing::ValuesIn(titles())),
                         testName);

} // namespace SampleServer
