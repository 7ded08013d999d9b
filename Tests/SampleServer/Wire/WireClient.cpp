#include "WireClient.h"

#include <algorithm>
#include <cerrno>
#include <netinet/in.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>

namespace {

constexpr int BoundMilliseconds = 20'000;
constexpr std::size_t HeaderSize = 8;
constexpr std::size_t DoneSize = 13;

} // namespace

WireClient::WireClient(std::uint16_t port)
    : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(m_socket.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
        throw std::runtime_error("cannot connect");
}

void WireClient::send(const Bytes &bytes)
{
    if (::send(m_socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL) !=
        static_cast<ssize_t>(bytes.size()))
        throw std::runtime_error("cannot send");
}

void WireClient::sendMessage(std::uint8_t type, const Bytes &payload, std::uint8_t extraStatus,
                             std::size_t packetSize)
{
    Bytes bytes;
    std::size_t at = 0;
    do {
        const std::size_t part = std::min(payload.size() - at, packetSize - HeaderSize);
        const std::size_t length = part + HeaderSize;
        const bool last = at + part == payload.size();
        for (const std::size_t byte :
             {std::size_t{type}, std::size_t{extraStatus} | (last ? 1u : 0u), length >> 8, length & 0xFF,
              std::size_t{0}, std::size_t{0}, std::size_t{1}, std::size_t{0}})
            bytes.push_back(static_cast<std::uint8_t>(byte));
        bytes.insert(bytes.end(), payload.begin() + static_cast<std::ptrdiff_t>(at),
                     payload.begin() + static_cast<std::ptrdiff_t>(at + part));
        at += part;
    } while (at < payload.size());
    send(bytes);
}

void WireClient::readExactly(std::uint8_t *bytes, std::size_t count)
{
    while (count > 0) {
        pollfd poller{m_socket.get(), POLLIN, 0};
        if (::poll(&poller, 1, BoundMilliseconds) <= 0)
            throw std::runtime_error("the server says nothing");
        const ssize_t got = ::recv(m_socket.get(), bytes, count, 0);
        if (got <= 0)
            throw std::runtime_error("the server has closed");
        bytes += got;
        count -= static_cast<std::size_t>(got);
    }
}

WireClient::Bytes WireClient::readPacket()
{
    Bytes packet(HeaderSize);
    readExactly(packet.data(), HeaderSize);
    packet.resize(static_cast<std::size_t>(packet[2] << 8 | packet[3]));
    readExactly(packet.data() + HeaderSize, packet.size() - HeaderSize);
    return packet;
}

WireClient::Bytes WireClient::readMessage()
{
    Bytes message;
    for (;;) {
        const Bytes packet = readPacket();
        message.insert(message.end(), packet.begin() + HeaderSize, packet.end());
        if (packet[1] & 1)
            return message;
    }
}

bool WireClient::waitForClose(std::chrono::milliseconds bound)
{
    const auto deadline = std::chrono::steady_clock::now() + bound;
    for (;;) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        pollfd poller{m_socket.get(), POLLIN, 0};
        if (left.count() <= 0 || ::poll(&poller, 1, static_cast<int>(left.count())) <= 0)
            return false;
        std::uint8_t ignored[4096];
        const ssize_t got = ::recv(m_socket.get(), ignored, sizeof ignored, 0);
        m_lastError = got < 0 ? errno : 0;
        if (got <= 0)
            return true;
    }
}

void WireClient::close()
{
    m_socket = SampleServer::FileDescriptor();
}

WireClient::Bytes WireClient::login(const LoginBytes::Login &login)
{
    sendMessage(18, LoginBytes::prelogin(2));
    readMessage();
    sendMessage(16, LoginBytes::login7(login));
    return readMessage();
}

void WireClient::sendBatch(const std::u16string &sql)
{
    Bytes payload = {22, 0, 0, 0, 18, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0};
    for (const char16_t unit : sql) {
        payload.push_back(static_cast<std::uint8_t>(unit));
        payload.push_back(static_cast<std::uint8_t>(unit >> 8));
    }
    sendMessage(1, payload);
}

void WireClient::sendAttention()
{
    sendMessage(6, {});
}

WireClient::Bytes WireClient::batch(const std::u16string &sql)
{
    sendBatch(sql);
    return readMessage();
}

std::uint16_t WireClient::finalStatus(const Bytes &message)
{
    if (message.size() < DoneSize || message[message.size() - DoneSize] < 0xFD)
        throw std::runtime_error("the message does not end with DONE");
    const std::size_t at = message.size() - DoneSize + 1;
    return static_cast<std::uint16_t>(message[at] | message[at + 1] << 8);
}

bool WireClient::contains(const Bytes &message, const Bytes &bytes)
{
    return std::search(message.begin(), message.end(), bytes.begin(), bytes.end()) != message.end();
}

WireClient::Bytes WireClient::number(std::int32_t number)
{
    Bytes bytes(4);
    std::memcpy(bytes.data(), &number, 4);
    return bytes;
}
