#include "Wire/SocketAddress.h"

#include <cerrno>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <system_error>

namespace SampleServer {

FileDescriptor boundSocket(int type, const std::string &address, std::uint16_t port)
{
    addrinfo hints{};
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV | AI_PASSIVE;
    hints.ai_socktype = type;
    addrinfo *list = nullptr;
    if (::getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &list) != 0)
        throw std::invalid_argument("'" + address + "' is no IP address.");
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(list, &::freeaddrinfo);

    FileDescriptor socket(::socket(list->ai_family, type | SOCK_CLOEXEC, list->ai_protocol));
    const int yes = 1;
    if (type == SOCK_STREAM && socket)
        ::setsockopt(socket.get(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    if (!socket || ::bind(socket.get(), list->ai_addr, list->ai_addrlen) != 0)
        throw std::system_error(errno, std::generic_category(), address + " port " + std::to_string(port));
    return socket;
}

std::uint16_t boundPort(int socket)
{
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    ::getsockname(socket, reinterpret_cast<sockaddr *>(&address), &length);
    if (address.ss_family == AF_INET6)
        return ntohs(reinterpret_cast<const sockaddr_in6 &>(address).sin6_port);
    return ntohs(reinterpret_cast<const sockaddr_in &>(address).sin_port);
}

} // namespace SampleServer
