#include "UI/TableDesigner/MSSQLMisfitCount.h"

#include "Database/VantorDatabaseClient.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNDispatch.h"

#include <QPointer>
#include <QTimer>

#include <mutex>
#include <utility>

namespace {

constexpr int LongestCount = 3000; // ms

/// A count, shared by the thread that runs it and the one that stops it.
struct RunningCount
{
    std::mutex mutex;
    VantorDatabaseClient *client = nullptr; ///< while the query runs; guarded by mutex
    bool isStopped = false;                 ///< guarded by mutex

    std::optional<qint64> run(const VantorDBC &settings, const QString &query)
    {
        std::optional<qint64> rows;
        KNError error;
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&](VantorDatabaseClient &running, KNError *failure) {
                if (!begin(running))
                    return;
                const auto result = running.executeQuery(query, failure);
                end();
                if (result && !*failure && result->next())
                    rows = result->numberForColumnIndex(0).toInt64();
            },
            settings, &error);
        return error ? std::nullopt : rows;
    }

    void stop()
    {
        const std::lock_guard lock(mutex);
        isStopped = true;
        KNError ignored;
        if (client)
            client->cancelCurrentQuery(&ignored);
    }

private:
    bool begin(VantorDatabaseClient &running)
    {
        const std::lock_guard lock(mutex);
        client = isStopped ? nullptr : &running;
        return client != nullptr;
    }
    void end()
    {
        const std::lock_guard lock(mutex);
        client = nullptr;
    }
};

} // namespace

void MSSQLMisfitCount::count(const std::shared_ptr<const VantorDBC> &settings, const QString &query,
                             QObject *owner, std::function<void(std::optional<qint64> rows)> counted)
{
    if (query.isEmpty())
        return counted(std::nullopt);
    const auto running = std::make_shared<RunningCount>();
    // The first of the two reports; the other one finds the function empty.
    const auto report = [once =
                             std::make_shared<std::function<void(std::optional<qint64>)>>(std::move(counted)),
                         owner = QPointer(owner)](std::optional<qint64> rows) {
        if (const auto call = std::exchange(*once, nullptr); call && owner)
            call(rows);
    };
    KNDispatch::globalQueue([running, settings, query, report] {
        const std::optional<qint64> rows = running->run(*settings, query);
        KNDispatch::mainQueue([report, rows] { report(rows); });
    });
    QTimer::singleShot(LongestCount, owner, [running, report] {
        KNDispatch::globalQueue([running] { running->stop(); });
        report(std::nullopt);
    });
}
