#pragma once

#include "Types/ResultSink.h"

#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace SampleServer {

class Server; // the databases that all sessions share

/// A variable declared before a batch starts.
struct BatchParameter
{
    std::string name; ///< with its @
    SqlType type;
    Value value;
};

/// An argument of a procedure call.
struct ProcedureArgument
{
    std::string name; ///< with its @; empty: by position
    SqlType type;
    Value value;
    bool output = false;
    bool isDefault = false;                         ///< DEFAULT, or omitted
    std::shared_ptr<const struct Table> table = {}; ///< a table variable instead of a value
};

/// One connection's state in the engine: current database, SET options, temporary tables, open transaction.
/// Used by one thread at a time.
class Session
{
public:
    /// Throws EngineError 4060 if `database` does not exist; an empty name means master.
    Session(std::shared_ptr<Server> server, std::string_view loginName, std::string_view database);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    /// Runs one batch and reports everything, including errors, through the sink. If the sink cancels, it
    /// returns early; the session, its temporary tables and its transaction remain.
    ///
    /// endStatement() is called once for every statement except declarations and control flow. A client
    /// expects the last DONE to say that nothing follows, and every batch to end with one. Therefore the sink
    /// delays each endStatement() until the next call shows that more follows; after this function has
    /// returned, it sends the delayed one, or an empty one, as the last.
    void executeBatch(std::string_view sql, ResultSink &sink);
    /// The same with predeclared variables; afterwards each contains its last value.
    void executeBatch(std::string_view sql, std::span<BatchParameter> parameters, ResultSink &sink);

    /// Calls a procedure by name, which may have several parts, and sends its status, output parameters and
    /// end through the sink.
    void callProcedure(const std::string &name, std::span<const ProcedureArgument> arguments,
                       ResultSink &sink);

    /// The current database.
    const std::string &database() const;
    /// The value of @@SPID.
    int processId() const;
    /// Sets the values of HOST_NAME() and APP_NAME() from the login.
    void setClient(std::string_view hostName, std::string_view applicationName);
    /// Applies the settings of a login that requests ODBC behaviour: long values are not truncated at 4096
    /// bytes (SET TEXTSIZE).
    void useOdbcDefaults();

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace SampleServer
