#pragma once

#include "Engine/Catalog/Catalog.h"
#include "Engine/Server.h"
#include "Engine/Storage/LockManager.h"

#include <map>
#include <mutex>
#include <vector>

namespace SampleServer {

/// A session's data in sys.dm_exec_sessions.
struct SessionInfo
{
    int id = 0;
    std::string login, host, program;
    int database = 1;
    DateTimeValue loginTime, requestTime; ///< local
    bool isRunning = false;
    std::string text; ///< of the last batch
};

/// State shared by the sessions of a server. Thread-safe.
struct ServerState
{
    explicit ServerState(Server::Options serverOptions)
        : options(std::move(serverOptions))
    {
    }

    const Server::Options options;
    Edition edition = Edition::Sql2022; ///< of the sessions; the latest until the samples exist
    DatabaseList databases;
    LockManager locks;

    /// Returns the lowest unused process id; user sessions start at 51.
    int takeProcessId();
    void returnProcessId(int id);
    /// Updates a session's information.
    void describeSession(SessionInfo info);
    std::vector<SessionInfo> sessions() const; ///< by id

private:
    mutable std::mutex m_mutex;
    std::map<int, SessionInfo> m_sessions; ///< guarded by m_mutex; by process id
};

struct Server::Private : ServerState
{
    using ServerState::ServerState;
};

} // namespace SampleServer
