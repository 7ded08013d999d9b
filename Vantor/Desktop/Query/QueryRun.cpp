#include "Desktop/Query/QueryRun.h"

#include "Desktop/Query/QueryBatches.h"
#include "Foundation/KNAssert.h"
#include "Foundation/KNDispatch.h"

#include <QPointer>

#include <condition_variable>

/// The state that the worker and the cancelling threads share. It outlives the run.
struct QueryRun::Work
{
    enum class Phase { Connecting, Running, Done };

    Work(std::shared_ptr<VantorTabConnection> itsConnection, std::shared_ptr<KNResultSetHolder> itsResults,
         QueryRequest itsRequest)
        : connection(std::move(itsConnection))
        , results(std::move(itsResults))
        , request(std::move(itsRequest))
    {
    }

    const std::shared_ptr<VantorTabConnection> connection;
    const std::shared_ptr<KNResultSetHolder> results;
    const QueryRequest request;

    std::mutex mutex;
    std::condition_variable changed;
    Phase phase = Phase::Connecting; ///< guarded by mutex
    bool isCancelled = false;        ///< guarded by mutex

    QueryOutcome perform();
    void execute(const QList<KNQueryDetails> &batches, VantorDatabaseClient &client, QueryOutcome *outcome,
                 KNError *error);
    void cancelUntilDone();
};

QueryOutcome QueryRun::Work::perform()
{
    QueryOutcome outcome;
    try {
        const QList<KNQueryDetails> batches = batchesOf(request, *connection->connectionDetails());
        outcome.hadBatches = !batches.isEmpty();
        if (outcome.hadBatches)
            connection->executeQuery([&](VantorDatabaseClient &client,
                                         KNError *error) { execute(batches, client, &outcome, error); },
                                     &outcome.error);
    } catch (const KNAssertionFailure &failure) {
        outcome.error = KNError(QStringLiteral("com.quorvex.vantor.query"), 0, failure.message());
    }
    const std::lock_guard lock(mutex);
    phase = Phase::Done;
    changed.notify_all();
    return outcome;
}

void QueryRun::Work::execute(const QList<KNQueryDetails> &batches, VantorDatabaseClient &client,
                             QueryOutcome *outcome, KNError *error)
{
    {
        const std::lock_guard lock(mutex);
        outcome->wasCancelled = isCancelled;
        if (isCancelled)
            return;
        phase = Phase::Running;
    }
    outcome->notice = connection->takeNotice();
    results->setRowLimit(request.rowLimit);
    KNScriptRun script(request.onError);
    script.setIsCancelled([this] {
        const std::lock_guard lock(mutex);
        return isCancelled;
    });
    bool mayHaveChanged = false;
    script.setBeforeBatch([&](const KNQueryDetails &batch) {
        // Recorded before it runs: the session may be lost with its changes.
        VantorSessionState state = client.sessionStateAfter(batch.targetQuery);
        state.hasTransaction |= connection->beginsTransactions();
        connection->addSessionState(state);
        mayHaveChanged = mayHaveChanged || state.hasTransaction;
    });
    script.run(batches, client, *results, error);
    outcome->notRun = script.notRun();
    {
        const std::lock_guard lock(mutex);
        outcome->wasCancelled = isCancelled || client.wasCancelled();
        phase = Phase::Done;
        changed.notify_all();
    }
    outcome->database = client.currentDatabase();
    if (!client.isConnected()) {
        outcome->inTransaction = false;
    } else if (request.asksForTransaction || mayHaveChanged) {
        KNError ignored;
        outcome->inTransaction = client.isInTransaction(&ignored);
        if (outcome->inTransaction)
            connection->setHasTransaction(*outcome->inTransaction);
    }
}

/// A cancel just before the client starts finds nothing to stop, so it is repeated.
void QueryRun::Work::cancelUntilDone()
{
    std::unique_lock lock(mutex);
    while (phase != Phase::Done) {
        lock.unlock();
        KNError ignored;
        connection->cancelCurrentQuery(&ignored);
        lock.lock();
        changed.wait_for(lock, std::chrono::milliseconds(20), [this] { return phase == Phase::Done; });
    }
}

QueryRun::QueryRun(std::shared_ptr<VantorTabConnection> connection, QueryRequest request, QObject *parent)
    : QObject(parent)
    , m_request(std::move(request))
    , m_results(std::make_shared<KNResultSetHolder>())
    , m_work(std::make_shared<Work>(std::move(connection), m_results, m_request))
    , m_changes([this] {
        if (!m_isFinished)
            Q_EMIT resultsChanged();
    })
{
    m_results->setChangeObserver(m_changes.trigger());
}

QueryRun::~QueryRun()
{
    blockSignals(true);
    if (!m_isFinished)
        cancel();
    // The last reference may close the connection, which waits for the server.
    KNDispatch::globalQueue([work = std::move(m_work)] {});
}

void QueryRun::start()
{
    m_timer.start();
    KNDispatch::globalQueue([work = m_work, run = QPointer(this)] {
        const QueryOutcome outcome = work->perform();
        KNDispatch::mainQueue([run, outcome] {
            if (run && !run->m_isFinished)
                run->finish(outcome);
        });
    });
}

void QueryRun::cancel()
{
    {
        const std::lock_guard lock(m_work->mutex);
        if (m_work->isCancelled || m_work->phase == Work::Phase::Done)
            return;
        m_work->isCancelled = true;
        m_isAbandoned = m_work->phase == Work::Phase::Connecting && !m_work->connection->isConnected() &&
                        !m_work->connection->hasSessionState();
    }
    KNDispatch::globalQueue([work = m_work] { work->cancelUntilDone(); });
    if (m_isAbandoned) {
        QueryOutcome outcome;
        outcome.wasCancelled = true;
        finish(outcome);
    }
}

qint64 QueryRun::elapsedMilliseconds() const
{
    return m_isFinished ? m_elapsed : m_timer.isValid() ? m_timer.elapsed() : 0;
}

void QueryRun::finish(const QueryOutcome &outcome)
{
    m_elapsed = elapsedMilliseconds();
    m_outcome = outcome;
    m_isFinished = true;
    Q_EMIT finished();
}
