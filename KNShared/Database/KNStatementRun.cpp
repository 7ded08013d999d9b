#include "Database/KNStatementRun.h"

#include "Database/KNStatementSession.h"
#include "Foundation/KNAssert.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "SQL/KNQuerySplitter.h"

#include <atomic>
#include <condition_variable>
#include <mutex>

using Changes = KNStatementOutcome::Changes;

namespace {

const QString QueryKey = QStringLiteral("Query");
const QString RangesKey = QStringLiteral("com.quorvex.osx.vantor.queryErrorRanges");
constexpr auto CancelInterval = std::chrono::milliseconds(20);

QList<KNQueryDetails> batchesOf(const QString &script, const VantorDBC &details)
{
    const auto splitter = details.createQuerySplitter();
    splitter->setRequiresFullSplit(true);
    return splitter->doSplitQuery(script);
}

/// Returns the script line of the first failure message that does not come from a procedure; 0 if there is
/// none.
quint64 failedLineIn(const KNResultSetHolder &results)
{
    const auto resultSets = results.resultSets();
    for (const KNDatabaseResultSetPtr &resultSet : resultSets) {
        const auto messages = resultSet->serverMessages();
        for (const DatabaseMessage &message : messages) {
            if (message.isFailure() && message.type == DatabaseMessage::ServerMessage &&
                message.procname.isEmpty())
                return message.calculatedLineNumber;
        }
    }
    return 0;
}

} // namespace

/// State shared by the worker and the cancelling threads. It outlives the run.
struct KNStatementRun::Work
{
    enum class Phase { Waiting, Running, Ending };

    explicit Work(KNStatementRequest itsRequest)
        : request(std::move(itsRequest))
    {
    }

    const KNStatementRequest request;
    std::function<void()> progressed;
    std::atomic<int> done = 0;
    std::atomic<int> total = 0;

    std::mutex cancelling; ///< held during a cancel, which must not reach a rollback
    std::mutex mutex;      ///< guards the next three members
    Phase phase = Phase::Waiting;
    bool isCancelled = false;
    VantorDatabaseClient *client = nullptr; ///< while it runs batches
    std::condition_variable changed;

    KNStatementOutcome perform(const VantorDBC &details);
    KNStatementOutcome perform(VantorDatabaseClient &running);
    void cancelUntilEnding();

private:
    /// The extent of a rollback. A transaction that was open before the run must survive it.
    enum class Scope { Nothing, Transaction, Savepoint };

    bool beginRunning(VantorDatabaseClient &running);
    bool endRunning();
    bool runBatches(VantorDatabaseClient &running, KNStatementOutcome *outcome);
    bool runBatch(const KNQueryDetails &batch, VantorDatabaseClient &running, KNStatementOutcome *outcome);
    bool begin(VantorDatabaseClient &running, KNStatementOutcome *outcome);
    bool complete(VantorDatabaseClient &running, KNStatementOutcome *outcome) const;
    void commit(VantorDatabaseClient &running, KNStatementOutcome *outcome) const;
    void rollBack(VantorDatabaseClient &running, KNStatementOutcome *outcome) const;
    void rollBackToSavepoint(VantorDatabaseClient &running, KNStatementOutcome *outcome) const;
    KNError mapped(const KNStatementOutcome &outcome) const;

    Scope scope = Scope::Nothing; ///< worker only
};

KNStatementOutcome KNStatementRun::Work::perform(const VantorDBC &details)
{
    KNStatementOutcome outcome;
    KNError error;
    const auto work = [&](VantorDatabaseClient &lent, KNError *failure) {
        outcome = perform(lent);
        *failure = outcome.error;
        // Later callers of the pool must not inherit SET options or temporary tables.
        const VantorSessionState state = lent.sessionStateAfter(request.script);
        if (!request.session && (state.hasOptions || state.hasTemporaryTables))
            lent.disconnect();
    };
    if (request.session)
        request.session->executeQuery(work, &error);
    else
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(work, details, &error);
    if (error && !outcome.error) { // no connection could be opened
        outcome.error = error;
        outcome.error = mapped(outcome);
    }
    endRunning();
    return outcome;
}

KNStatementOutcome KNStatementRun::Work::perform(VantorDatabaseClient &running)
{
    KNStatementOutcome outcome;
    if (!beginRunning(running)) {
        outcome.wasCancelled = true;
        return outcome;
    }
    try {
        const bool isWhole =
            begin(running, &outcome) && runBatches(running, &outcome) && complete(running, &outcome);
        const bool wasCancelled = endRunning();
        if (!request.usesTransaction) {
            outcome.wasCancelled = wasCancelled && !isWhole;
            // A server that has lost its client may have run the statement all the same.
            outcome.changes = isWhole                  ? Changes::All
                              : !running.isConnected() ? Changes::Unknown
                              : total > 0              ? Changes::Some
                                                       : Changes::None;
        } else if (isWhole && !wasCancelled) {
            commit(running, &outcome);
        } else {
            outcome.wasCancelled = wasCancelled;
            rollBack(running, &outcome);
        }
        if (request.session && running.isConnected())
            request.session->restore(running);
    } catch (const KNAssertionFailure &failure) {
        outcome.error = KNError(QStringLiteral("com.quorvex.vantor.query"), 0, failure.message());
        outcome.changes = Changes::Unknown;
        endRunning();
    }
    if (outcome.wasCancelled)
        outcome.error.clear(); // it reports the user's cancellation
    if (outcome.error)
        outcome.error = mapped(outcome);
    return outcome;
}

/// Returns false if the run was cancelled before.
bool KNStatementRun::Work::beginRunning(VantorDatabaseClient &running)
{
    const std::lock_guard lock(mutex);
    if (isCancelled)
        return false;
    phase = Phase::Running;
    client = &running;
    return true;
}

/// Waits for a cancellation in progress and prevents later ones. Returns whether the run was cancelled.
bool KNStatementRun::Work::endRunning()
{
    {
        const std::lock_guard lock(mutex);
        phase = Phase::Ending;
        changed.notify_all();
    }
    const std::lock_guard wait(cancelling);
    const std::lock_guard lock(mutex);
    client = nullptr;
    return isCancelled;
}

/// Repeats the cancellation, because one that comes just before the client has begun has no effect.
void KNStatementRun::Work::cancelUntilEnding()
{
    for (;;) {
        {
            const std::lock_guard isCancelling(cancelling);
            VantorDatabaseClient *running = nullptr;
            {
                const std::lock_guard lock(mutex);
                if (phase != Phase::Running)
                    return;
                running = client;
            }
            KNError ignored;
            running->cancelCurrentQuery(&ignored);
        }
        std::unique_lock lock(mutex);
        changed.wait_for(lock, CancelInterval, [this] { return phase != Phase::Running; });
    }
}

bool KNStatementRun::Work::runBatches(VantorDatabaseClient &running, KNStatementOutcome *outcome)
{
    const QList<KNQueryDetails> batches = batchesOf(request.script, running.databaseConnectionDetails());
    total = static_cast<int>(batches.size());
    for (const KNQueryDetails &batch : batches) {
        {
            const std::lock_guard lock(mutex);
            if (isCancelled)
                return false;
        }
        if (!runBatch(batch, running, outcome))
            return false;
        ++done;
        if (progressed)
            progressed();
    }
    return true;
}

bool KNStatementRun::Work::runBatch(const KNQueryDetails &batch, VantorDatabaseClient &running,
                                    KNStatementOutcome *outcome)
{
    KNResultSetHolder results;
    results.setRowLimit(1); // the rows are not used
    running.executeQueryDetails({batch}, results, {}, &outcome->error);
    if (!outcome->error)
        outcome->error = results.failure();
    if (!outcome->error && running.wasCancelled())
        return false;
    if (!outcome->error && request.session)
        request.session->check(done, results, &outcome->error);
    if (!outcome->error)
        return true;
    outcome->failedStatement = batch.targetQuery;
    const QVariantList ranges = outcome->error.userInfo().value(RangesKey).toList();
    outcome->failedRange = ranges.isEmpty() ? batch.queryRange : ranges.constFirst().value<KNRange>();
    outcome->failedLine = failedLineIn(results);
    return false;
}

/// Begins the transaction, or a savepoint inside of one that the session has open.
bool KNStatementRun::Work::begin(VantorDatabaseClient &running, KNStatementOutcome *outcome)
{
    KNError *const error = &outcome->error;
    if (request.session)
        request.session->prepare(running, error);
    if (*error || !request.usesTransaction)
        return !*error;
    const std::optional<bool> isOpen = request.session ? running.isInTransaction(error) : false;
    if (*error)
        return false;
    if (!isOpen.value_or(true)) {
        scope = Scope::Transaction;
        running.beginTransaction(error);
        return !*error;
    }
    running.executeNonQuery(request.session->savepoint(), error);
    outcome->isInOuterTransaction = running.isConnected();
    if (!*error)
        scope = Scope::Savepoint;
    return !*error;
}

bool KNStatementRun::Work::complete(VantorDatabaseClient &running, KNStatementOutcome *outcome) const
{
    if (request.session)
        request.session->complete(running, &outcome->error);
    return !outcome->error && !(request.session && running.wasCancelled());
}

void KNStatementRun::Work::commit(VantorDatabaseClient &running, KNStatementOutcome *outcome) const
{
    if (scope == Scope::Transaction)
        running.commitTransaction(&outcome->error);
    if (!outcome->error)
        outcome->changes = Changes::All;
    else if (running.isConnected())
        rollBack(running, outcome);
    else
        outcome->changes = Changes::Unknown;
}

/// A server rolls back itself when a connection is lost and after some errors. A script may also have ended
/// the transaction itself.
void KNStatementRun::Work::rollBack(VantorDatabaseClient &running, KNStatementOutcome *outcome) const
{
    outcome->changes = Changes::None;
    if (!running.isConnected()) {
        if (outcome->isInOuterTransaction)
            outcome->isInOuterTransaction = false;
        return;
    }
    if (scope == Scope::Savepoint)
        return rollBackToSavepoint(running, outcome);
    if (scope == Scope::Nothing)
        return;
    KNError ignored;
    if (running.isInTransaction(&ignored) == false) {
        if (running.mayChangeTransaction(request.script))
            outcome->changes = Changes::Unknown;
        return;
    }
    running.rollbackTransaction(&outcome->rollbackError);
    if (outcome->rollbackError && running.isConnected())
        outcome->changes = Changes::Unknown;
}

/// A server may have ended the whole transaction because of the error.
void KNStatementRun::Work::rollBackToSavepoint(VantorDatabaseClient &running,
                                               KNStatementOutcome *outcome) const
{
    KNError ignored;
    if (running.isInTransaction(&ignored) == false) {
        outcome->isInOuterTransaction = false;
        return;
    }
    running.executeNonQuery(request.session->rollbackToSavepoint(), &outcome->rollbackError);
    if (outcome->rollbackError)
        outcome->changes = running.isConnected() ? Changes::Unknown : Changes::None;
    outcome->isInOuterTransaction = running.isConnected();
}

KNError KNStatementRun::Work::mapped(const KNStatementOutcome &outcome) const
{
    const KNError &error = outcome.error;
    QVariantMap userInfo = error.userInfo();
    if (!outcome.failedStatement.isNull())
        userInfo.insert(QueryKey, outcome.failedStatement);
    if (outcome.rollbackError)
        userInfo.insert(KNError::RecoverySuggestionKey,
                        KNFormat("The changes could not be rolled back: %@ Check which of them remain.",
                                 outcome.rollbackError.localizedDescription()));
    else if (outcome.changes == Changes::Unknown)
        userInfo.insert(
            KNError::RecoverySuggestionKey,
            KNFormat("%@ Check on the server what was changed.", error.recoverySuggestion()).trimmed());
    return KNError(request.errorDomain.isNull() ? error.domain() : request.errorDomain, error.code(),
                   error.localizedDescription(), userInfo);
}

KNStatementRun::KNStatementRun(std::shared_ptr<Work> work, QObject *owner, Finished finished,
                               Progress progress)
    : m_work(std::move(work))
    , m_owner(owner)
    , m_finished(std::move(finished))
    , m_progress([this, progress = std::move(progress)] {
        if (progress && m_owner && m_finished)
            progress(m_work->done, m_work->total);
    })
{
    m_work->progressed = m_progress.trigger();
}

KNStatementRun::Ptr KNStatementRun::start(KNStatementRequest request, const VantorDBC &details,
                                          QObject *owner, Finished finished, Progress progress)
{
    const auto work = std::make_shared<Work>(std::move(request));
    auto run = std::make_shared<KNStatementRun>(work, owner, std::move(finished), std::move(progress));
    VantorDatabaseConnectionPool::sharedInstance()->forgetRefusals(details);
    // The run is destroyed on the main thread, so the worker passes its reference on.
    KNDispatch::globalQueue([self = run, work, copy = details.copy()]() mutable {
        const KNStatementOutcome outcome = work->perform(*copy);
        KNDispatch::mainQueue([ended = std::move(self), outcome] { ended->deliver(outcome); });
    });
    return run;
}

KNStatementOutcome KNStatementRun::run(const KNStatementRequest &request, VantorDatabaseClient &client)
{
    return Work(request).perform(client);
}

void KNStatementRun::cancel()
{
    bool isWaiting = false;
    {
        const std::lock_guard lock(m_work->mutex);
        if (m_work->isCancelled || m_work->phase == Work::Phase::Ending)
            return;
        m_work->isCancelled = true;
        isWaiting = m_work->phase == Work::Phase::Waiting;
    }
    if (!isWaiting) {
        KNDispatch::globalQueue([work = m_work] { work->cancelUntilEnding(); });
        return;
    }
    KNDispatch::mainQueue([self = shared_from_this()] {
        KNStatementOutcome outcome;
        outcome.wasCancelled = true;
        self->deliver(outcome);
    });
}

void KNStatementRun::deliver(const KNStatementOutcome &outcome)
{
    const Finished finished = std::exchange(m_finished, nullptr);
    if (finished && m_owner)
        finished(outcome);
}
