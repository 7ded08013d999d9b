#pragma once

#include "Engine/Catalog/Catalog.h"
#include "Engine/Server.h"
#include "Engine/Storage/LockManager.h"

#include <map>
#include <mutex>
#include <vector>

namespace SampleServer {

/// A session as others see it in sys.dm_exec_sessions.
struct SessionInfo
{
    int id = 0;
    std::string login, host, program;
    int database = 1;
    DateTimeValue loginTime, requestTime; ///< local
    bool isRunning = false;
    std::string text; ///< of the last batch
};

/// What the sessions of a server share. Thread-safe.
struct ServerState
{
    explicit ServerState(Server::Options serverOptions)
        : options(std::move(serverOptions))
    {
    }

    const Server::Options options;
    Edition edition = Edition::Sql2022; ///< what sessions speak; the latest until the samples are there
    DatabaseList databases;
    LockManager locks;

    /// The lowest process id that no session has; 51 is the first for users.
    int takeProcessId();
    void returnProcessId(int id);
    /// Notes what a session does now.
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
