#include "Engine/Run/SessionContext.h"
#include "Engine/Errors.h"

namespace SampleServer {

SessionContext::SessionContext(std::shared_ptr<Server> owner, ServerState &serverState,
                               std::string_view login)
    : server(std::move(owner))
    , state(serverState)
    , connection(evaluation, [this](const Database &used) { transactions.useDefinitions(used); })
    , transactions(serverState.locks, connection, evaluation, options)
{
    evaluation.serverName = state.options.serverName;
    evaluation.versionBanner = state.options.versionBanner;
    evaluation.edition = state.edition;
    evaluation.loginName = login;
}

void SessionContext::checkAttention()
{
    if (sink->attentionRequested())
        throw BatchCancelled();
}

void SessionContext::endStatement()
{
    if (callbacks == 0)
        transactions.endStatement();
}

void SessionContext::endWithoutCount()
{
    const bool inModule = frame->module != nullptr;
    if (callbacks > 0 || (inModule && options.noCount))
        return;
    StatementEnd end;
    end.inProcedure = inModule;
    sink->endStatement(end);
}

void SessionContext::endChange(std::uint64_t count, std::uint16_t command)
{
    evaluation.rowCount = static_cast<std::int64_t>(count);
    if (callbacks > 0)
        return; // the end of what a function does is not sent
    StatementEnd end;
    end.inProcedure = frame->module != nullptr;
    end.currentCommand = command;
    if (!options.noCount)
        end.rowCount = count;
    sink->endStatement(end);
}

void SessionContext::requireOutsideFunction(const char *what) const
{
    if (callbacks == 0)
        return;
    if (std::string_view(what) == "EXECUTE")
        throw EngineError(557, 16, 2,
                          "Only functions and some extended stored procedures can be executed from within a "
                          "function.",
                          ErrorEffect::EndsBatch);
    throw EngineError(443, 16, 15,
                      std::string("Invalid use of a side-effecting operator '") + what +
                          "' within a function.",
                      ErrorEffect::EndsBatch);
}

void SessionContext::useDatabase(const std::string &name)
{
    const DatabasePtr next = state.databases.find(name);
    if (!next)
        throw Errors::noSuchDatabase(name);
    ++next->users;
    --database->users;
    const std::string before = database->name();
    database = next;
    evaluation.database = next->name();
    sink->databaseChanged(before, next->name());
}

} // namespace SampleServer
