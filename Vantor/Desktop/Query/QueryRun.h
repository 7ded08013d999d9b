#pragma once

#include "Database/KNResultSetHolder.h"
#include "Database/KNScriptRun.h"
#include "Database/VantorTabConnection.h"
#include "Foundation/KNChangeNotifier.h"

#include <QElapsedTimer>
#include <QObject>

/// The part of a text to run.
struct QueryRequest
{
    enum class Part {
        Everything,
        Range,   ///< the text in `range`
        BatchAt, ///< the batch in which `range` begins
        Batches, ///< those in `batches`
    };

    QString text; ///< the whole text, to which lines and ranges of errors refer
    Part part = Part::Everything;
    KNRange range = {};
    QList<KNQueryDetails> batches = {}; ///< batches of an earlier run that were not run
    KNOnError onError = KNOnError::Stop;
    qsizetype rowLimit = 0;          ///< maximum number of rows kept for each result; 0 for all
    bool asksForTransaction = false; ///< checks for an open transaction even if the text cannot change it
};

/// The outcome of a run.
struct QueryOutcome
{
    KNError error;
    bool wasCancelled = false;
    bool hadBatches = true;
    QList<KNQueryDetails> notRun;      ///< the batches that were not run because of an error
    QString notice;                    ///< says that a lost connection was replaced; null otherwise
    QString database;                  ///< the session's current database; null if not known
    std::optional<bool> inTransaction; ///< nullopt if it was not checked or there was no answer
};

/// One run of a query: a worker splits the text into batches and executes them on a tab's connection. On the
/// UI thread, which never waits; destroying a run cancels it.
class QueryRun : public QObject
{
    Q_OBJECT

public:
    QueryRun(std::shared_ptr<VantorTabConnection> connection, QueryRequest request, QObject *parent);
    ~QueryRun() override;

    void start();
    /// Stops the run. While the connection is still being opened the run ends at once, and isAbandoned()
    /// becomes true: the connection stays in use until its login has finished, and is closed then.
    void cancel();

    bool isFinished() const { return m_isFinished; }
    /// Whether the run has ended without its connection.
    bool isAbandoned() const { return m_isAbandoned; }
    const QueryOutcome &outcome() const { return m_outcome; }
    /// The results, filled during the run.
    const std::shared_ptr<KNResultSetHolder> &results() const { return m_results; }
    const QueryRequest &request() const { return m_request; }
    /// The time so far, or the total after the end.
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
