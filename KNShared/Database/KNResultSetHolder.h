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

/// The results of a run. The worker appends and fills them while the grid reads them. Every operation may be
/// called from any thread.
class KNSHARED_EXPORT KNResultSetHolder
{
public:
    KNResultSetHolder() = default;
    KNResultSetHolder(const KNResultSetHolder &) = delete;
    KNResultSetHolder &operator=(const KNResultSetHolder &) = delete;

    /// A reader's position in the list: the number of result sets it has seen, including removed ones.
    using Position = quint64;

    /// Returns a copy of the list; the result sets are shared. Costs time proportional to the length; use
    /// newResultSets() for repeated reads.
    QList<KNDatabaseResultSetPtr> resultSets() const;
    /// The number of result sets, without removed ones.
    qsizetype count() const;
    /// Returns the result sets appended after `*position` and moves the position behind them. Start with
    /// position 0.
    QList<KNDatabaseResultSetPtr> newResultSets(Position *position) const;
    /// Removes and returns all result sets, for a reader that prints and discards them.
    QList<KNDatabaseResultSetPtr> takeResultSets();
    /// Appends a result set whose columns are set. May block until the reader catches up; see
    /// setResultReadAhead().
    void append(const KNDatabaseResultSetPtr &resultSet);
    /// Removes a result set; does nothing if it is not in the list.
    void remove(const KNDatabaseResultSetPtr &resultSet);

    /// Returns the error of a finished run, from the messages of failed statements; not set if none failed. A
    /// run may succeed although one of its later statements failed.
    KNError failure() const;

    void incrementTotalResultCountBy(qint64 count);
    void incrementTotalResultCount() { incrementTotalResultCountBy(1); }
    /// The number of rows read so far in all result sets.
    qint64 totalResultCount() const;

    /// For a reader that discards rows: limits how many rows the worker may be ahead of it in every later
    /// result set.
    void setReadAhead(qsizetype rows);

    /// For a reader that takes result sets: append() waits while `resultSets` have not been taken. 0, the
    /// default, sets no limit; a reader that stops taking must set it to 0 again.
    void setResultReadAhead(qsizetype resultSets);

    /// Limits the number of rows kept per later result set; 0, the default, keeps all.
    void setRowLimit(qsizetype rows);

    /// Sets the observer, called on any thread and without a lock when results are appended or removed, rows
    /// are added or a result finishes. It is called often and must be fast. It may still be called shortly
    /// after it was replaced. An empty function for none.
    void setChangeObserver(std::function<void()> observer);

    /// Waits until there are more than `count` result sets or the timeout expires; true if there are.
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
    std::vector<Entry> m_entries; ///< guarded by m_mutex, as all members below
    Position m_nextNumber = 0;
    qint64 m_totalResultCount = 0;
    qsizetype m_readAhead = 0;
    qsizetype m_resultReadAhead = 0;
    qsizetype m_rowLimit = 0;
    KNChangeObserver m_observer;
};
