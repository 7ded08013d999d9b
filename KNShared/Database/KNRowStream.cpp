#include "Database/KNRowStream.h"

#include "Database/VantorDatabaseClient.h"
#include "Database/VantorDatabaseConnectionPool.h"

#include <atomic>
#include <thread>

namespace {

constexpr qsizetype ReadAhead = 5000; ///< rows that the worker may be ahead of the reader
constexpr std::chrono::milliseconds Patience(50);

/// One run of a query, as its reader sees it.
struct RunningQuery
{
    VantorDatabaseClient &client;
    const KNResultSetHolder &holder;
    const std::atomic<bool> &done;
    const KNRowStream::IsCancelled &isCancelled;

    /// Stops the query if that was asked for. A query that has not reached the server yet is stopped by a
    /// later call.
    void stopIfCancelled() const
    {
        KNError ignored;
        if (isCancelled && isCancelled())
            client.cancelCurrentQuery(&ignored);
    }
};

/// Waits for the first result with columns; null if the run ends without one.
KNDatabaseResultSetPtr firstRows(const RunningQuery &query)
{
    for (KNResultSetHolder::Position seen = 0;;) {
        // Read before looking for results: all results are in the holder before `done` becomes true.
        const bool wasDone = query.done;
        const auto resultSets = query.holder.newResultSets(&seen);
        for (const KNDatabaseResultSetPtr &resultSet : resultSets) {
            if (!resultSet->columnNames().isEmpty())
                return resultSet;
        }
        if (wasDone)
            return nullptr;
        query.stopIfCancelled();
        query.holder.waitForMoreThan(query.holder.count(), Patience);
    }
}

/// Passes on the rows of the first result while a worker fills it, and waits until the worker is done.
void drain(const RunningQuery &query, const KNRowStream::Reader &reader)
{
    const KNDatabaseResultSetPtr resultSet = firstRows(query);
    if (!resultSet)
        return;
    if (reader.columns)
        reader.columns(resultSet->columnNames());
    KNRowStore &rows = resultSet->rows();
    qsizetype next = 0;
    for (;;) {
        // Read before looking for rows: all rows are in the store before `done` becomes true.
        const bool wasDone = query.done;
        if (rows.waitForMoreThan(next, wasDone ? std::chrono::milliseconds(0) : Patience)) {
            const qsizetype end = rows.rowCount();
            reader.rows(rows, next, end);
            next = end;
            rows.discardBefore(next);
        } else if (wasDone) {
            return;
        }
        query.stopIfCancelled();
    }
}

} // namespace

KNError KNRowStream::read(const VantorDBC &details, const QString &sql, const Reader &reader)
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
            drain({client, holder, done, reader.isCancelled}, reader);
            worker.join();
            if (!*failure)
                *failure = holder.failure();
        },
        details, &error);
    return error;
}

KNError KNRowStream::eachRow(const VantorDBC &details, const QString &sql,
                             const std::function<void(const KNRow &row)> &eachRow,
                             const IsCancelled &isCancelled)
{
    const auto passOn = [&](const KNRowStore &rows, qsizetype first, qsizetype end) {
        for (qsizetype row = first; row < end; ++row)
            eachRow(rows.row(row));
    };
    return read(details, sql, {.columns = {}, .rows = passOn, .isCancelled = isCancelled});
}
