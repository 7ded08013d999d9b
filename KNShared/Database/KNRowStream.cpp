#include "Database/KNRowStream.h"

#include "Database/VantorDatabaseClient.h"
#include "Database/VantorDatabaseConnectionPool.h"

#include <atomic>
#include <thread>

namespace {

constexpr qsizetype ReadAhead = 5000; ///< rows that the worker may be ahead of the reader
constexpr std::chrono::milliseconds Patience(50);

/// Waits for the first result with columns; null if the run ends without one.
KNDatabaseResultSetPtr firstRows(const KNResultSetHolder &holder, const std::atomic<bool> &done)
{
    for (KNResultSetHolder::Position seen = 0;;) {
        // Read before looking for results: all results are in the holder before `done` becomes true.
        const bool wasDone = done;
        const auto resultSets = holder.newResultSets(&seen);
        for (const KNDatabaseResultSetPtr &resultSet : resultSets) {
            if (!resultSet->columnNames().isEmpty())
                return resultSet;
        }
        if (wasDone)
            return nullptr;
        holder.waitForMoreThan(holder.count(), Patience);
    }
}

/// Passes on the rows of the first result while a worker fills it, and waits until the worker is done.
void drain(const KNResultSetHolder &holder, const std::atomic<bool> &done,
           const std::function<void(const KNRow &row)> &eachRow)
{
    const KNDatabaseResultSetPtr resultSet = firstRows(holder, done);
    if (!resultSet)
        return;
    KNRowStore &rows = resultSet->rows();
    qsizetype next = 0;
    for (;;) {
        // Read before looking for rows: all rows are in the store before `done` becomes true.
        const bool wasDone = done;
        if (rows.waitForMoreThan(next, wasDone ? std::chrono::milliseconds(0) : Patience)) {
            for (const qsizetype end = rows.rowCount(); next < end; ++next)
                eachRow(rows.row(next));
            rows.discardBefore(next);
        } else if (wasDone) {
            return;
        }
    }
}

} // namespace

KNError KNRowStream::eachRow(const VantorDBC &details, const QString &sql,
                             const std::function<void(const KNRow &row)> &eachRow)
{
    KNError error;
    VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
        [&](VantorDatabaseClient &client, KNError *failure) {
            KNResultSetHolder holder;
            holder.setReadAhead(ReadAhead);
            std::atomic<bool> done = false;
            std::thread worker([&] {
                client.executeQueryDetails({{sql, {0, sql.size()}, 0}}, holder, {}, failure);
                done = true;
            });
            drain(holder, done, eachRow);
            worker.join();
            if (!*failure)
                *failure = holder.failure();
        },
        details, &error);
    return error;
}
