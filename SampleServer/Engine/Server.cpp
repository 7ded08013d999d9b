#include "Engine/Server.h"
#include "Engine/SampleDatabase.h"
#include "Engine/ServerState.h"

namespace SampleServer {

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
        options.versionBanner = versionBannerOf(options.edition);
    d = std::make_unique<Private>(options);
    for (const char *name : {"master", "tempdb", "model", "msdb"})
        if (options.edition != Edition::Azure || std::string_view(name) != "msdb")
            d->databases.create(name);
    // The script's session does not own the server, which is still being constructed.
    if (options.samples)
        fillSampleDatabases(std::shared_ptr<Server>(std::shared_ptr<void>(), this));
    if (options.tables > 0)
        fillManyTables(std::shared_ptr<Server>(std::shared_ptr<void>(), this), d->databases, options.tables);
    d->edition = options.edition;
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
