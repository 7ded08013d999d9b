#pragma once

#include "UI/ResultEditing/KNResultEditSession.h"

#include <QObject>

class IdleConnectionWatch;

/// The session of a query tab between its runs: its database, its transaction, and what the user does with
/// them in the background. On the UI thread.
class QuerySession : public QObject
{
    Q_OBJECT

public:
    explicit QuerySession(const VantorDBC &details);
    /// Closes the session in the background.
    ~QuerySession() override;

    /// For a run, which needs it on another thread.
    const std::shared_ptr<VantorTabConnection> &connection() const { return m_connection; }
    /// A copy of the settings, with the database in which the last run ended.
    VantorDBCPtr connectionDetails() const { return m_connection->connectionDetails(); }
    /// Closes the session in the background; a new one is opened when it is needed.
    void replace(const VantorDBC &details);
    /// Lets the next run use a new session in place of a lost one.
    void acceptLoss();
    /// Enclose each use of the connection. Between uses the session notices that the connection is closed.
    void beginUse();
    void endUse();

    bool hasOpenTransaction() const { return m_hasOpenTransaction; }
    void setHasOpenTransaction(bool hasOpenTransaction);
    /// Whether one of the operations below has not ended yet.
    bool isBusy() const { return m_isBusy; }
    /// Reserves the session for work on its connection until the last copy of the result is gone; null while
    /// it is busy.
    std::shared_ptr<void> lease();
    /// The session for edits of a result that a run left in this database.
    KNResultEditSession editSession(const QString &inDatabase);
    /// Calls `next` after the current operation unless that fails.
    void setNext(std::function<void()> next) { m_next = std::move(next); }

    /// \name Operations; not while busy or during a run
    /// @{
    void changeDatabase(const QString &name);
    /// Commits the open transaction, or rolls it back.
    void endTransaction(bool commits);
    /// Opens a new session.
    void reconnect();
    /// @}

Q_SIGNALS:
    void stateChanged();
    /// An attempt to change the database has ended in this one; null if it is not known.
    void databaseReached(const QString &name);
    /// An operation succeeded; the text says so.
    void succeeded(const QString &text);
    void failed(const KNError &error);
    /// A session with state was lost before `retry` could be done.
    void lost(const KNError &error, const std::function<void()> &retry);
    /// The connection was closed while nothing used it; `losses` are those of VantorTabConnection.
    void lostWhileIdle(const QStringList &losses);

private:
    using Work = VantorDatabaseConnectionPool::Work;
    using Finish = std::function<void(const KNError &error)>;

    void perform(const Work &work, const Finish &finish);
    void release();
    void noteIdleLoss();
    void endOperation(const KNError &error);

    std::shared_ptr<VantorTabConnection> m_connection;
    std::unique_ptr<IdleConnectionWatch> m_watch; ///< null during uses and without a connection
    std::function<void()> m_next;
    bool m_isBusy = false;
    bool m_hasOpenTransaction = false;
};
