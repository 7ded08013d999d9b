#pragma once

#include "Types/SqlType.h"
#include "Types/Value.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace SampleServer {

/// The description of a result column for the client.
struct ColumnInfo
{
    std::string name; ///< UTF-8, empty for an expression without a name
    SqlType type;
    bool nullable = true;
    bool identity = false;
    bool computed = false;
    bool updatable = false;
};

/// A message for the client: up to severity 10 information (PRINT is number 0, severity 0), above it an
/// error.
struct ServerMessage
{
    std::int32_t number = 0;
    std::uint8_t state = 1;
    std::uint8_t severity = 0;
    std::string text; ///< UTF-8
    std::string procedure;
    std::int32_t line = 1; ///< from 1 within the batch
};

/// One aggregate of a COMPUTE clause: the function and the result column (from 1).
struct ComputeColumn
{
    enum class Function { Sum, Avg, Count, Min, Max };
    Function function = Function::Sum;
    std::uint16_t operand = 1;
    SqlType type;
};

/// The end of a statement in the protocol.
struct StatementEnd
{
    std::optional<std::uint64_t>
        rowCount; ///< empty if the statement has no count (SET NOCOUNT ON, PRINT, ...)
    bool error = false;
    bool inProcedure = false;         ///< DONEINPROC instead of DONE
    std::uint16_t currentCommand = 0; ///< 0xC1 SELECT, 0xC3 INSERT, 0xC4 DELETE, 0xC5 UPDATE, 0 otherwise
};

/// A change of the session's transaction.
enum class TransactionEvent : std::uint8_t { Begun, Committed, RolledBack };

/// Receives the engine's output for the session's client, in order. Implemented by the protocol layer; the
/// engine calls it on the thread that runs the batch. Every call may throw ConnectionLost, which the engine
/// does not catch.
class ResultSink
{
public:
    virtual ~ResultSink() = default;

    /// Starts a result. `orderBy` lists its sort columns (from 1); empty if unordered.
    virtual void columns(const std::vector<ColumnInfo> &columns,
                         const std::vector<std::uint16_t> &orderBy) = 0;
    /// Announces COMPUTE rows of id `id` (from 1), after columns(). `byColumns` are numbered from 1.
    virtual void computeColumns(std::uint16_t id, const std::vector<ComputeColumn> &columns,
                                const std::vector<std::uint16_t> &byColumns) = 0;
    virtual void row(std::span<const Value> values) = 0;
    virtual void computeRow(std::uint16_t id, std::span<const Value> values) = 0;
    virtual void endStatement(const StatementEnd &end) = 0;
    virtual void message(const ServerMessage &message) = 0;
    /// Ends a procedure: its return status, its output parameters, and DONEPROC.
    virtual void returnStatus(std::int32_t status) = 0;
    virtual void returnValue(const std::string &name, const SqlType &type, const Value &value) = 0;
    virtual void endProcedure(const StatementEnd &end) = 0;
    /// Reports the current database to the client, after USE and at login.
    virtual void databaseChanged(const std::string &oldName, const std::string &newName) = 0;
    /// Reports that the outermost transaction began or ended; `descriptor` identifies it and is never 0.
    virtual void transactionChanged(TransactionEvent event, std::uint64_t descriptor)
    {
        static_cast<void>(event);
        static_cast<void>(descriptor);
    }
    /// Sends buffered output immediately (RAISERROR ... WITH NOWAIT).
    virtual void flush() = 0;
    /// Whether the client has cancelled (attention). Cheap: called between rows and during waits.
    virtual bool attentionRequested() = 0;
    /// Waits until the client cancels or the timeout expires; true if it cancelled. Used by WAITFOR.
    virtual bool waitForAttention(std::int64_t milliseconds) = 0;
};

/// Thrown by a sink if the client has disconnected.
struct ConnectionLost
{
};

} // namespace SampleServer
