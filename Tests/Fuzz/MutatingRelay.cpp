#include "Fuzz/MutatingRelay.h"

#include "Wire/FileDescriptor.h"
#include "Wire/TcpListener.h"

#include <algorithm>
#include <array>
#include <netinet/in.h>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <utility>

using SampleServer::FileDescriptor;
using Bytes = ServerMutation::Bytes;

namespace {

/// How long both sides may be silent, in milliseconds. No question here takes the sample server this long.
constexpr int LongestSilence = 1500;

FileDescriptor connectTo(std::uint16_t port)
{
    FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(socket.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
        return {};
    return socket;
}

bool sendAll(int socket, std::span<const std::uint8_t> bytes)
{
    while (!bytes.empty()) {
        const ssize_t sent = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        bytes = bytes.subspan(static_cast<std::size_t>(sent));
    }
    return true;
}

bool receiveInto(int socket, Bytes &buffer)
{
    std::array<std::uint8_t, 16384> piece;
    const ssize_t count = ::recv(socket, piece.data(), piece.size(), 0);
    if (count > 0)
        buffer.insert(buffer.end(), piece.begin(), piece.begin() + count);
    return count > 0;
}

/// The size of the TDS packet or TLS record at the beginning; nothing as long as its header is incomplete.
std::optional<std::size_t> frameSize(const Bytes &received)
{
    if (received.size() < 5)
        return std::nullopt;
    const bool isRecord = received[0] >= 0x14 && received[0] <= 0x17;
    const std::size_t at = isRecord ? 3 : 2;
    const std::size_t length = static_cast<std::size_t>(received[at] << 8 | received[at + 1]);
    return isRecord ? length + 5 : std::max<std::size_t>(length, 8);
}

/// The server's side of a connection, cut into frames.
class ServerStream
{
public:
    explicit ServerStream(const ServerMutation &mutation)
        : m_mutation(mutation)
    {
    }

    /// Passes on every frame that has arrived whole; false at the end of the conversation.
    bool pass(int server, int client)
    {
        if (!receiveInto(server, m_received))
            return false;
        for (auto size = frameSize(m_received); size && *size <= m_received.size();
             size = frameSize(m_received)) {
            const auto result = m_mutation.apply(std::span(m_received).first(*size), m_passed);
            m_passed += *size;
            m_received.erase(m_received.begin(), m_received.begin() + static_cast<std::ptrdiff_t>(*size));
            if (!sendAll(client, result.bytes) || result.isLast)
                return false;
        }
        return true;
    }
    std::uint64_t passed() const { return m_passed; }

private:
    const ServerMutation &m_mutation;
    Bytes m_received;
    std::uint64_t m_passed = 0;
};

} // namespace

MutatingRelay::MutatingRelay(std::uint16_t serverPort, ServerMutation mutation)
    : m_serverPort(serverPort)
    , m_mutation(std::move(mutation))
    , m_listener(std::make_unique<SampleServer::TcpListener>(
          "127.0.0.1", 0, [this](int client, std::uint64_t) { relay(client); }))
{
}

MutatingRelay::~MutatingRelay() = default;

std::uint16_t MutatingRelay::port() const
{
    return m_listener->port();
}

void MutatingRelay::relay(int client)
{
    const FileDescriptor server = connectTo(m_serverPort);
    std::array<pollfd, 2> pollers{{{client, POLLIN, 0}, {server.get(), POLLIN, 0}}};
    ServerStream stream(m_mutation);
    while (server && ::poll(pollers.data(), pollers.size(), LongestSilence) > 0) {
        if (pollers[1].revents && !stream.pass(server.get(), client))
            break;
        if (!pollers[0].revents)
            continue;
        Bytes request;
        if (!receiveInto(client, request) || !sendAll(server.get(), request))
            break;
    }
    std::uint64_t longest = m_longest;
    while (longest < stream.passed() && !m_longest.compare_exchange_weak(longest, stream.passed())) {
    }
}
