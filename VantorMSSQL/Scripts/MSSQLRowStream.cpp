#include "Scripts/MSSQLRowStream.h"

#include "Database/DatabaseMessage.h"
#include "Database/VantorDatabaseClient.h"
#include "Database/VantorDatabaseConnectionPool.h"

#include <atomic>
#include <thread>

namespace {

constexpr qsizetype ReadAhead = 5000; ///< rows that the worker may be ahead
constexpr std::chrono::milliseconds Patience(50);

/// Hands out the rows of the first result while a worker fills it, and waits until that is done.
void drain(const KNResultSetHolder &holder, const std::atomic<bool> &done,
           const std::function<void(const KNRow &row)> &eachRow)
{
    while (!done && !holder.waitForMoreThan(0, Patience))
        ;
    const auto resultSets = holder.resultSets();
    if (resultSets.isEmpty())
        return;
    KNRowStore &rows = resultSets.first()->rows();
    qsizetype next = 0;
    for (;;) {
        // Read before looking for rows: whatever comes later comes before it turns true.
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

/// The first error among the messages of the results. Rows that came before it are not all there were.
KNError messageError(const KNResultSetHolder &holder)
{
    for (const auto &resultSet : holder.resultSets()) {
        for (const DatabaseMessage &message : resultSet->serverMessages()) {
            if (message.isError())
                return KNError(QStringLiteral("SQLClient"), message.msgno, message.msgtext);
        }
    }
    return {};
}

} // namespace

KNError MSSQLRowStream::eachRow(const VantorDBC &details, const QString &sql,
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
                *failure = messageError(holder);
        },
        details, &error);
    return error;
}
