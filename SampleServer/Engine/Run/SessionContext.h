#pragma once

#include "Engine/Functions/EvaluationContext.h"
#include "Engine/Run/Frame.h"
#include "Engine/Run/SessionOptions.h"
#include "Engine/Run/StatementRunner.h"
#include "Engine/Run/Transactions.h"
#include "Engine/ServerState.h"
#include "Engine/Storage/SqliteConnection.h"

#include <memory>
#include <string>
#include <string_view>

namespace SampleServer {

/// What the executors of one session share: its settings, its place in the server, its storage, and the
/// statement that runs. Used by one thread at a time.
struct SessionContext
{
    SessionContext(std::shared_ptr<Server> owner, ServerState &serverState, std::string_view login);
    SessionContext(const SessionContext &) = delete;
    SessionContext &operator=(const SessionContext &) = delete;

    /// Throws BatchCancelled when the client has asked the batch to stop.
    void checkAttention();
    /// Releases what the statement alone needed; inside of a function the statement around it goes on.
    void endStatement();
    /// Sends the end of a statement that has neither rows nor a count. SET NOCOUNT ON leaves it out inside
    /// modules.
    void endWithoutCount();
    /// Sends the end of a statement that changed `count` rows, unless a function runs it.
    void endChange(std::uint64_t count, std::uint16_t command);
    /// Throws EngineError 443 or 557 while a function runs.
    void requireOutsideFunction(const char *what) const;
    /// Makes a database the current one. Throws EngineError 911 when there is none of that name.
    void useDatabase(const std::string &name);

    const std::shared_ptr<Server> server; ///< keeps `state` alive
    ServerState &state;
    EvaluationContext evaluation;
    SessionOptions options;
    Frame batch; ///< its temporary tables are the session's
    Frame *frame = &batch;
    SqliteConnection connection;
    Transactions transactions;
    DatabasePtr database;              ///< what the session uses, or inside of a module where that is
    std::string nameSchema = "dbo";    ///< where names without a schema are looked for first
    ResultSink *sink = nullptr;        ///< set while a batch runs
    int line = 1;                      ///< of the statement that runs
    int callbacks = 0;                 ///< how many functions run inside of a statement of SQLite's
    StatementRunner *runner = nullptr; ///< set before the first batch
};

} // namespace SampleServer
