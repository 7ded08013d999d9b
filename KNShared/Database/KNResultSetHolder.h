#pragma once

#include "Database/KNDatabaseResultSet.h"
#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <QList>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

using KNDatabaseResultSetPtr = std::shared_ptr<KNDatabaseResultSet>;

/// The results of a run, shared by the worker that appends and fills them and the grid that reads them.
/// Every operation may be called from any thread.
class KNSHARED_EXPORT KNResultSetHolder
{
public:
    KNResultSetHolder() = default;
    KNResultSetHolder(const KNResultSetHolder &) = delete;
    KNResultSetHolder &operator=(const KNResultSetHolder &) = delete;

    /// A reader's position in the list: which result sets it has seen, counting those that were taken out.
    using Position = quint64;

    /// A copy of the list; the result sets themselves are shared. It costs as much as the list is long: what
    /// looks again and again asks for newResultSets().
    QList<KNDatabaseResultSetPtr> resultSets() const;
    /// How many there are, without those that were taken out.
    qsizetype count() const;
    /// The result sets that were appended behind `*position`, which begins as 0 and is moved behind them.
    QList<KNDatabaseResultSetPtr> newResultSets(Position *position) const;
    /// Takes all result sets out, for a reader that prints and forgets them.
    QList<KNDatabaseResultSetPtr> takeResultSets();
    /// Appends a result set whose columns are set. May wait for the reader; see setResultReadAhead().
    void append(const KNDatabaseResultSetPtr &resultSet);
    /// Takes a result set out again; nothing happens when it is not there.
    void remove(const KNDatabaseResultSetPtr &resultSet);

    /// The error of a run whose results are all here, from the messages of statements that failed; not set
    /// when none did. A run may succeed although one of its later statements failed.
    KNError failure() const;

    void incrementTotalResultCountBy(qint64 count);
    void incrementTotalResultCount() { incrementTotalResultCountBy(1); }
    /// Rows read so far over all result sets.
    qint64 totalResultCount() const;

    /// For a reader that forgets rows as it goes: how far the worker may run ahead of it in every later
    /// result set.
    void setReadAhead(qsizetype rows);

    /// For a reader that takes result sets: append() waits while that many have not been taken. 0, the
    /// default, and again when the reader gives up, for no limit.
    void setResultReadAhead(qsizetype resultSets);

    /// How many rows every later result set keeps; 0, the default, for all.
    void setRowLimit(qsizetype rows);

    /// Called on any thread after results were appended or removed, rows were added or a result has finished:
    /// often, so it must be fast, and without any lock. It may still be called shortly after it was replaced.
    /// Empty for nobody.
    void setChangeObserver(std::function<void()> observer);

    /// Waits until there are more than `count` result sets or the time has passed; true when there are.
    bool waitForMoreThan(qsizetype count, std::chrono::milliseconds timeout) const;

private:
    struct Entry
    {
        Position number; ///< ascending from 0; not reused
        KNDatabaseResultSetPtr resultSet;
    };

    void notifyObserver() const;

    mutable std::mutex m_mutex;
    mutable std::condition_variable m_appended;
    std::condition_variable m_hasRoom;
    std::vector<Entry> m_entries; ///< guarded by m_mutex, as all below
    Position m_nextNumber = 0;
    qint64 m_totalResultCount = 0;
    qsizetype m_readAhead = 0;
    qsizetype m_resultReadAhead = 0;
    qsizetype m_rowLimit = 0;
    KNChangeObserver m_observer;
};
