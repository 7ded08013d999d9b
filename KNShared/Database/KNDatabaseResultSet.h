#pragma once

#include "Database/DatabaseMessage.h"
#include "Database/KNQueryDetails.h"
#include "Database/KNRowStore.h"
#include "KNSharedExport.h"

#include <QStringList>

#include <functional>
#include <memory>

/// A function that many result sets share.
using KNChangeObserver = std::shared_ptr<const std::function<void()>>;

/// A text for the user about a result, with its colour.
struct KNDisplayMessage
{
    enum class Colour { Black, Red };

    QString text;
    Colour colour = Colour::Black;

    friend bool operator==(const KNDisplayMessage &, const KNDisplayMessage &) = default;
};

/// One result of a batch: columns, rows, how many rows were affected, and what the server said meanwhile.
/// Filled by one worker while others read it: every operation may be called from any thread. Without columns
/// it takes little memory, since a script can have tens of thousands of such results.
class KNSHARED_EXPORT KNDatabaseResultSet
{
public:
    static constexpr qint64 UnknownCount = -1;

    explicit KNDatabaseResultSet(QString executedQuery = {});
    ~KNDatabaseResultSet();
    KNDatabaseResultSet(const KNDatabaseResultSet &) = delete;
    KNDatabaseResultSet &operator=(const KNDatabaseResultSet &) = delete;

    QString executedQuery() const;

    /// Names may be empty or occur twice. Types are the connector's numbers. Called once, on the writing
    /// thread, before another thread can see this result set.
    void setColumns(const QStringList &names, const QList<int> &types);
    QStringList columnNames() const;
    QList<int> columnTypes() const;

    /// The rows: the worker writes into them, readers read what was published. Without columns there are
    /// none: a closed, empty store that all such result sets share.
    KNRowStore &rows();
    const KNRowStore &rows() const;
    /// Appends rows of columnNames().size() values each and publishes them. On the writing thread.
    void addRows(const QList<KNRow> &rows);

    qint64 numberOfRowsAffected() const;
    void setNumberOfRowsAffected(qint64 count);
    /// Whether there are neither columns nor a count of rows: its summary only says that a statement
    /// succeeded. A script has many of these, so programs show one summary for a run that had nothing else.
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
    /// No more rows will come: wakes who waits for them.
    void setFinished();
    /// Called without any lock after addRows() and setFinished(), on their threads; null for nobody. Set by
    /// the KNResultSetHolder.
    void setChangeObserver(KNChangeObserver observer);

private:
    struct Table; ///< columns and rows

    void notifyObserver() const;

    const QString m_executedQuery;
    std::unique_ptr<Table> m_table; ///< null without columns; set before other threads see this
    // All below are guarded by a lock of a small pool; see the source file.
    qint64 m_numberOfRowsAffected = UnknownCount;
    QList<KNDisplayMessage> m_messages;
    QList<DatabaseMessage> m_serverMessages;
    quint64 m_calculatedLineNumber = 0;
    KNRange m_queryTextRange;
    bool m_finished = false;
    KNChangeObserver m_observer;
};
