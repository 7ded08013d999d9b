#include "Database/KNDatabaseResultSet.h"

KNDatabaseResultSet::KNDatabaseResultSet(QString executedQuery)
    : m_executedQuery(std::move(executedQuery))
{
}

QString KNDatabaseResultSet::executedQuery() const
{
    return m_executedQuery;
}

void KNDatabaseResultSet::setColumns(const QStringList &names, const QList<int> &types)
{
    m_rows.setColumnCount(names.size());
    const std::lock_guard lock(m_mutex);
    m_columnNames = names;
    m_columnTypes = types;
}

QStringList KNDatabaseResultSet::columnNames() const
{
    const std::lock_guard lock(m_mutex);
    return m_columnNames;
}

QList<int> KNDatabaseResultSet::columnTypes() const
{
    const std::lock_guard lock(m_mutex);
    return m_columnTypes;
}

void KNDatabaseResultSet::addRows(const QList<KNRow> &rows)
{
    for (const KNRow &row : rows) {
        m_rows.beginRow();
        for (const KNValue &value : row)
            m_rows.appendValue(value);
        m_rows.endRow();
    }
    m_rows.publish();
}

qint64 KNDatabaseResultSet::numberOfRowsAffected() const
{
    const std::lock_guard lock(m_mutex);
    return m_numberOfRowsAffected;
}

void KNDatabaseResultSet::setNumberOfRowsAffected(qint64 count)
{
    const std::lock_guard lock(m_mutex);
    m_numberOfRowsAffected = count;
}

bool KNDatabaseResultSet::isSilent() const
{
    const std::lock_guard lock(m_mutex);
    return m_columnNames.isEmpty() && m_numberOfRowsAffected == UnknownCount && m_messages.size() <= 1;
}

QList<KNDisplayMessage> KNDatabaseResultSet::messages() const
{
    const std::lock_guard lock(m_mutex);
    return m_messages;
}

void KNDatabaseResultSet::setMessages(const QList<KNDisplayMessage> &messages)
{
    const std::lock_guard lock(m_mutex);
    m_messages = messages;
}

QList<DatabaseMessage> KNDatabaseResultSet::serverMessages() const
{
    const std::lock_guard lock(m_mutex);
    return m_serverMessages;
}

void KNDatabaseResultSet::setServerMessages(const QList<DatabaseMessage> &messages)
{
    const std::lock_guard lock(m_mutex);
    m_serverMessages = messages;
}

void KNDatabaseResultSet::appendServerMessages(const QList<DatabaseMessage> &messages)
{
    const std::lock_guard lock(m_mutex);
    m_serverMessages += messages;
}

quint64 KNDatabaseResultSet::calculatedLineNumber() const
{
    const std::lock_guard lock(m_mutex);
    return m_calculatedLineNumber;
}

void KNDatabaseResultSet::setCalculatedLineNumber(quint64 line)
{
    const std::lock_guard lock(m_mutex);
    m_calculatedLineNumber = line;
}

KNRange KNDatabaseResultSet::queryTextRange() const
{
    const std::lock_guard lock(m_mutex);
    return m_queryTextRange;
}

void KNDatabaseResultSet::setQueryTextRange(const KNRange &range)
{
    const std::lock_guard lock(m_mutex);
    m_queryTextRange = range;
}

bool KNDatabaseResultSet::isFinished() const
{
    const std::lock_guard lock(m_mutex);
    return m_finished;
}

void KNDatabaseResultSet::setFinished()
{
    {
        const std::lock_guard lock(m_mutex);
        m_finished = true;
    }
    m_rows.close();
}
