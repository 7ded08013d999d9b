#include "Database/KNSyntaxCheck.h"

#include "Database/VantorDatabaseClient.h"
#include "Foundation/KNFormat.h"

#include <algorithm>

namespace {

bool mentions(const KNQueryDetails &batch, const QString &word)
{
    // In comments and strings, too: a batch must not run because quotes were read differently.
    return batch.targetQuery.contains(word, Qt::CaseInsensitive);
}

} // namespace

void KNSyntaxCheck::run(const QList<KNQueryDetails> &batches, VantorDatabaseClient &client,
                        KNResultSetHolder &results, KNError *error)
{
    error->clear();
    if (!m_rules.isSupported()) {
        *error = KNError(QStringLiteral("com.quorvex.vantor.syntax"), 0,
                         QStringLiteral("This kind of server cannot check statements without running them."));
        return;
    }
    results.setRowLimit(1); // there are no rows
    client.executeNonQuery(m_rules.begin, error);
    if (error->isSet())
        return client.disconnect();
    for (const KNQueryDetails &batch : batches) {
        check(batch, client, results, error);
        if (!client.isConnected() || client.wasCancelled())
            break;
    }
    KNError failure;
    if (client.isConnected())
        client.executeNonQuery(m_rules.end, &failure);
    if (failure || m_changesSession)
        client.disconnect();
}

void KNSyntaxCheck::check(const KNQueryDetails &batch, VantorDatabaseClient &client,
                          KNResultSetHolder &results, KNError *error)
{
    if (mentions(batch, m_rules.switchWord)) {
        m_unchecked.append(batch);
        return;
    }
    m_changesSession =
        m_changesSession || std::any_of(m_rules.settings.begin(), m_rules.settings.end(),
                                        [&](const QString &word) { return mentions(batch, word); });
    KNQueryDetails once = batch;
    once.repeatCount = 1;
    KNError failure;
    client.executeQueryDetails({once}, results, {}, &failure);
    ++m_checkedCount;
    m_hadErrors = m_hadErrors || client.hadErrors() || failure;
    if (failure && !error->isSet())
        *error = failure;
}

QString KNSyntaxCheck::summary() const
{
    if (m_hadErrors)
        return QString();
    if (m_unchecked.isEmpty())
        return m_checkedCount == 0 ? QStringLiteral("There is nothing to check.")
                                   : QStringLiteral("The statements are correct.");
    const quint64 line = m_unchecked.constFirst().lineNumberOffset + 1;
    return KNFormat("The batch in line %lld contains %@ and was not checked, because it could have run.",
                    static_cast<qint64>(line), m_rules.switchWord);
}
