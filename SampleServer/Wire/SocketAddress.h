#pragma once

#include "Wire/FileDescriptor.h"

#include <cstdint>
#include <string>

namespace SampleServer {

/// Creates a socket of the type (SOCK_STREAM or SOCK_DGRAM) bound to a numeric IPv4 or IPv6 address; port 0
/// selects a free one. Throws std::system_error if it cannot be bound, std::invalid_argument for an invalid
/// address.
FileDescriptor boundSocket(int type, const std::string &address, std::uint16_t port);
/// The port a socket is bound to.
std::uint16_t boundPort(int socket);

} // namespace SampleServer
