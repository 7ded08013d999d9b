#include "Implementations/MSSQLFloodGuard.h"

#include <QtGlobal>

#include <fcntl.h>
#include <linux/tcp.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace {

/// 0 if it is not a TCP socket.
quint64 bytesReceived(int socket)
{
    tcp_info info = {};
    socklen_t size = sizeof info;
    return getsockopt(socket, IPPROTO_TCP, TCP_INFO, &info, &size) == 0 ? info.tcpi_bytes_received : 0;
}

ino_t inodeOf(int descriptor)
{
    struct stat status = {};
    return fstat(descriptor, &status) == 0 && S_ISSOCK(status.st_mode) ? status.st_ino : 0;
}

} // namespace

MSSQLSocketReference::MSSQLSocketReference(int descriptor)
    : m_descriptor(descriptor)
    , m_inode(inodeOf(descriptor))
{
}

int MSSQLSocketReference::duplicate() const
{
    if (m_inode == 0)
        return -1;
    const int own = fcntl(m_descriptor, F_DUPFD_CLOEXEC, 0);
    if (own >= 0 && inodeOf(own) == m_inode)
        return own;
    if (own >= 0)
        close(own);
    return -1;
}

MSSQLFloodGuard::MSSQLFloodGuard(const MSSQLSocketReference &socket, std::chrono::milliseconds patience)
    : m_socket(socket.duplicate())
    , m_end(m_socket < 0 ? -1 : eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (m_end >= 0)
        m_thread = std::thread([this, patience] { watch(patience); });
}

MSSQLFloodGuard::~MSSQLFloodGuard()
{
    if (m_thread.joinable()) {
        eventfd_write(m_end, 1);
        m_thread.join();
    }
    if (m_end >= 0)
        close(m_end);
    if (m_socket >= 0)
        close(m_socket);
}

void MSSQLFloodGuard::watch(std::chrono::milliseconds patience) const
{
    constexpr std::chrono::milliseconds Pause(250);
    constexpr int FloodedPauses = 12;
    if (isOverAfter(patience))
        return;
    quint64 before = bytesReceived(m_socket);
    for (int flooded = 0; flooded < FloodedPauses;) {
        if (isOverAfter(Pause))
            return;
        const quint64 now = bytesReceived(m_socket);
        flooded = now > before ? flooded + 1 : 0;
        before = now;
    }
    shutdown(m_socket, SHUT_RDWR);
}

/// Waits for the end of the guard; false if the time passed first.
bool MSSQLFloodGuard::isOverAfter(std::chrono::milliseconds time) const
{
    constexpr std::chrono::milliseconds Longest(3'600'000);
    pollfd end = {m_end, POLLIN, 0};
    return poll(&end, 1, static_cast<int>(std::min(time, Longest).count())) != 0;
}
