#include "Engine/Session.h"
#include "Engine/Run/Interpreter.h"
#include "Engine/ServerState.h"

namespace SampleServer {

struct Session::Private
{
    Private(std::shared_ptr<Server> server, ServerState &state, std::string_view login,
            std::string_view database)
        : interpreter(std::move(server), state, login, database)
    {
    }

    Interpreter interpreter;
};

Session::Session(std::shared_ptr<Server> server, std::string_view loginName, std::string_view database)
{
    ServerState &state = *server->d;
    d = std::make_unique<Private>(std::move(server), state, loginName, database);
}

Session::~Session() = default;

void Session::executeBatch(std::string_view sql, ResultSink &sink)
{
    d->interpreter.runBatch(sql, {}, sink);
}

void Session::executeBatch(std::string_view sql, std::span<BatchParameter> parameters, ResultSink &sink)
{
    d->interpreter.runBatch(sql, parameters, sink);
}

void Session::callProcedure(const std::string &name, std::span<const ProcedureArgument> arguments,
                            ResultSink &sink)
{
    d->interpreter.callProcedure(name, arguments, sink);
}

const std::string &Session::database() const
{
    return d->interpreter.database();
}

int Session::processId() const
{
    return d->interpreter.context().spid;
}

void Session::setClient(std::string_view hostName, std::string_view applicationName)
{
    d->interpreter.context().hostName = hostName;
    d->interpreter.context().applicationName = applicationName;
}

void Session::useOdbcDefaults()
{
    d->interpreter.context().textSize = 0x7FFFFFFF;
}

} // namespace SampleServer
