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
