#pragma once

#include <memory>
#include <span>
#include <string_view>

namespace SampleServer {

class DatabaseList;
class Server;

/// A script of a database's objects and rows; batches end with GO lines.
struct SampleScript
{
    std::string_view database;
    std::string_view text;
};

/// The scripts of Samples/, in the order in which they run.
std::span<const SampleScript> sampleScripts();

/// Makes the sample databases, and the agent's tables where the server has an agent. Throws std::logic_error
/// when a script fails.
void fillSampleDatabases(const std::shared_ptr<Server> &server);

/// Makes the database `many` with so many empty tables, some of them in the schema `archive`.
void fillManyTables(const std::shared_ptr<Server> &server, const DatabaseList &databases, int count);

} // namespace SampleServer
