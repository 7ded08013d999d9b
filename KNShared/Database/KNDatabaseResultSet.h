#pragma once

#include "Database/DatabaseMessage.h"
#include "Database/KNQueryDetails.h"
#include "Database/KNRowStore.h"
#include "KNSharedExport.h"

#include <QStringList>

#include <functional>
#include <memory>

/// An observer function that many result sets share.
using KNChangeObserver = std::shared_ptr<const std::function<void()>>;

/// A message for the user about a result, with its colour.
struct KNDisplayMessage
{
    enum class Colour { Black, Red };

    QString text;
    Colour colour = Colour::Black;

    friend bool operator==(const KNDisplayMessage &, const KNDisplayMessage &) = default;
};

/// One result of a batch: columns, rows, number of affected rows and server messages. One worker fills it
/// while other threads read; every operation may be called from any thread. A result without columns takes
/// little memory, since a script can produce tens of thousands of them.
class KNSHARED_EXPORT KNDatabaseResultSet
{
public:
    static constexpr qint64 UnknownCount = -1;

    explicit KNDatabaseResultSet(QString executedQuery = {});
    ~KNDatabaseResultSet();
    KNDatabaseResultSet(const KNDatabaseResultSet &) = delete;
    KNDatabaseResultSet &operator=(const KNDatabaseResultSet &) = delete;

    QString executedQuery() const;

    /// Sets the columns. Names may be empty or occur twice; types are the connector's numbers. Called once,
    /// on the writing thread, before another thread can see this result set.
    void setColumns(const QStringList &names, const QList<int> &types);
    QStringList columnNames() const;
    QList<int> columnTypes() const;

    /// The rows: the worker writes them, readers read the published ones. Without columns this is a closed,
    /// empty store shared by all such result sets.
    KNRowStore &rows();
    const KNRowStore &rows() const;
    /// Appends rows of columnNames().size() values each and publishes them. Called on the writing thread.
    void addRows(const QList<KNRow> &rows);

    qint64 numberOfRowsAffected() const;
    void setNumberOfRowsAffected(qint64 count);
    /// Whether there are neither columns nor a row count, so that the summary only reports success. Programs
    /// show one summary for a run of only such results.
    bool isSilent() const;
    QList<KNDisplayMessage> messages() const;
    void setMessages(const QList<KNDisplayMessage> &messages);
    QList<DatabaseMessage> serverMessages() const;
    void setServerMessages(const QList<DatabaseMessage> &messages);
    void appendServerMessages(const QList<DatabaseMessage> &messages);
    quint64 calculatedLineNumber() const;
    void setCalculatedLineNumber(quint64 line);
    KNRange queryTextRange() const;
    void setQueryTextRange(const KNRange &range);
    bool isFinished() const;
    /// Marks the result as complete and wakes threads that wait for more rows.
    void setFinished();
    /// Sets the observer, which addRows() and setFinished() call on their threads without holding a lock;
    /// null for none. Set by KNResultSetHolder.
    void setChangeObserver(KNChangeObserver observer);

private:
    struct Table; ///< columns and rows

    void notifyObserver() const;

    const QString m_executedQuery;
    std::unique_ptr<Table> m_table; ///< null without columns; set before other threads can access this
    // The members below are guarded by a lock from a small pool; see the source file.
    qint64 m_numberOfRowsAffected = UnknownCount;
    QList<KNDisplayMessage> m_messages;
    QList<DatabaseMessage> m_serverMessages;
    quint64 m_calculatedLineNumber = 0;
    KNRange m_queryTextRange;
    bool m_finished = false;
    KNChangeObserver m_observer;
};
