#pragma once

#include "Engine/Edition.h"

#include <memory>
#include <string>
#include <string_view>

namespace SampleServer {

/// The databases of one sample server, in memory, shared by all its sessions. Thread-safe.
class Server
{
public:
    struct Options
    {
        std::string serverName = "SAMPLE"; ///< the value of @@SERVERNAME
        std::string versionBanner;         ///< the value of @@VERSION; empty means the edition's
        Edition edition = Edition::Sql2022;
        bool samples = true; ///< with the sample databases and the agent's tables
        int tables = 0;      ///< number of empty tables in the additional database `many`
    };

    explicit Server(Options options);
    ~Server();
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    const Options &options() const;
    /// Whether the database exists (names are case-insensitive).
    bool hasDatabase(std::string_view name) const;

private:
    friend class Session;
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace SampleServer
