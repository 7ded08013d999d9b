#pragma once

#include <memory>
#include <span>
#include <string_view>

namespace SampleServer {

class DatabaseList;
class Server;

/// A script that creates a database's objects and rows; GO lines separate batches.
struct SampleScript
{
    std::string_view database;
    std::string_view text;
};

/// The scripts of Samples/ in execution order.
std::span<const SampleScript> sampleScripts();

/// Creates the sample databases, and the agent's tables if the server has an agent. Throws std::logic_error
/// if a script fails.
void fillSampleDatabases(const std::shared_ptr<Server> &server);

/// Creates the database `many` with `count` empty tables, some of them in the schema `archive`.
void fillManyTables(const std::shared_ptr<Server> &server, const DatabaseList &databases, int count);

} // namespace SampleServer
