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

/// A row broke a PRIMARY KEY or UNIQUE constraint of SQLite; the caller knows which table it was writing.
struct SqliteConstraintError
{
};

class SqliteConnection;

/// A prepared statement on loan from its connection, which takes it back for the next one of the same text.
class SqliteStatement
{
public:
    SqliteStatement(SqliteConnection &connection, std::string sql);
    ~SqliteStatement();
    SqliteStatement(const SqliteStatement &) = delete;
    SqliteStatement &operator=(const SqliteStatement &) = delete;

    void bind(int index, const Value &value, const SqlType &type);
    void bind(const std::vector<EmittedParameter> &parameters, std::span<sqlite3_value *> arguments = {});
    /// Moves to the next row; false after the last one. Throws EngineError from functions it called back,
    /// BatchCancelled when the client asked to stop, SqliteConstraintError.
    bool step();
    void read(int column, const SqlType &type, Value &value) const;
    /// Makes a column of the current row the result of a function of SQLite's.
    void copyColumn(int column, sqlite3_context *context) const;
    /// Starts over, keeping what is bound.
    void reset();

private:
    void prepare();

    SqliteConnection &m_connection;
    std::string m_sql;
    sqlite3_stmt *m_statement = nullptr;
    bool m_hasRow = false;
};

/// A session's own SQLite connection, with the engine's functions and collations. One thread at a time.
class SqliteConnection
{
public:
    /// `useDefinitions` waits for and keeps the lock against changes of a database's definitions.
    SqliteConnection(EvaluationContext &context, std::function<void(const Database &)> useDefinitions);
    ~SqliteConnection();
    SqliteConnection(const SqliteConnection &) = delete;
    SqliteConnection &operator=(const SqliteConnection &) = delete;

    /// Makes a database known under its schemaName(), if it was not.
    void attach(const DatabasePtr &database);
    static std::string schemaName(const Database &database);
    /// Lets go of the databases that no transaction is open in. SQLite refuses to prepare a statement while
    /// the tables of any attached database change, so a session should not have more of them than it needs.
    void detachUnused();
    /// Runs a statement without parameters and rows.
    void execute(const std::string &sql);
    /// Drops a table of the session's own, later when a statement that runs stands in the way.
    void dropTemporary(const std::string &table);
    /// Whether SQLite's own transaction is open: it ends one by itself when a write fails for want of memory.
    bool isInTransaction() const;
    /// Polled while a statement runs; null never cancels.
    void watch(ResultSink *sink) { m_sink = sink; }
    std::int64_t lastRowId() const;

    EvaluationContext &context() { return m_context; }
    /// Keeps an exception that must not pass through SQLite; step() throws it on.
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
    bool m_isWriting = false; ///< SQLite drops the whole transaction when a write is interrupted: none is
    std::vector<std::string> m_dropLater;              ///< temporary tables
    std::map<int, DatabasePtr> m_attached;             ///< by database id
    std::multimap<std::string, sqlite3_stmt *> m_idle; ///< prepared statements not in use, by text
};

/// Adds tsql(), the aggregates and the collations to a connection.
void registerFunctions(sqlite3 *db, SqliteConnection &connection);
/// Adds the aggregates alone.
void registerAggregates(sqlite3 *db, SqliteConnection &connection);
/// Adds the table-valued function generate_rows(n).
void registerRowGenerator(sqlite3 *db);

} // namespace SampleServer
