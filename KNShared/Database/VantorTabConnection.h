#pragma once

#include "Database/VantorDatabaseConnectionPool.h"

/// The connection of one user query tab. Its client is kept between runs, with its temporary tables,
/// transaction and settings. The next run replaces a lost connection and restores the user's database and SET
/// options; if the lost session held more than that, only after beginNewSession(). One thread runs queries;
/// all other operations may be called from any thread.
class KNSHARED_EXPORT VantorTabConnection
{
public:
    VantorTabConnection(VantorDatabaseConnectionPool &pool, const VantorDBC &details);
    /// Closes the connection.
    ~VantorTabConnection();
    VantorTabConnection(const VantorTabConnection &) = delete;
    VantorTabConnection &operator=(const VantorTabConnection &) = delete;

    /// Runs the work with the tab's client; true if it left no error. Connects first if necessary. If a
    /// session with state was lost, the work is not run and isSessionLost(error) is true.
    bool executeQuery(const VantorDatabaseConnectionPool::Work &work, KNError *error);
    /// Cancels a running query or connection attempt; does nothing if there is none.
    bool cancelCurrentQuery(KNError *error);

    /// Adds to the recorded session state.
    void addSessionState(const VantorSessionState &state);
    /// Whether the session may begin transactions with statements that do not mention them.
    bool beginsTransactions() const;
    /// Records whether the session has an open transaction, after the server was asked.
    void setHasTransaction(bool hasTransaction);
    /// Whether losing the session loses state, or already has.
    bool hasSessionState() const;
    /// Whether a run failed because a session with state was lost.
    static bool isSessionLost(const KNError &error);
    /// Allows the next run to reconnect after the user has learned of the lost session.
    void beginNewSession();
    /// Says once that the last run has replaced a lost connection; null otherwise.
    QString takeNotice();
    bool isConnected() const;
    /// The state that is lost with the session, in clauses for the user; empty if the next run restores all.
    QStringList losses() const;
    /// See VantorDatabaseClient; -1 before the first run.
    int openIdleDescriptor() const;
    /// Returns a copy of the settings with the database in which the last run ended.
    VantorDBCPtr connectionDetails() const;

private:
    std::shared_ptr<VantorDatabaseClient> client() const;
    std::shared_ptr<VantorDatabaseClient> connectedClient(KNError *error);
    void noteOptions(VantorDatabaseClient &client);
    void restoreOptions(VantorDatabaseClient &client, KNError *error);

    VantorDatabaseConnectionPool &m_pool;
    mutable std::mutex m_mutex;
    VantorDBCPtr m_details;                         ///< guarded by m_mutex
    std::shared_ptr<VantorDatabaseClient> m_client; ///< guarded by m_mutex
    VantorSessionState m_state;                     ///< guarded by m_mutex
    bool m_mayHaveChangedOptions = false;           ///< since m_optionsBatch was read; guarded by m_mutex
    QString m_optionsBatch;       ///< restores the options that the user has set; guarded by m_mutex
    QString m_notice;             ///< guarded by m_mutex
    std::mutex m_connectingMutex; ///< never locked by a UI thread
    VantorDatabaseClient *m_connecting = nullptr; ///< guarded by m_connectingMutex
};
