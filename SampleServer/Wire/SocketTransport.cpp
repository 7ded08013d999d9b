#include "Wire/SocketTransport.h"

#include "Types/ResultSink.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <sys/socket.h>

namespace SampleServer {

bool SocketTransport::waitReadable(std::chrono::milliseconds timeout)
{
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds longest{1000 * 60 * 60}; // poll() takes an int
    const bool forever = timeout < std::chrono::milliseconds::zero();
    const auto end = Clock::now() + (forever ? longest : std::min(timeout, 24 * longest));
    pollfd poller{m_socket, POLLIN, 0};
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        const auto wait = forever ? Forever : std::clamp(left, std::chrono::milliseconds::zero(), longest);
        const int ready = ::poll(&poller, 1, static_cast<int>(wait.count()));
        if (ready > 0)
            return true;
        if (ready < 0 && errno != EINTR)
            throw ConnectionLost();
        if (!forever && Clock::now() >= end)
            return false;
    }
}

std::size_t SocketTransport::read(std::span<std::uint8_t> buffer)
{
    for (;;) {
        const ssize_t count = ::recv(m_socket, buffer.data(), buffer.size(), 0);
        if (count > 0)
            return static_cast<std::size_t>(count);
        if (count == 0 || errno != EINTR)
            throw ConnectionLost();
    }
}

void SocketTransport::write(std::span<const std::uint8_t> bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = ::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count >= 0)
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        else if (errno != EINTR)
            throw ConnectionLost();
    }
}

} // namespace SampleServer
