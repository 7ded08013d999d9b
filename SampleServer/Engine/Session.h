#pragma once

#include "Types/ResultSink.h"

#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace SampleServer {

class Server; // the databases that all sessions share

/// A variable that a batch finds declared when it starts.
struct BatchParameter
{
    std::string name; ///< with its @
    SqlType type;
    Value value;
};

/// What a procedure is called with.
struct ProcedureArgument
{
    std::string name; ///< with its @; empty: by place
    SqlType type;
    Value value;
    bool output = false;
    bool isDefault = false;                         ///< DEFAULT, or left out
    std::shared_ptr<const struct Table> table = {}; ///< a table variable instead of a value
};

/// One connection's state in the engine: current database, SET options, temporary tables, open transaction.
/// Used by one thread at a time.
class Session
{
public:
    /// Throws EngineError 4060 when `database` is not there; an empty name means master.
    Session(std::shared_ptr<Server> server, std::string_view loginName, std::string_view database);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    /// Runs one batch and reports everything, errors included, through the sink. When the sink wants to stop,
    /// it returns early; the session, its temporary tables and its transaction live on.
    ///
    /// endStatement() comes once for every statement but declarations and control flow. A client expects the
    /// last DONE to say that nothing follows, and every batch to end with one: so the sink holds each
    /// endStatement() back until the next call shows that more follows, and sends the one it holds, or a bare
    /// one, as the last after this has returned.
    void executeBatch(std::string_view sql, ResultSink &sink);
    /// The same with variables that are there from the start; afterwards each holds its last value.
    void executeBatch(std::string_view sql, std::span<BatchParameter> parameters, ResultSink &sink);

    /// Calls a procedure by its name, which may have several parts, and sends its status, its output
    /// parameters and its end through the sink.
    void callProcedure(const std::string &name, std::span<const ProcedureArgument> arguments,
                       ResultSink &sink);

    /// The current database.
    const std::string &database() const;
    /// What @@SPID answers.
    int processId() const;
    /// What HOST_NAME() and APP_NAME() answer, from the login.
    void setClient(std::string_view hostName, std::string_view applicationName);
    /// The settings of a login that asks for ODBC behaviour: long values are not cut at 4096 bytes (SET
    /// TEXTSIZE).
    void useOdbcDefaults();

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace SampleServer
