#pragma once

#include "Database/KNQueryDetails.h"
#include "Database/VantorDBC.h"
#include "Foundation/KNChangeNotifier.h"
#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <QPointer>

#include <functional>
#include <memory>

class VantorDatabaseClient;

/// A script to run, and how.
struct KNStatementRequest
{
    QString script;
    bool usesTransaction = false; ///< commits on success and rolls back otherwise
    QString errorDomain;          ///< the domain of the outcome's error; null keeps the original one
};

/// How a script has ended.
struct KNSHARED_EXPORT KNStatementOutcome
{
    /// What the statements that ran have left on the server.
    enum class Changes {
        All,  ///< the script has run to its end
        None, ///< nothing was run, or everything was rolled back
        Some, ///< what ran before the failure or the cancel may remain
        /// The connection was lost during the commit, the rollback failed, or the script may have ended the
        /// transaction itself.
        Unknown,
    };

    /// Why the script has failed. The user info holds the failing batch under "Query".
    KNError error;
    /// Why the transaction could not be rolled back. Also a suggestion of `error`.
    KNError rollbackError;
    bool wasCancelled = false;
    Changes changes = Changes::None;
    QString failedStatement; ///< the text of the failing batch; null if none has failed
    KNRange failedRange;     ///< of the failing text in the script: of its batch if no more is known
    quint64 failedLine = 0;  ///< the line of the failure in the script, from 1; 0 if it is not known

    bool succeeded() const { return changes == Changes::All; }
};

/// Runs a script in the background, batch by batch, until one fails.
class KNSHARED_EXPORT KNStatementRun : public std::enable_shared_from_this<KNStatementRun>
{
public:
    using Ptr = std::shared_ptr<KNStatementRun>;
    /// Reports how many of the batches have run.
    using Progress = std::function<void(int done, int total)>;
    using Finished = std::function<void(const KNStatementOutcome &outcome)>;

    /// Runs the script with a client of the shared connection pool. Takes a copy of the settings. `finished`
    /// is called once on the main thread and `progress`, which may be empty, a few times a second at most;
    /// neither is called once `owner` is destroyed, though the script then runs to its end. The result may be
    /// discarded. On the main thread.
    static Ptr start(KNStatementRequest request, const VantorDBC &details, QObject *owner, Finished finished,
                     Progress progress = {});
    /// Runs the script with this client and blocks until it has ended. Not on the main thread.
    static KNStatementOutcome run(const KNStatementRequest &request, VantorDatabaseClient &client);

    /// Stops the script. An open transaction is rolled back. Before the connection is open, the run ends
    /// without waiting for it. On the main thread.
    void cancel();

    struct Work;
    KNStatementRun(std::shared_ptr<Work> work, QObject *owner, Finished finished, Progress progress);

private:
    void deliver(const KNStatementOutcome &outcome);

    const std::shared_ptr<Work> m_work;
    const QPointer<QObject> m_owner;
    Finished m_finished; ///< empty once it was called
    KNChangeNotifier m_progress;
};
