#pragma once

#include "Database/VantorDatabaseClient.h"

/// The continuation of a script after a batch that had an error.
enum class KNOnError { Stop, Continue };

/// Runs the batches of a script on a client, one by one. Used by one thread.
class KNSHARED_EXPORT KNScriptRun
{
public:
    explicit KNScriptRun(KNOnError onError)
        : m_onError(onError)
    {
    }

    /// Set the functions to call on the running thread: before each batch, and to poll whether to stop.
    void setBeforeBatch(std::function<void(const KNQueryDetails &)> beforeBatch);
    void setIsCancelled(std::function<bool()> isCancelled);

    /// Runs the batches; each repetition counts as a batch. Stops after a batch of which any statement failed
    /// unless the script continues after errors, and always when it was cancelled or the connection is lost.
    /// `error` receives the first error that a batch left.
    void run(const QList<KNQueryDetails> &batches, VantorDatabaseClient &client, KNResultSetHolder &results,
             KNError *error);

    /// The batches that were not run because of an error, with the remaining repetitions; none after a
    /// cancel.
    const QList<KNQueryDetails> &notRun() const { return m_notRun; }

    /// The number of batches including repetitions.
    static qint64 countOf(const QList<KNQueryDetails> &batches);

private:
    bool endsAfterBatch(const VantorDatabaseClient &client) const;

    const KNOnError m_onError;
    std::function<void(const KNQueryDetails &)> m_beforeBatch;
    std::function<bool()> m_isCancelled;
    QList<KNQueryDetails> m_notRun;
};
