#include "ScriptedEngine.h"

#include "Engine/Server.h"
#include "Engine/Session.h"

#include <map>
#include <mutex>

using namespace SampleServer;

namespace {

std::mutex scriptsMutex;
std::map<std::string, ScriptedEngine::Script> scripts; // guarded by scriptsMutex

} // namespace

void ScriptedEngine::define(const std::string &name, Script script)
{
    const std::lock_guard lock(scriptsMutex);
    scripts[name] = std::move(script);
}

void ScriptedEngine::sendResult(ResultSink &sink, const std::vector<SqlType> &types,
                                const std::vector<std::vector<Value>> &rows)
{
    std::vector<ColumnInfo> columns;
    for (const SqlType &type : types)
        columns.push_back({"c" + std::to_string(columns.size() + 1), type});
    sink.columns(columns, {});
    for (const auto &row : rows)
        sink.row(row);
    StatementEnd end;
    end.rowCount = rows.size();
    end.currentCommand = 0xC1;
    sink.endStatement(end);
}

namespace SampleServer {

struct Server::Private
{
    Options options;
};

Server::Server(Options options)
    : d(new Private{std::move(options)})
{
}

Server::~Server() = default;

const Server::Options &Server::options() const
{
    return d->options;
}

bool Server::hasDatabase(std::string_view name) const
{
    return name == "master" || name == "tempdb";
}

struct Session::Private
{
    std::string database;
};

Session::Session(std::shared_ptr<Server>, std::string_view, std::string_view database)
    : d(new Private{std::string(database)})
{
}

Session::~Session() = default;

void Session::executeBatch(std::string_view sql, ResultSink &sink)
{
    ScriptedEngine::Script script;
    {
        const std::lock_guard lock(scriptsMutex);
        if (const auto found = scripts.find(std::string(sql)); found != scripts.end())
            script = found->second;
    }
    if (script)
        return script(sink);
    ServerMessage message;
    message.number = 50001;
    message.severity = 16;
    message.text = sql;
    sink.message(message);
}

/// Sends every parameter back as a result of its own and doubles the ints.
void Session::executeBatch(std::string_view sql, std::span<BatchParameter> parameters, ResultSink &sink)
{
    for (BatchParameter &parameter : parameters) {
        sink.columns({{parameter.name, parameter.type}}, {});
        sink.row({&parameter.value, 1});
        if (auto *number = std::get_if<std::int64_t>(&parameter.value))
            *number *= 2;
    }
    executeBatch(sql, sink);
}

/// Knows one procedure, "double": its status is the number of its arguments, and each is doubled.
void Session::callProcedure(const std::string &name, std::span<const ProcedureArgument> arguments,
                            ResultSink &sink)
{
    const bool known = name == "double";
    if (!known) {
        ServerMessage message;
        message.number = 2812;
        message.state = 62;
        message.severity = 16;
        message.text = "Could not find stored procedure '" + name + "'.";
        sink.message(message);
    }
    sink.returnStatus(known ? static_cast<std::int32_t>(arguments.size()) : -6);
    for (const ProcedureArgument &argument : arguments)
        if (known && argument.output)
            sink.returnValue(argument.name, argument.type, 2 * std::get<std::int64_t>(argument.value));
    StatementEnd end;
    end.error = !known;
    sink.endProcedure(end);
}

int Session::processId() const
{
    return 77;
}

void Session::setClient(std::string_view, std::string_view) {}

void Session::useOdbcDefaults() {}

const std::string &Session::database() const
{
    return d->database;
}

} // namespace SampleServer
