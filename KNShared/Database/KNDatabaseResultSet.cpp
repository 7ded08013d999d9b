#include "Database/KNDatabaseResultSet.h"

#include <array>
#include <mutex>

namespace {

/// Returns the lock of a result set. Many result sets share a lock, because a separate mutex would take a
/// third of the memory of a small one. No operation holds two locks.
std::mutex &lockOf(const KNDatabaseResultSet *resultSet)
{
    static std::array<std::mutex, 64> locks;
    return locks[reinterpret_cast<quintptr>(resultSet) / 64 % locks.size()];
}

KNRowStore &noRows()
{
    static KNRowStore rows;
    [[maybe_unused]] static const bool closed = (rows.close(), true);
    return rows;
}

} // namespace

struct KNDatabaseResultSet::Table
{
    KNRowStore rows;
    QStringList columnNames;
    QList<int> columnTypes;
};

KNDatabaseResultSet::KNDatabaseResultSet(QString executedQuery)
    : m_executedQuery(std::move(executedQuery))
{
}

KNDatabaseResultSet::~KNDatabaseResultSet() = default;

QString KNDatabaseResultSet::executedQuery() const
{
    return m_executedQuery;
}

void KNDatabaseResultSet::setColumns(const QStringList &names, const QList<int> &types)
{
    if (names.isEmpty())
        return;
    m_table = std::make_unique<Table>();
    m_table->rows.setColumnCount(names.size());
    m_table->columnNames = names;
    m_table->columnTypes = types;
}

QStringList KNDatabaseResultSet::columnNames() const
{
    return m_table ? m_table->columnNames : QStringList();
}

QList<int> KNDatabaseResultSet::columnTypes() const
{
    return m_table ? m_table->columnTypes : QList<int>();
}

KNRowStore &KNDatabaseResultSet::rows()
{
    return m_table ? m_table->rows : noRows();
}

const KNRowStore &KNDatabaseResultSet::rows() const
{
    return m_table ? m_table->rows : noRows();
}

void KNDatabaseResultSet::addRows(const QList<KNRow> &rows)
{
    if (!m_table)
        return;
    KNRowStore &store = m_table->rows;
    for (const KNRow &row : rows) {
        store.beginRow();
        for (const KNValue &value : row)
            store.appendValue(value);
        store.endRow();
    }
    store.publish();
    notifyObserver();
}

qint64 KNDatabaseResultSet::numberOfRowsAffected() const
{
    const std::lock_guard lock(lockOf(this));
    return m_numberOfRowsAffected;
}

void KNDatabaseResultSet::setNumberOfRowsAffected(qint64 count)
{
    const std::lock_guard lock(lockOf(this));
    m_numberOfRowsAffected = count;
}

bool KNDatabaseResultSet::isSilent() const
{
    const std::lock_guard lock(lockOf(this));
    return !m_table && m_numberOfRowsAffected == UnknownCount && m_messages.size() <= 1;
}

QList<KNDisplayMessage> KNDatabaseResultSet::messages() const
{
    const std::lock_guard lock(lockOf(this));
    return m_messages;
}

void KNDatabaseResultSet::setMessages(const QList<KNDisplayMessage> &messages)
{
    const std::lock_guard lock(lockOf(this));
    m_messages = messages;
}

QList<DatabaseMessage> KNDatabaseResultSet::serverMessages() const
{
    const std::lock_guard lock(lockOf(this));
    return m_serverMessages;
}

void KNDatabaseResultSet::setServerMessages(const QList<DatabaseMessage> &messages)
{
    const std::lock_guard lock(lockOf(this));
    m_serverMessages = messages;
}

void KNDatabaseResultSet::appendServerMessages(const QList<DatabaseMessage> &messages)
{
    const std::lock_guard lock(lockOf(this));
    m_serverMessages += messages;
}

quint64 KNDatabaseResultSet::calculatedLineNumber() const
{
    const std::lock_guard lock(lockOf(this));
    return m_calculatedLineNumber;
}

void KNDatabaseResultSet::setCalculatedLineNumber(quint64 line)
{
    const std::lock_guard lock(lockOf(this));
    m_calculatedLineNumber = line;
}

KNRange KNDatabaseResultSet::queryTextRange() const
{
    const std::lock_guard lock(lockOf(this));
    return m_queryTextRange;
}

void KNDatabaseResultSet::setQueryTextRange(const KNRange &range)
{
    const std::lock_guard lock(lockOf(this));
    m_queryTextRange = range;
}

bool KNDatabaseResultSet::isFinished() const
{
    const std::lock_guard lock(lockOf(this));
    return m_finished;
}

void KNDatabaseResultSet::setFinished()
{
    {
        const std::lock_guard lock(lockOf(this));
        m_finished = true;
    }
    if (m_table)
        m_table->rows.close();
    notifyObserver();
}

void KNDatabaseResultSet::setChangeObserver(KNChangeObserver observer)
{
    const std::lock_guard lock(lockOf(this));
    m_observer = std::move(observer);
}

void KNDatabaseResultSet::notifyObserver() const
{
    KNChangeObserver observer;
    {
        const std::lock_guard lock(lockOf(this));
        observer = m_observer;
    }
    if (observer)
        (*observer)();
}
