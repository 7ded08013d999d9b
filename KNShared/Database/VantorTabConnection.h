#pragma once

#include "Database/VantorDatabaseConnectionPool.h"

/// The connection of one user's query tab: its client stays with it from run to run, with its temporary
/// tables, transaction and settings. A lost one is replaced at the next run, in the database that the user
/// had gone to. One thread runs; cancelling and asking may happen on any.
class KNSHARED_EXPORT VantorTabConnection
{
public:
    VantorTabConnection(VantorDatabaseConnectionPool &pool, const VantorDBC &details);
    /// Closes the connection.
    ~VantorTabConnection();
    VantorTabConnection(const VantorTabConnection &) = delete;
    VantorTabConnection &operator=(const VantorTabConnection &) = delete;

    /// Runs the work with the tab's client; true when it left no error. Connects first where need be.
    bool executeQuery(const VantorDatabaseConnectionPool::Work &work, KNError *error);
    /// Stops what runs; harmless when nothing does.
    bool cancelCurrentQuery(KNError *error);
    bool isConnected() const;
    /// A copy of the settings, with the database that the last run ended in.
    VantorDBCPtr connectionDetails() const;

private:
    std::shared_ptr<VantorDatabaseClient> client() const;

    VantorDatabaseConnectionPool &m_pool;
    mutable std::mutex m_mutex;
    VantorDBCPtr m_details;                         ///< guarded by m_mutex
    std::shared_ptr<VantorDatabaseClient> m_client; ///< guarded by m_mutex
};
