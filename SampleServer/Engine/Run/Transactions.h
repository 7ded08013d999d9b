#pragma once

#include "Engine/Catalog/Catalog.h"
#include "Engine/Run/SessionOptions.h"
#include "Engine/Storage/LockManager.h"
#include "Engine/Storage/SqliteConnection.h"

#include <functional>
#include <string>
#include <vector>

namespace SampleServer {

/// A table and how a statement uses it.
struct TableUse
{
    enum class Access { Definition, ReadUncommitted, Read, Write };
    DatabasePtr database; ///< null for a temporary table
    TablePtr table;
    Access access = Access::Definition;
};

/// A session's transaction and its locks.
///
/// The first change opens SQLite's own transaction, not BEGIN TRAN, so that reading alone keeps no snapshot.
/// From then on the locks on definitions are kept to its end, since SQLite keeps its own locks.
class Transactions
{
public:
    Transactions(LockManager &locks, SqliteConnection &connection, EvaluationContext &context,
                 const SessionOptions &options);
    ~Transactions();
    Transactions(const Transactions &) = delete;
    Transactions &operator=(const Transactions &) = delete;

    /// Polled while waiting for a lock; null never cancels.
    void watch(ResultSink *sink) { m_sink = sink; }

    // Locks. They throw EngineError 1205 and 1222, and BatchCancelled.
    void lock(const std::vector<TableUse> &tables);
    void useDefinitions(const Database &database); ///< locks them against changes while the statement runs
    void
    changeDefinitions(const Database &database); ///< locks them for this session until the transaction ends
    /// Releases the locks of the statement; in autocommit all locks.
    void endStatement();

    // Transactions. They throw EngineError 3902, 3903, 3908 and 6401.
    void begin(const std::string &name);
    void commit();
    void rollback();
    void rollbackTo(const std::string &name);
    void save(const std::string &name);
    bool isOpen() const { return m_context.transactionCount > 0; }

    /// Registers a function that reverts a catalog change on rollback.
    void onRollback(std::function<void()> undo) { m_undo.push_back(std::move(undo)); }

    /// The changes of one statement: all or none. The destructor reverts them unless finish() was called.
    class Change
    {
    public:
        explicit Change(Transactions &transactions);
        ~Change();
        Change(const Change &) = delete;
        Change &operator=(const Change &) = delete;
        void finish();

    private:
        Transactions &m_transactions;
        std::size_t m_undoMark;
        bool m_finished = false;
    };

private:
    struct SavePoint
    {
        std::string name;
        std::size_t undoMark;
    };

    void acquire(const std::vector<Lock> &forStatement, const std::vector<Lock> &forTransaction);
    void release(std::vector<Lock> &held);
    void requireCommittable() const;
    void openSqlite();
    void closeSqlite(const char *sql);
    void undoTo(std::size_t mark);
    void finishTransaction();
    void tell(TransactionEvent event) const;

    LockManager &m_locks;
    SqliteConnection &m_connection;
    EvaluationContext &m_context;
    const SessionOptions &m_options;
    ResultSink *m_sink = nullptr;
    std::vector<Lock> m_statementLocks;
    std::vector<Lock> m_transactionLocks;
    std::vector<std::function<void()>> m_undo;
    std::vector<SavePoint> m_savePoints;
    std::string m_name;
    std::uint64_t m_descriptor = 0; ///< identifies the open transaction to the client
    bool m_sqliteOpen = false;
};

} // namespace SampleServer
