#include "Database/KNResultSetHolder.h"

#include <algorithm>

QList<KNDatabaseResultSetPtr> KNResultSetHolder::resultSets() const
{
    const std::lock_guard lock(m_mutex);
    QList<KNDatabaseResultSetPtr> resultSets;
    resultSets.reserve(std::ssize(m_entries));
    for (const Entry &entry : m_entries)
        resultSets.append(entry.resultSet);
    return resultSets;
}

QList<KNDatabaseResultSetPtr> KNResultSetHolder::newResultSets(Position *position) const
{
    const std::lock_guard lock(m_mutex);
    auto entry = std::lower_bound(m_entries.begin(), m_entries.end(), *position,
                                  [](const Entry &e, Position p) { return e.number < p; });
    QList<KNDatabaseResultSetPtr> resultSets;
    for (; entry != m_entries.end(); ++entry)
        resultSets.append(entry->resultSet);
    *position = m_nextNumber;
    return resultSets;
}

QList<KNDatabaseResultSetPtr> KNResultSetHolder::takeResultSets()
{
    Position position = 0;
    QList<KNDatabaseResultSetPtr> resultSets = newResultSets(&position);
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_entries, [position](const Entry &entry) { return entry.number < position; });
    m_hasRoom.notify_all();
    return resultSets;
}

void KNResultSetHolder::append(const KNDatabaseResultSetPtr &resultSet)
{
    {
        std::unique_lock lock(m_mutex);
        m_hasRoom.wait(
            lock, [this] { return m_resultReadAhead == 0 || std::ssize(m_entries) < m_resultReadAhead; });
        if (!resultSet->columnNames().isEmpty()) {
            resultSet->rows().setReadAhead(m_readAhead);
            resultSet->rows().setRowLimit(m_rowLimit);
        }
        resultSet->setChangeObserver(m_observer);
        m_entries.push_back({m_nextNumber++, resultSet});
        m_appended.notify_all();
    }
    notifyObserver();
}

void KNResultSetHolder::remove(const KNDatabaseResultSetPtr &resultSet)
{
    {
        const std::lock_guard lock(m_mutex);
        // Search from the end: it is nearly always the last entry.
        const auto found = std::find_if(m_entries.rbegin(), m_entries.rend(),
                                        [&](const Entry &entry) { return entry.resultSet == resultSet; });
        if (found != m_entries.rend())
            m_entries.erase(std::prev(found.base()));
    }
    notifyObserver();
}

qsizetype KNResultSetHolder::count() const
{
    const std::lock_guard lock(m_mutex);
    return std::ssize(m_entries);
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
    {
        const std::lock_guard lock(m_mutex);
        m_totalResultCount += count;
    }
    notifyObserver();
}

void KNResultSetHolder::setChangeObserver(std::function<void()> observer)
{
    const std::lock_guard lock(m_mutex);
    m_observer = observer ? std::make_shared<const std::function<void()>>(std::move(observer)) : nullptr;
}

void KNResultSetHolder::notifyObserver() const
{
    KNChangeObserver observer;
    {
        const std::lock_guard lock(m_mutex);
        observer = m_observer;
    }
    if (observer)
        (*observer)();
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

void KNResultSetHolder::setResultReadAhead(qsizetype resultSets)
{
    const std::lock_guard lock(m_mutex);
    m_resultReadAhead = resultSets;
    m_hasRoom.notify_all();
}

void KNResultSetHolder::setRowLimit(qsizetype rows)
{
    const std::lock_guard lock(m_mutex);
    m_rowLimit = rows;
}

bool KNResultSetHolder::waitForMoreThan(qsizetype count, std::chrono::milliseconds timeout) const
{
    std::unique_lock lock(m_mutex);
    m_appended.wait_for(lock, timeout, [&] { return std::ssize(m_entries) > count; });
    return std::ssize(m_entries) > count;
}
