#include "Engine/SampleDatabase.h"
#include "Engine/Catalog/Catalog.h"
#include "Engine/Server.h"
#include "Engine/Session.h"

#include <cstdio>
#include <regex>
#include <stdexcept>
#include <string>

namespace SampleServer {

namespace {

/// Receives the results of scripts, in which no statement may fail.
class ScriptSink : public ResultSink
{
public:
    void columns(const std::vector<ColumnInfo> &, const std::vector<std::uint16_t> &) override {}
    void computeColumns(std::uint16_t, const std::vector<ComputeColumn> &,
                        const std::vector<std::uint16_t> &) override
    {
    }
    void row(std::span<const Value>) override {}
    void computeRow(std::uint16_t, std::span<const Value>) override {}
    void endStatement(const StatementEnd &) override {}
    void message(const ServerMessage &message) override
    {
        if (message.severity > 10)
            throw std::logic_error("the sample database cannot be filled: " + message.text);
    }
    void returnStatus(std::int32_t) override {}
    void returnValue(const std::string &, const SqlType &, const Value &) override {}
    void endProcedure(const StatementEnd &) override {}
    void databaseChanged(const std::string &, const std::string &) override {}
    void flush() override {}
    bool attentionRequested() override { return false; }
    bool waitForAttention(std::int64_t) override { return false; }
};

/// Marks a batch that creates objects not supported by SQL Server 2000.
constexpr std::string_view After2000 = "-- after 2000\n";

/// Converts the batch to types that SQL Server 2000 has.
std::string withOldTypes(std::string batch)
{
    static const std::pair<std::regex, const char *> types[] = {
        {std::regex("nvarchar\\(max\\)"), "ntext"},
        {std::regex("varchar\\(max\\)"), "text"},
        {std::regex("varbinary\\(max\\)"), "image"},
        {std::regex(" datetimeoffset(\\([0-9]\\))?"), " varchar(40)"},
        {std::regex(" (datetime2(\\([0-9]\\))?|date)(?= (NOT )?NULL)"), " datetime"},
        {std::regex(" time(\\([0-9]\\))? (?=NULL|NOT NULL)"), " varchar(16) "}};
    for (const auto &[later, old] : types)
        batch = std::regex_replace(batch, later, old);
    return batch;
}

void run(Session &session, std::string_view script, Edition edition)
{
    ScriptSink sink;
    for (std::size_t at = 0; at < script.size();) {
        const std::size_t end = std::min(script.find("\nGO\n", at), script.size());
        std::string_view batch = script.substr(at, end - at);
        const bool isAfter2000 = batch.starts_with(After2000);
        if (isAfter2000)
            batch.remove_prefix(After2000.size());
        if (edition != Edition::Sql2000)
            session.executeBatch(batch, sink);
        else if (!isAfter2000)
            session.executeBatch(withOldTypes(std::string(batch)), sink);
        at = end + 4;
    }
}

} // namespace

void fillManyTables(const std::shared_ptr<Server> &server, const DatabaseList &databases, int count)
{
    ScriptSink sink;
    Session(server, "sa", "master").executeBatch("CREATE DATABASE many", sink);
    Session session(server, "sa", "many");
    session.executeBatch("CREATE SCHEMA archive", sink);
    session.executeBatch(
        "CREATE TABLE dbo.Model (Id int IDENTITY(1, 1) NOT NULL PRIMARY KEY, Name nvarchar(60) NOT "
        "NULL, Amount decimal(9, 2) NULL, ChangedAt datetime NULL)",
        sink);
    const DatabasePtr database = databases.find("many");
    const TablePtr model = database->findTable("dbo", "Model");
    for (int i = 1; i <= count; ++i) {
        auto table = std::make_shared<Table>(*model);
        char name[32];
        std::snprintf(name, sizeof name, "Table%05d", i);
        table->id = table->storage = newObjectId();
        table->name = name;
        table->schema = i % 10 == 0 ? "archive" : "dbo";
        table->isStored = false;
        table->identity = std::make_shared<IdentityCounter>(1, 1);
        table->indexes[0].name = table->indexes[0].constraint.name = "PK_" + table->name;
        table->indexes[0].constraint.id = newObjectId();
        table->indexes[0].constraint.systemNamed = false;
        database->insert(std::move(table));
    }
    session.executeBatch("DROP TABLE dbo.Model", sink);
}

void fillSampleDatabases(const std::shared_ptr<Server> &server)
{
    const Edition edition = server->options().edition;
    ScriptSink sink;
    for (const SampleScript &script : sampleScripts()) {
        if (script.database == "msdb" && edition == Edition::Azure)
            continue;
        if (!server->hasDatabase(script.database))
            Session(server, "sa", "master")
                .executeBatch("CREATE DATABASE " + std::string(script.database), sink);
        Session session(server, "sa", script.database);
        run(session, script.text, edition);
    }
}

} // namespace SampleServer
