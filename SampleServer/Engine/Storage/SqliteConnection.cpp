#include "Engine/Storage/SqliteConnection.h"
#include "Engine/EngineError.h"
#include "Engine/Errors.h"
#include "Engine/ScopedValue.h"
#include "Engine/Storage/RowProvider.h"
#include "Engine/Storage/SqliteCodec.h"

#include <chrono>
#include <thread>
#include <utility>

namespace SampleServer {

namespace {

constexpr std::size_t MaxIdleStatements = 100;
constexpr std::size_t MaxAttached = 9; ///< SQLite's limit is ten
constexpr int LargestJoin = 200;       ///< tables; SQLite's limit
constexpr int ProgressSteps = 2000;    ///< instructions between two checks for cancellation

} // namespace

SqliteStatement::SqliteStatement(SqliteConnection &connection, std::string sql)
    : m_connection(connection)
    , m_sql(std::move(sql))
{
    const auto idle = connection.m_idle.find(m_sql);
    if (idle == connection.m_idle.end()) {
        prepare();
        return;
    }
    m_statement = idle->second;
    connection.m_idle.erase(idle);
}

void SqliteStatement::prepare()
{
    while (true) {
        const int code = sqlite3_prepare_v3(m_connection.m_db, m_sql.c_str(), static_cast<int>(m_sql.size()),
                                            0, &m_statement, nullptr);
        if (code == SQLITE_OK)
            return;
        if ((code & 0xFF) != SQLITE_LOCKED)
            m_connection.throwError(code);
        m_connection.waitForDefinitions();
    }
}

SqliteStatement::~SqliteStatement()
{
    sqlite3_reset(m_statement);
    sqlite3_clear_bindings(m_statement);
    if (m_connection.m_idle.size() >= MaxIdleStatements)
        m_connection.dropStatements();
    m_connection.m_idle.emplace(std::move(m_sql), m_statement);
}

void SqliteStatement::bind(int index, const Value &value, const SqlType &type)
{
    bindValue(m_statement, index, value, type);
}

void SqliteStatement::bind(const std::vector<EmittedParameter> &parameters,
                           std::span<sqlite3_value *> arguments)
{
    int index = 0;
    // SQLite returns a pointer unchanged, and functions only read through it.
    const auto bindPointer = [&](const void *object, const char *kind) {
        sqlite3_bind_pointer(m_statement, index, const_cast<void *>(object), kind, nullptr);
    };
    for (const EmittedParameter &parameter : parameters) {
        ++index;
        if (parameter.constant)
            bindValue(m_statement, index, parameter.constant->value, parameter.type);
        else if (parameter.call)
            bindPointer(parameter.call, "tsql-call");
        else if (parameter.provider)
            bindPointer(parameter.provider, "row-provider");
        else if (parameter.shape)
            bindPointer(parameter.shape, "xml-shape");
        else
            sqlite3_bind_value(m_statement, index, arguments[static_cast<std::size_t>(parameter.argument)]);
    }
}

void SqliteStatement::copyColumn(int column, sqlite3_context *context) const
{
    sqlite3_result_value(context, sqlite3_column_value(m_statement, column));
}

bool SqliteStatement::step()
{
    const ScopedValue<bool> writing(m_connection.m_isWriting, sqlite3_stmt_readonly(m_statement) == 0);
    while (true) {
        m_connection.m_error = nullptr;
        m_connection.m_cancelled = false;
        const int code = sqlite3_step(m_statement);
        if (code == SQLITE_ROW) {
            m_hasRow = true;
            return true;
        }
        if (code == SQLITE_DONE)
            return false;
        const bool locked = (code & 0xFF) == SQLITE_LOCKED && !m_hasRow && !m_connection.m_error;
        sqlite3_reset(m_statement);
        if (!locked)
            m_connection.throwError(code);
        m_connection.waitForDefinitions();
    }
}

void SqliteStatement::read(int column, const SqlType &type, Value &value) const
{
    readColumn(m_statement, column, type, value);
}

void SqliteStatement::reset()
{
    sqlite3_reset(m_statement);
    m_hasRow = false;
}

SqliteConnection::SqliteConnection(EvaluationContext &context,
                                   std::function<void(const Database &)> useDefinitions)
    : m_context(context)
    , m_useDefinitions(std::move(useDefinitions))
{
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX;
    if (sqlite3_open_v2(":memory:", &m_db, flags, nullptr) != SQLITE_OK) {
        sqlite3_close(m_db);
        throw Errors::outOfMemory();
    }
    sqlite3_extended_result_codes(m_db, 1);
    sqlite3_limit(m_db, SQLITE_LIMIT_LENGTH, static_cast<int>(Errors::LargestValue));
    registerFunctions(m_db, *this);
    registerRowGenerator(m_db);
    registerRowProviders(m_db, *this);
    sqlite3_progress_handler(m_db, ProgressSteps, onProgress, this);
    // The engine's lock manager separates readers and writers; SQLite must not lock again.
    execute("PRAGMA read_uncommitted = 1");
    execute("PRAGMA temp_store = MEMORY");
}

SqliteConnection::~SqliteConnection()
{
    dropStatements();
    sqlite3_close(m_db);
}

void SqliteConnection::dropStatements()
{
    for (const auto &[sql, statement] : m_idle)
        sqlite3_finalize(statement);
    m_idle.clear();
}

std::string SqliteConnection::schemaName(const Database &database)
{
    return 'd' + std::to_string(database.id());
}

void SqliteConnection::attach(const DatabasePtr &database)
{
    if (m_attached.contains(database->id()))
        return;
    if (m_attached.size() >= MaxAttached)
        detachUnused();
    SqliteStatement statement(*this, "ATTACH DATABASE ? AS " + schemaName(*database));
    statement.bind(1, database->uri(), {TypeId::NVarChar, SqlType::Max, 0, 0});
    statement.step();
    m_attached.emplace(database->id(), database);
}

void SqliteConnection::execute(const std::string &sql)
{
    SqliteStatement statement(*this, sql);
    while (statement.step()) {
    }
}

void SqliteConnection::dropTemporary(const std::string &table)
{
    m_dropLater.push_back(table);
    dropWaiting();
}

void SqliteConnection::dropWaiting()
{
    std::erase_if(m_dropLater, [this](const std::string &table) {
        return sqlite3_exec(m_db, ("DROP TABLE IF EXISTS temp." + table).c_str(), nullptr, nullptr,
                            nullptr) == SQLITE_OK;
    });
}

bool SqliteConnection::isInTransaction() const
{
    return sqlite3_get_autocommit(m_db) == 0;
}

std::int64_t SqliteConnection::lastRowId() const
{
    return sqlite3_last_insert_rowid(m_db);
}

void SqliteConnection::detachUnused()
{
    dropWaiting();
    if (m_attached.empty())
        return;
    dropStatements();
    for (auto it = m_attached.begin(); it != m_attached.end();) {
        const std::string sql = "DETACH DATABASE " + schemaName(*it->second);
        const bool detached = sqlite3_exec(m_db, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
        it = detached ? m_attached.erase(it) : std::next(it);
    }
}

/// Called if another session changes the tables of an attached database, used or not: waits as for any other
/// lock, so that deadlocks are detected and the client can cancel.
void SqliteConnection::waitForDefinitions()
{
    for (const auto &[id, database] : m_attached)
        m_useDefinitions(*database);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

void SqliteConnection::throwError(int code)
{
    if (m_error)
        std::rethrow_exception(std::exchange(m_error, nullptr));
    if (m_cancelled)
        throw BatchCancelled();
    if ((code & 0xFF) == SQLITE_CONSTRAINT)
        throw SqliteConstraintError();
    if ((code & 0xFF) == SQLITE_TOOBIG || (code & 0xFF) == SQLITE_NOMEM)
        throw Errors::outOfMemory();
    const std::string text = sqlite3_errmsg(m_db);
    if (text.find("too many FROM clause terms") != std::string::npos)
        throw EngineError(106, 15, 1,
                          "Too many table names in the query. The maximum allowable is " +
                              std::to_string(LargestJoin) + '.',
                          ErrorEffect::EndsBatch);
    if (text.find("Expression tree is too large") != std::string::npos ||
        text.find("parser stack overflow") != std::string::npos)
        throw EngineError(
            191, 15, 1,
            "Some part of your SQL statement is nested too deeply. Rewrite the query or break it up into "
            "smaller queries.",
            ErrorEffect::EndsBatch);
    throw EngineError(40001, 16, 1, "The sample server failed inside SQLite: " + text,
                      ErrorEffect::EndsBatch);
}

int SqliteConnection::onProgress(void *self)
{
    auto &connection = *static_cast<SqliteConnection *>(self);
    if (!connection.m_sink || connection.m_isWriting)
        return 0;
    try {
        connection.m_cancelled = connection.m_sink->attentionRequested();
    } catch (...) {
        connection.m_error = std::current_exception();
        return 1;
    }
    return connection.m_cancelled ? 1 : 0;
}

} // namespace SampleServer
