#pragma once

#include "Engine/Catalog.h"
#include "Engine/LockManager.h"
#include "Engine/Server.h"

#include <mutex>
#include <set>

namespace SampleServer {

/// What the sessions of a server share. Thread-safe.
struct ServerState
{
    explicit ServerState(Server::Options serverOptions)
        : options(std::move(serverOptions))
    {
    }

    const Server::Options options;
    DatabaseList databases;
    LockManager locks;

    /// The lowest process id that no session has; 51 is the first for users.
    int takeProcessId();
    void returnProcessId(int id);

private:
    std::mutex m_mutex;
    std::set<int> m_processIds; ///< guarded by m_mutex
};

struct Server::Private : ServerState
{
    using ServerState::ServerState;
};

/// The banner that @@VERSION answers when none was set.
const char *defaultVersionBanner();

} // namespace SampleServer
