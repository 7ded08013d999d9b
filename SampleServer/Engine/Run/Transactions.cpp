#include "Engine/Run/Transactions.h"
#include "Engine/EngineError.h"
#include "Types/Collation.h"

#include <algorithm>
#include <atomic>
#include <utility>

namespace SampleServer {

namespace {

EngineError noTransaction(int number, const char *word)
{
    return {number, 16, 1,
            std::string("The ") + word + " TRANSACTION request has no corresponding BEGIN TRANSACTION."};
}

} // namespace

Transactions::Transactions(LockManager &locks, SqliteConnection &connection, EvaluationContext &context,
                           const SessionOptions &options)
    : m_locks(locks)
    , m_connection(connection)
    , m_context(context)
    , m_options(options)
{
}

Transactions::~Transactions()
{
    rollback();
}

void Transactions::acquire(const std::vector<Lock> &forStatement, const std::vector<Lock> &forTransaction)
{
    std::vector<Lock> wanted = forTransaction;
    wanted.insert(wanted.end(), forStatement.begin(), forStatement.end());
    const auto stop = [this] { return m_sink && m_sink->attentionRequested(); };
    switch (m_locks.acquire(m_context.spid, wanted, m_options.lockTimeout, stop)) {
    case LockOutcome::Granted:
        m_statementLocks.insert(m_statementLocks.end(), forStatement.begin(), forStatement.end());
        m_transactionLocks.insert(m_transactionLocks.end(), forTransaction.begin(), forTransaction.end());
        return;
    case LockOutcome::Interrupted:
        throw BatchCancelled();
    case LockOutcome::TimedOut:
        throw EngineError(1222, 16, 51, "Lock request time out period exceeded.");
    case LockOutcome::Deadlock:
        throw EngineError(
            1205, 13, 51,
            "Transaction (Process ID " + std::to_string(m_context.spid) +
                ") was deadlocked on lock resources with another process and has been chosen as the "
                "deadlock victim. Rerun the transaction.",
            ErrorEffect::RollsBack);
    }
}

void Transactions::release(std::vector<Lock> &held)
{
    m_locks.release(m_context.spid, held);
    held.clear();
}

void Transactions::lock(const std::vector<TableUse> &tables)
{
    std::vector<Lock> forStatement, forTransaction;
    const auto want = [](std::vector<Lock> &list, const std::vector<Lock> &held, const Lock &lock) {
        const auto covers = [&lock](const Lock &other) {
            return other.resource == lock.resource &&
                   (other.mode == lock.mode || other.mode == LockMode::Exclusive);
        };
        if (std::none_of(list.begin(), list.end(), covers) && std::none_of(held.begin(), held.end(), covers))
            list.push_back(lock);
    };
    const bool keepsReads = isOpen() && m_options.isolation >= IsolationLevel::RepeatableRead;
    for (const TableUse &use : tables) {
        if (!use.database)
            continue;
        const int database = use.database->id();
        const LockResource table{database, use.table->id};
        if (use.access == TableUse::Access::Write) {
            want(forTransaction, m_transactionLocks, {{database, LockResource::Writer}, LockMode::Exclusive});
            want(forTransaction, m_transactionLocks, {table, LockMode::Exclusive});
        } else if (use.access == TableUse::Access::Read &&
                   m_options.isolation != IsolationLevel::ReadUncommitted) {
            if (keepsReads)
                want(forTransaction, m_transactionLocks, {table, LockMode::Shared});
            else
                want(forStatement, m_statementLocks, {table, LockMode::Shared});
        }
        if (m_sqliteOpen)
            want(forTransaction, m_transactionLocks, {{database, LockResource::Schema}, LockMode::Shared});
        else
            want(forStatement, m_statementLocks, {{database, LockResource::Schema}, LockMode::Shared});
    }
    if (!forStatement.empty() || !forTransaction.empty())
        acquire(forStatement, forTransaction);
}

void Transactions::useDefinitions(const Database &database)
{
    const Lock shared{{database.id(), LockResource::Schema}, LockMode::Shared};
    if (m_sqliteOpen)
        acquire({}, {shared});
    else
        acquire({shared}, {});
}

void Transactions::changeDefinitions(const Database &database)
{
    acquire({}, {{{database.id(), LockResource::Writer}, LockMode::Exclusive},
                 {{database.id(), LockResource::Schema}, LockMode::Exclusive}});
}

void Transactions::endStatement()
{
    if (!isOpen())
        finishTransaction();
    release(m_statementLocks);
}

/// Throws if the transaction can only be rolled back.
void Transactions::requireCommittable() const
{
    if (m_context.isTransactionDoomed)
        throw EngineError(
            3930, 16, 1,
            "The current transaction cannot be committed and cannot support operations that write "
            "to the log file. Roll back the transaction.",
            ErrorEffect::EndsBatch);
}

void Transactions::openSqlite()
{
    requireCommittable();
    if (m_sqliteOpen)
        return;
    m_connection.execute("BEGIN");
    m_sqliteOpen = true;
    // From here on SQLite itself locks the definitions it reads.
    std::move(m_statementLocks.begin(), m_statementLocks.end(), std::back_inserter(m_transactionLocks));
    m_statementLocks.clear();
}

void Transactions::closeSqlite(const char *sql)
{
    if (!m_sqliteOpen)
        return;
    m_sqliteOpen = false;
    if (m_connection.isInTransaction())
        m_connection.execute(sql);
}

void Transactions::undoTo(std::size_t mark)
{
    while (m_undo.size() > mark) {
        m_undo.back()();
        m_undo.pop_back();
    }
}

void Transactions::finishTransaction()
{
    closeSqlite("COMMIT");
    m_undo.clear();
    m_savePoints.clear();
    m_name.clear();
    release(m_transactionLocks);
}

void Transactions::begin(const std::string &name)
{
    if (m_context.transactionCount++ > 0)
        return;
    static std::atomic<std::uint64_t> descriptors{0};
    m_name = name;
    m_descriptor = ++descriptors;
    tell(TransactionEvent::Begun);
}

void Transactions::tell(TransactionEvent event) const
{
    if (m_sink)
        m_sink->transactionChanged(event, m_descriptor);
}

void Transactions::commit()
{
    if (!isOpen())
        throw noTransaction(3902, "COMMIT");
    requireCommittable();
    if (--m_context.transactionCount > 0)
        return;
    finishTransaction();
    tell(TransactionEvent::Committed);
}

void Transactions::rollback()
{
    const bool wasOpen = std::exchange(m_context.transactionCount, 0) > 0;
    m_context.isTransactionDoomed = false;
    closeSqlite("ROLLBACK");
    undoTo(0);
    finishTransaction();
    release(m_statementLocks);
    if (wasOpen)
        tell(TransactionEvent::RolledBack);
}

void Transactions::save(const std::string &name)
{
    if (!isOpen())
        throw EngineError(628, 16, 0, "Cannot issue SAVE TRANSACTION when there is no active transaction.");
    openSqlite();
    m_savePoints.push_back({foldedName(name), m_undo.size()});
    m_connection.execute("SAVEPOINT p" + std::to_string(m_savePoints.size()));
}

void Transactions::rollbackTo(const std::string &name)
{
    if (!isOpen())
        throw noTransaction(3903, "ROLLBACK");
    if (foldedName(name) == foldedName(m_name))
        return rollback();
    const auto found = std::find_if(m_savePoints.rbegin(), m_savePoints.rend(),
                                    [&](const SavePoint &point) { return point.name == foldedName(name); });
    if (found == m_savePoints.rend())
        throw EngineError(6401, 16, 1,
                          "Cannot roll back " + name +
                              ". No transaction or savepoint of that name was found.");
    if (m_context.isTransactionDoomed)
        throw EngineError(
            3931, 16, 1,
            "The current transaction cannot be committed and cannot be rolled back to a savepoint. "
            "Roll back the entire transaction.",
            ErrorEffect::EndsBatch);
    const auto count = static_cast<std::size_t>(m_savePoints.rend() - found);
    m_connection.execute("ROLLBACK TO p" + std::to_string(count));
    undoTo(found->undoMark);
    m_savePoints.resize(count);
}

Transactions::Change::Change(Transactions &transactions)
    : m_transactions(transactions)
    , m_undoMark(transactions.m_undo.size())
{
    transactions.openSqlite();
    transactions.m_connection.execute("SAVEPOINT change");
}

Transactions::Change::~Change()
{
    if (m_finished || !m_transactions.m_sqliteOpen)
        return;
    if (!m_transactions.m_connection.isInTransaction()) {
        m_transactions.rollback(); // SQLite has rolled it back, so nothing can be kept
        return;
    }
    m_transactions.m_connection.execute("ROLLBACK TO change");
    m_transactions.m_connection.execute("RELEASE change");
    m_transactions.undoTo(m_undoMark);
}

void Transactions::Change::finish()
{
    m_transactions.m_connection.execute("RELEASE change");
    m_finished = true;
}

} // namespace SampleServer
