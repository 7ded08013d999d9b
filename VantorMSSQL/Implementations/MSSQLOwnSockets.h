#pragma once

#include <QtGlobal>

#include <set>

#include <sys/types.h>

/// Identifies sockets of this process by their inode numbers, which do not change during the life of a
/// socket, even if its descriptor is duplicated. Any thread.
namespace MSSQLOwnSockets {

/// Marks a socket as not db-lib's. Call it before the socket connects.
void add(int descriptor);
/// Call it before the socket is closed.
void remove(int descriptor);

/// The inodes of all open sockets of this process.
std::set<ino_t> open();
/// Shuts down, in both directions, the TCP sockets that are connected or connecting to this remote port, are
/// not in `except` and are not marked.
void shutDown(quint16 remotePort, const std::set<ino_t> &except);

} // namespace MSSQLOwnSockets
