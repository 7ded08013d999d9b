#pragma once

#include "Database/VantorDatabaseConnectionPool.h"

/// The connection of one user's query tab: its client stays with it from run to run, with its temporary
/// tables, transaction and settings. A lost one is replaced at the next run, in the database that the user
/// had gone to; if the lost session held something, only after beginNewSession(). One thread runs; everything
/// else may happen on any.
class KNSHARED_EXPORT VantorTabConnection
{
public:
    VantorTabConnection(VantorDatabaseConnectionPool &pool, const VantorDBC &details);
    /// Closes the connection.
    ~VantorTabConnection();
    VantorTabConnection(const VantorTabConnection &) = delete;
    VantorTabConnection &operator=(const VantorTabConnection &) = delete;

    /// Runs the work with the tab's client; true when it left no error. Connects first where need be. When
    /// the session was lost with what it held, nothing runs and isSessionLost(error) is true.
    bool executeQuery(const VantorDatabaseConnectionPool::Work &work, KNError *error);
    /// Stops what runs or connects; harmless when nothing does.
    bool cancelCurrentQuery(KNError *error);

    /// Adds to what the session holds.
    void addSessionState(const VantorSessionState &state);
    /// Whether the session has a transaction open, now that its server was asked.
    void setHasTransaction(bool hasTransaction);
    /// Whether something would be lost with the session, or was.
    bool hasSessionState() const;
    /// Whether a run has failed because the session was lost with what it held.
    static bool isSessionLost(const KNError &error);
    /// The user knows that the session was lost: the next run connects anew.
    void beginNewSession();
    bool isConnected() const;
    /// A copy of the settings, with the database that the last run ended in.
    VantorDBCPtr connectionDetails() const;

private:
    std::shared_ptr<VantorDatabaseClient> client() const;
    std::shared_ptr<VantorDatabaseClient> connectedClient(KNError *error);
    QStringList losses() const;

    VantorDatabaseConnectionPool &m_pool;
    mutable std::mutex m_mutex;
    VantorDBCPtr m_details;                         ///< guarded by m_mutex
    std::shared_ptr<VantorDatabaseClient> m_client; ///< guarded by m_mutex
    VantorSessionState m_state;                     ///< guarded by m_mutex
    QString m_firstDatabase;                        ///< where the session began; guarded by m_mutex
    QString m_lastDatabase;                         ///< where its last run ended; guarded by m_mutex
    std::mutex m_connectingMutex;                   ///< never taken by a UI thread
    VantorDatabaseClient *m_connecting = nullptr;   ///< guarded by m_connectingMutex
};
