#pragma once

#include "Database/KNResultSetHolder.h"
#include "Database/VantorTabConnection.h"
#include "Foundation/KNChangeNotifier.h"

#include <QElapsedTimer>
#include <QObject>

/// What of a text is to run.
struct QueryRequest
{
    enum class Part {
        Everything,
        Range,   ///< the piece at `range`
        BatchAt, ///< the batch in which `range` begins
    };

    QString text; ///< the whole text: lines and ranges of errors count in it
    Part part = Part::Everything;
    KNRange range = {};
    qsizetype rowLimit = 0;          ///< rows of each result that are kept; 0 for all
    bool asksForTransaction = false; ///< whether one is open is asked for even if the text cannot change it
};

/// How a run has ended.
struct QueryOutcome
{
    KNError error;
    bool wasCancelled = false;
    bool hadBatches = true;
    QString database;                  ///< where the session is now; null when it is not known
    std::optional<bool> inTransaction; ///< empty when it was not asked for, or there was no answer
};

/// One run of a query: a worker cuts the text into batches and executes them on a tab's connection. On the UI
/// thread, which never waits; a run that is destroyed is cancelled.
class QueryRun : public QObject
{
    Q_OBJECT

public:
    QueryRun(std::shared_ptr<VantorTabConnection> connection, QueryRequest request, QObject *parent);
    ~QueryRun() override;

    void start();
    /// Stops the run. While the connection is still being opened the run ends at once, and isAbandoned()
    /// turns true: the connection stays in use until its login is over, and is closed then.
    void cancel();

    bool isFinished() const { return m_isFinished; }
    /// Whether the run has ended without its connection.
    bool isAbandoned() const { return m_isAbandoned; }
    const QueryOutcome &outcome() const { return m_outcome; }
    /// The results, filled while the run goes on.
    const std::shared_ptr<KNResultSetHolder> &results() const { return m_results; }
    const QueryRequest &request() const { return m_request; }
    /// So far, or in all.
    qint64 elapsedMilliseconds() const;

Q_SIGNALS:
    /// results() has changed. Emitted a few times a second at most, and not after finished().
    void resultsChanged();
    void finished();

private:
    struct Work;

    void finish(const QueryOutcome &outcome);

    const QueryRequest m_request;
    const std::shared_ptr<KNResultSetHolder> m_results;
    std::shared_ptr<Work> m_work;
    KNChangeNotifier m_changes;
    QueryOutcome m_outcome;
    QElapsedTimer m_timer;
    qint64 m_elapsed = 0;
    bool m_isFinished = false;
    bool m_isAbandoned = false;
};
