#include "Wire/BrowserResponder.h"

#include "Types/Text.h"
#include "Wire/SocketAddress.h"

#include <algorithm>
#include <array>
#include <poll.h>
#include <sys/socket.h>
#include <system_error>

namespace SampleServer {

namespace {

constexpr std::uint8_t BroadcastRequest = 2, UnicastRequest = 3, InstanceRequest = 4, Response = 5;
constexpr const char *LoopbackBroadcast = "127.255.255.255";

/// Whether the request contains the instance's name, up to the first zero byte.
bool namesInstance(std::span<const std::uint8_t> request, const std::string &name)
{
    const auto end = std::find(request.begin(), request.end(), std::uint8_t{0});
    return toUpper(std::string(request.begin(), end)) == toUpper(name);
}

std::string versionText(const ProgramVersion &version)
{
    return std::to_string(version.major) + '.' + std::to_string(version.minor) + '.' +
           std::to_string(version.build) + '.' + std::to_string(version.revision);
}

} // namespace

std::optional<Bytes> browserResponse(std::span<const std::uint8_t> request, const BrowserInstance &instance)
{
    if (request.empty())
        return std::nullopt;
    const bool everything = request[0] == BroadcastRequest || request[0] == UnicastRequest;
    const bool byName =
        request[0] == InstanceRequest && namesInstance(request.subspan(1), instance.instanceName);
    if (!everything && !byName)
        return std::nullopt;
    const std::string text = "ServerName;" + instance.hostName + ";InstanceName;" + instance.instanceName +
                             ";IsClustered;No;Version;" + versionText(instance.version) + ";tcp;" +
                             std::to_string(instance.tcpPort) + ";;";
    Bytes response{Response, static_cast<std::uint8_t>(text.size()),
                   static_cast<std::uint8_t>(text.size() >> 8)};
    response.insert(response.end(), text.begin(), text.end());
    return response;
}

BrowserResponder::BrowserResponder(const std::string &address, std::uint16_t port, BrowserInstance instance)
    : m_instance(std::move(instance))
{
    m_sockets.push_back(boundSocket(SOCK_DGRAM, address, port));
    m_port = boundPort(m_sockets[0].get());
    if (address.starts_with("127."))
        m_sockets.push_back(boundSocket(SOCK_DGRAM, LoopbackBroadcast, m_port));
    m_thread = std::thread([this] { serve(); });
}

BrowserResponder::~BrowserResponder()
{
    m_stopping = true;
    m_stop.signal();
    m_thread.join();
}

void BrowserResponder::serve()
{
    std::vector<pollfd> pollers{{m_stop.descriptor(), POLLIN, 0}};
    for (const FileDescriptor &socket : m_sockets)
        pollers.push_back({socket.get(), POLLIN, 0});
    while (!m_stopping) {
        if (::poll(pollers.data(), pollers.size(), -1) < 0)
            continue;
        for (std::size_t index = 1; index < pollers.size(); ++index) {
            if (pollers[index].revents)
                answerFrom(pollers[index].fd);
        }
    }
}

void BrowserResponder::answerFrom(int socket)
{
    std::array<std::uint8_t, 512> request;
    sockaddr_storage sender{};
    auto *address = reinterpret_cast<sockaddr *>(&sender);
    socklen_t length = sizeof sender;
    const ssize_t size = ::recvfrom(socket, request.data(), request.size(), MSG_DONTWAIT, address, &length);
    if (size < 0)
        return;
    if (const auto response =
            browserResponse(std::span(request).first(static_cast<std::size_t>(size)), m_instance))
        ::sendto(m_sockets[0].get(), response->data(), response->size(), MSG_DONTWAIT, address, length);
}

} // namespace SampleServer
