#include "Implementations/MSSQLOwnSockets.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <optional>
#include <string>

namespace MSSQLOwnSockets {

namespace {

struct Marked
{
    std::mutex mutex;
    std::set<ino_t> sockets; ///< guarded by mutex
};

Marked &marked()
{
    static auto *const instance = new Marked; // never destroyed: logins may run while the program ends
    return *instance;
}

/// The inode of a socket; nullopt for other files. Read by name, "socket:[123]" (proc(5)), because another
/// thread owns the descriptor and may close it.
std::optional<ino_t> socketInode(int descriptor)
{
    char name[64] = {};
    unsigned long inode = 0;
    const std::string path = "/proc/self/fd/" + std::to_string(descriptor);
    if (readlink(path.c_str(), name, sizeof name - 1) < 0 || std::sscanf(name, "socket:[%lu]", &inode) != 1)
        return std::nullopt;
    return inode;
}

void forEachDescriptor(const std::function<void(int descriptor)> &work)
{
    DIR *const folder = opendir("/proc/self/fd");
    if (!folder)
        return;
    while (const dirent *const entry = readdir(folder)) {
        if (entry->d_name[0] != '.')
            work(std::atoi(entry->d_name));
    }
    closedir(folder);
}

/// Adds the sockets of a kernel table that are connected to a port. Each line holds the local address, the
/// remote one, the state, queues, timer, retransmissions, user, time-out and inode (proc(5)).
void addSocketsTo(quint16 remotePort, const char *table, std::set<ino_t> *sockets)
{
    FILE *const file = std::fopen(table, "re");
    if (!file)
        return;
    char line[512];
    while (std::fgets(line, sizeof line, file)) {
        unsigned port = 0;
        unsigned long inode = 0;
        if (std::sscanf(line, " %*d: %*[0-9A-Fa-f]:%*x %*[0-9A-Fa-f]:%x %*x %*s %*s %*x %*u %*u %lu", &port,
                        &inode) == 2 &&
            port == remotePort && inode != 0)
            sockets->insert(inode);
    }
    std::fclose(file);
}

} // namespace

void add(int descriptor)
{
    const std::lock_guard lock(marked().mutex);
    if (const auto inode = socketInode(descriptor))
        marked().sockets.insert(*inode);
}

void remove(int descriptor)
{
    const std::lock_guard lock(marked().mutex);
    if (const auto inode = socketInode(descriptor))
        marked().sockets.erase(*inode);
}

std::set<ino_t> open()
{
    std::set<ino_t> sockets;
    forEachDescriptor([&](int descriptor) {
        if (const auto inode = socketInode(descriptor))
            sockets.insert(*inode);
    });
    return sockets;
}

void shutDown(quint16 remotePort, const std::set<ino_t> &except)
{
    std::set<ino_t> targets;
    addSocketsTo(remotePort, "/proc/self/net/tcp", &targets);
    addSocketsTo(remotePort, "/proc/self/net/tcp6", &targets);
    const auto isTarget = [&](int descriptor) {
        const auto inode = socketInode(descriptor);
        if (!inode || !targets.contains(*inode) || except.contains(*inode))
            return false;
        const std::lock_guard lock(marked().mutex);
        return !marked().sockets.contains(*inode);
    };
    forEachDescriptor([&](int descriptor) {
        if (!isTarget(descriptor))
            return;
        // The descriptor may have been reused; a duplicate keeps the checked socket open.
        const int own = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
        if (own < 0)
            return;
        if (isTarget(own))
            ::shutdown(own, SHUT_RDWR);
        close(own);
    });
}

} // namespace MSSQLOwnSockets
