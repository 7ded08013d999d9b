#pragma once

#include "Database/KNQueryDetails.h"
#include "Database/VantorDBC.h"
#include "Foundation/KNChangeNotifier.h"
#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <QPointer>

#include <functional>
#include <memory>
#include <optional>

class KNStatementSession;
class VantorDatabaseClient;

/// A script and the options to run it with.
struct KNStatementRequest
{
    QString script;
    bool usesTransaction = false; ///< commits on success and rolls back otherwise
    QString errorDomain;          ///< the domain of the outcome's error; null keeps the original one
    std::shared_ptr<KNStatementSession> session = nullptr; ///< null for a session of the pool
};

/// The outcome of a script run.
struct KNSHARED_EXPORT KNStatementOutcome
{
    /// How much of the executed statements remains on the server.
    enum class Changes {
        All,  ///< the script ran to its end
        None, ///< nothing was run, or everything was rolled back
        Some, ///< statements executed before the failure or cancellation may have left changes
        /// The connection was lost during a statement without transaction or during the commit, the rollback
        /// failed, or the script may have ended the transaction itself. The error's suggestion says so unless
        /// the run was cancelled.
        Unknown,
    };

    /// Why the script failed. The user info contains the failing batch under "Query".
    KNError error;
    /// Why the rollback failed. Also added to `error` as a suggestion.
    KNError rollbackError;
    bool wasCancelled = false;
    Changes changes = Changes::None;
    /// Whether the session is in a transaction that was open before the run; nullopt if there was none.
    std::optional<bool> isInOuterTransaction = {};
    QString failedStatement; ///< text of the failing batch; null if none failed
    KNRange failedRange;    ///< range of the failing text in the script, or of its batch if that is not known
    quint64 failedLine = 0; ///< line of the failure in the script, from 1; 0 if unknown

    bool succeeded() const { return changes == Changes::All; }
};

/// Runs a script in the background, batch by batch, up to the first failure.
class KNSHARED_EXPORT KNStatementRun : public std::enable_shared_from_this<KNStatementRun>
{
public:
    using Ptr = std::shared_ptr<KNStatementRun>;
    /// Reports the number of completed batches.
    using Progress = std::function<void(int done, int total)>;
    using Finished = std::function<void(const KNStatementOutcome &outcome)>;

    /// Runs the script with a client of the shared connection pool. Copies the settings. Calls `finished`
    /// once on the main thread and `progress`, which may be empty, at most a few times a second. Neither is
    /// called after `owner` is destroyed, but the script still runs to its end. The result may be discarded.
    /// Called on the main thread.
    static Ptr start(KNStatementRequest request, const VantorDBC &details, QObject *owner, Finished finished,
                     Progress progress = {});
    /// Runs the script with this client and blocks until it ends. Not on the main thread.
    static KNStatementOutcome run(const KNStatementRequest &request, VantorDatabaseClient &client);

    /// Stops the script and rolls back an open transaction. While the connection is being opened, the run
    /// ends without waiting for it. Called on the main thread.
    void cancel();

    struct Work;
    KNStatementRun(std::shared_ptr<Work> work, QObject *owner, Finished finished, Progress progress);

private:
    void deliver(const KNStatementOutcome &outcome);

    const std::shared_ptr<Work> m_work;
    const QPointer<QObject> m_owner;
    Finished m_finished; ///< empty once called
    KNChangeNotifier m_progress;
};
