#include "TableDesign/MSSQLMisfitCount.h"

#include "Database/VantorDatabaseClient.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"

#include <QLocale>

#include <condition_variable>
#include <mutex>

namespace {

constexpr std::chrono::seconds LongestCount(3);

/// A count, shared by the thread that runs it and the one that waits for it.
class RunningCount
{
public:
    void run(const VantorDBC &settings, const QString &query)
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
        const std::lock_guard lock(m_mutex);
        m_isDone = true;
        if (!error)
            m_rows = rows;
        m_done.notify_all();
    }

    /// Waits for the number, and stops the query when it takes too long.
    std::optional<qint64> wait()
    {
        std::unique_lock lock(m_mutex);
        if (m_done.wait_for(lock, LongestCount, [this] { return m_isDone; }))
            return m_rows;
        m_isStopped = true;
        KNError ignored;
        if (m_client)
            m_client->cancelCurrentQuery(&ignored);
        return std::nullopt;
    }

private:
    bool begin(VantorDatabaseClient &running)
    {
        const std::lock_guard lock(m_mutex);
        m_client = m_isStopped ? nullptr : &running;
        return m_client != nullptr;
    }
    void end()
    {
        const std::lock_guard lock(m_mutex);
        m_client = nullptr;
    }

    std::mutex m_mutex; ///< guards everything below
    std::condition_variable m_done;
    VantorDatabaseClient *m_client = nullptr; ///< while the query runs
    std::optional<qint64> m_rows;
    bool m_isDone = false;
    bool m_isStopped = false;
};

} // namespace

std::optional<qint64> MSSQLMisfitCount::count(const std::shared_ptr<const VantorDBC> &settings,
                                              const QString &query)
{
    if (query.isEmpty())
        return std::nullopt;
    const auto running = std::make_shared<RunningCount>();
    KNDispatch::globalQueue([running, settings, query] { running->run(*settings, query); });
    return running->wait();
}

QString MSSQLMisfitCount::sentence(std::optional<qint64> rows)
{
    if (!rows)
        return tr("It is unknown how many rows have values that the new type does not hold.");
    return *rows == 1 ? tr("1 row has a value that the new type does not hold.")
                      : KNFormat(tr("%@ rows have values that the new type does not hold."),
                                 QLocale().toString(*rows));
}
