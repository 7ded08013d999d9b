#pragma once

#include <memory>

namespace SampleServer {

class Server;

/// Fills the database "shop" of a new server with its tables and rows.
void fillSampleDatabase(const std::shared_ptr<Server> &server);

} // namespace SampleServer
