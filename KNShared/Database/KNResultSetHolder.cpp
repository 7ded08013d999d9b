#include "Database/KNResultSetHolder.h"

QList<KNDatabaseResultSetPtr> KNResultSetHolder::resultSets() const
{
    const std::lock_guard lock(m_mutex);
    return QList<KNDatabaseResultSetPtr>(m_resultSets.begin(), m_resultSets.end());
}

void KNResultSetHolder::append(const KNDatabaseResultSetPtr &resultSet)
{
    const std::lock_guard lock(m_mutex);
    resultSet->rows().setReadAhead(m_readAhead);
    resultSet->rows().setRowLimit(m_rowLimit);
    m_resultSets.push_back(resultSet);
    m_appended.notify_all();
}

void KNResultSetHolder::remove(const KNDatabaseResultSetPtr &resultSet)
{
    const std::lock_guard lock(m_mutex);
    std::erase(m_resultSets, resultSet);
}

KNError KNResultSetHolder::failure() const
{
    constexpr qsizetype MostTexts = 100;
    QStringList texts;
    const auto all = resultSets();
    for (const KNDatabaseResultSetPtr &resultSet : all) {
        const auto messages = resultSet->serverMessages();
        for (const DatabaseMessage &message : messages) {
            if (message.isFailure() && texts.size() < MostTexts && !texts.contains(message.failureText()))
                texts.append(message.failureText());
        }
    }
    return texts.isEmpty() ? KNError()
                           : KNError(QStringLiteral("SQLClient"), 0, texts.join(QStringLiteral("\r\n")));
}

void KNResultSetHolder::incrementTotalResultCountBy(qint64 count)
{
    const std::lock_guard lock(m_mutex);
    m_totalResultCount += count;
}

qint64 KNResultSetHolder::totalResultCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_totalResultCount;
}

void KNResultSetHolder::setReadAhead(qsizetype rows)
{
    const std::lock_guard lock(m_mutex);
    m_readAhead = rows;
}

void KNResultSetHolder::setRowLimit(qsizetype rows)
{
    const std::lock_guard lock(m_mutex);
    m_rowLimit = rows;
}

bool KNResultSetHolder::waitForMoreThan(qsizetype count, std::chrono::milliseconds timeout) const
{
    std::unique_lock lock(m_mutex);
    m_appended.wait_for(lock, timeout, [&] { return std::ssize(m_resultSets) > count; });
    return std::ssize(m_resultSets) > count;
}
