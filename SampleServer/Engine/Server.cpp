#include "Engine/Server.h"
#include "Engine/SampleDatabase.h"
#include "Engine/ServerState.h"

namespace SampleServer {

const char *defaultVersionBanner()
{
    return "Microsoft SQL Server 2022 (RTM) - 16.0.1000.6 (X64) \n\tVantor sample server, a stand-in for "
           "trying and "
           "testing\n\tDeveloper Edition (64-bit) on Linux";
}

int ServerState::takeProcessId()
{
    const std::lock_guard lock(m_mutex);
    int id = 51;
    while (m_sessions.contains(id))
        ++id;
    m_sessions[id].id = id;
    return id;
}

void ServerState::returnProcessId(int id)
{
    const std::lock_guard lock(m_mutex);
    m_sessions.erase(id);
}

void ServerState::describeSession(SessionInfo info)
{
    const std::lock_guard lock(m_mutex);
    m_sessions[info.id] = std::move(info);
}

std::vector<SessionInfo> ServerState::sessions() const
{
    const std::lock_guard lock(m_mutex);
    std::vector<SessionInfo> all;
    for (const auto &[id, info] : m_sessions)
        all.push_back(info);
    return all;
}

Server::Server(Options options)
{
    if (options.versionBanner.empty())
        options.versionBanner = defaultVersionBanner();
    d = std::make_unique<Private>(std::move(options));
    for (const char *name : {"master", "tempdb", "model", "msdb", "shop"})
        d->databases.create(name);
    // The script's session does not own the server, which is still being made.
    fillSampleDatabase(std::shared_ptr<Server>(std::shared_ptr<void>(), this));
}

Server::~Server() = default;

const Server::Options &Server::options() const
{
    return d->options;
}

bool Server::hasDatabase(std::string_view name) const
{
    return d->databases.find(name) != nullptr;
}

} // namespace SampleServer
