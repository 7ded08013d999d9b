#include "Database/KNScriptRun.h"

#include <utility>

void KNScriptRun::setBeforeBatch(std::function<void(const KNQueryDetails &)> beforeBatch)
{
    m_beforeBatch = std::move(beforeBatch);
}

void KNScriptRun::setIsCancelled(std::function<bool()> isCancelled)
{
    m_isCancelled = std::move(isCancelled);
}

void KNScriptRun::run(const QList<KNQueryDetails> &batches, VantorDatabaseClient &client,
                      KNResultSetHolder &results, KNError *error)
{
    error->clear();
    m_notRun = batches;
    while (!m_notRun.isEmpty()) {
        KNQueryDetails batch = m_notRun.constFirst();
        if (batch.repeatCount > 1)
            --m_notRun.first().repeatCount;
        else
            m_notRun.removeFirst();
        batch.repeatCount = 1;
        if (m_isCancelled && m_isCancelled()) {
            m_notRun.clear();
            return;
        }
        if (m_beforeBatch)
            m_beforeBatch(batch);
        KNError failure;
        client.executeQueryDetails({batch}, results, {}, &failure);
        if (failure && !*error)
            *error = failure;
        if (client.wasCancelled())
            m_notRun.clear();
        else if (endsAfterBatch(client))
            return;
    }
}

bool KNScriptRun::endsAfterBatch(const VantorDatabaseClient &client) const
{
    return client.hadErrors() && (m_onError == KNOnError::Stop || !client.isConnected());
}

qint64 KNScriptRun::countOf(const QList<KNQueryDetails> &batches)
{
    qint64 count = 0;
    for (const KNQueryDetails &batch : batches)
        count += batch.repeatCount;
    return count;
}
