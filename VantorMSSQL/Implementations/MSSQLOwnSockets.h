#pragma once

#include <QtGlobal>

#include <set>

#include <sys/types.h>

/// Tells sockets of this process apart by their inode numbers, which stay the same for the life of a socket
/// whatever descriptors lead to it. Any thread.
namespace MSSQLOwnSockets {

/// Marks a socket as one that db-lib has nothing to do with. Call it before the socket connects.
void add(int descriptor);
/// Call it before the socket is closed.
void remove(int descriptor);

/// All sockets that this process has open.
std::set<ino_t> open();
/// Shuts down, in both directions, the TCP sockets that are connected or connecting to a port of this number,
/// are not in `except` and are not marked.
void shutDown(quint16 remotePort, const std::set<ino_t> &except);

} // namespace MSSQLOwnSockets
