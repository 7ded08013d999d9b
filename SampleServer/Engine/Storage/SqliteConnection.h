#pragma once

#include "Engine/Catalog/Catalog.h"
#include "Engine/Emit/Emitter.h"
#include "Engine/Functions/EvaluationContext.h"
#include "Types/ResultSink.h"

#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>

struct sqlite3;
struct sqlite3_context;
struct sqlite3_stmt;
struct sqlite3_value;

namespace SampleServer {

/// A row violated a PRIMARY KEY or UNIQUE constraint of SQLite; the caller knows the table.
struct SqliteConstraintError
{
};

class SqliteConnection;

/// A prepared statement borrowed from its connection, which reuses it for the same text.
class SqliteStatement
{
public:
    SqliteStatement(SqliteConnection &connection, std::string sql);
    ~SqliteStatement();
    SqliteStatement(const SqliteStatement &) = delete;
    SqliteStatement &operator=(const SqliteStatement &) = delete;

    void bind(int index, const Value &value, const SqlType &type);
    void bind(const std::vector<EmittedParameter> &parameters, std::span<sqlite3_value *> arguments = {});
    /// Moves to the next row; false after the last one. Throws EngineError from callback functions,
    /// BatchCancelled if the client has cancelled, SqliteConstraintError.
    bool step();
    void read(int column, const SqlType &type, Value &value) const;
    /// Sets the result of an SQLite function to a column of the current row.
    void copyColumn(int column, sqlite3_context *context) const;
    /// Resets the statement and keeps its bound values.
    void reset();

private:
    void prepare();

    SqliteConnection &m_connection;
    std::string m_sql;
    sqlite3_stmt *m_statement = nullptr;
    bool m_hasRow = false;
};

/// A session's own SQLite connection, with the engine's functions and collations. Used by one thread at a
/// time.
class SqliteConnection
{
public:
    /// `useDefinitions` acquires and keeps the lock against changes of a database's definitions.
    SqliteConnection(EvaluationContext &context, std::function<void(const Database &)> useDefinitions);
    ~SqliteConnection();
    SqliteConnection(const SqliteConnection &) = delete;
    SqliteConnection &operator=(const SqliteConnection &) = delete;

    /// Attaches a database under its schemaName() if necessary.
    void attach(const DatabasePtr &database);
    static std::string schemaName(const Database &database);
    /// Detaches databases without an open transaction. SQLite refuses to prepare a statement while the tables
    /// of any attached database change, so a session should attach only the databases that it needs.
    void detachUnused();
    /// Runs a statement without parameters and rows.
    void execute(const std::string &sql);
    /// Drops a temporary table of the session, later if a running statement prevents it.
    void dropTemporary(const std::string &table);
    /// Whether SQLite's own transaction is open. SQLite ends it itself if a write fails for lack of memory.
    bool isInTransaction() const;
    /// Polled while a statement runs; null never cancels.
    void watch(ResultSink *sink) { m_sink = sink; }
    std::int64_t lastRowId() const;

    EvaluationContext &context() { return m_context; }
    /// Stores an exception that must not pass through SQLite; step() rethrows it.
    void fail(std::exception_ptr error) { m_error = std::move(error); }

private:
    friend class SqliteStatement;
    void waitForDefinitions();
    [[noreturn]] void throwError(int code);
    static int onProgress(void *self);
    void dropStatements();
    void dropWaiting();

    EvaluationContext &m_context;
    std::function<void(const Database &)> m_useDefinitions;
    sqlite3 *m_db = nullptr;
    ResultSink *m_sink = nullptr;
    std::exception_ptr m_error;
    bool m_cancelled = false;
    bool m_isWriting = false; ///< set during writes: interrupting one makes SQLite drop the transaction
    std::vector<std::string> m_dropLater;              ///< temporary tables
    std::map<int, DatabasePtr> m_attached;             ///< by database id
    std::multimap<std::string, sqlite3_stmt *> m_idle; ///< unused prepared statements by text
};

/// Adds tsql(), the aggregates and the collations to a connection.
void registerFunctions(sqlite3 *db, SqliteConnection &connection);
/// Adds only the aggregates.
void registerAggregates(sqlite3 *db, SqliteConnection &connection);
/// Adds the table-valued function generate_rows(n).
void registerRowGenerator(sqlite3 *db);

} // namespace SampleServer
