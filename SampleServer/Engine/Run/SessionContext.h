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

/// State shared by the executors of one session: its settings, server state, storage, and current statement.
/// Used by one thread at a time.
struct SessionContext
{
    SessionContext(std::shared_ptr<Server> owner, ServerState &serverState, std::string_view login);
    SessionContext(const SessionContext &) = delete;
    SessionContext &operator=(const SessionContext &) = delete;

    /// Throws BatchCancelled if the client has cancelled the batch.
    void checkAttention();
    /// Releases the resources of the statement; inside a function the calling statement continues.
    void endStatement();
    /// Sends the end of a statement with neither rows nor a count. SET NOCOUNT ON omits it inside modules.
    void endWithoutCount();
    /// Sends the end of a statement that changed `count` rows, unless a function runs it.
    void endChange(std::uint64_t count, std::uint16_t command);
    /// Throws EngineError 443 or 557 while a function runs.
    void requireOutsideFunction(const char *what) const;
    /// Sets the current database. Throws EngineError 911 if it does not exist.
    void useDatabase(const std::string &name);

    const std::shared_ptr<Server> server; ///< owns `state`
    ServerState &state;
    EvaluationContext evaluation;
    SessionOptions options;
    Frame batch; ///< its temporary tables are the session's
    Frame *frame = &batch;
    SqliteConnection connection;
    Transactions transactions;
    DatabasePtr database;              ///< the current database, or that of the running module
    std::string nameSchema = "dbo";    ///< default schema of names without one
    ResultSink *sink = nullptr;        ///< set while a batch runs
    int line = 1;                      ///< of the current statement
    int callbacks = 0;                 ///< number of functions running inside SQLite statements
    StatementRunner *runner = nullptr; ///< set before the first batch
};

} // namespace SampleServer
