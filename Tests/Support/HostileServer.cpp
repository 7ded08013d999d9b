#include "Support/HostileServer.h"

#include "Support/HostileServerBytes.h"
#include "Wire/TcpListener.h"

#include <algorithm>
#include <chrono>
#include <poll.h>
#include <sys/socket.h>

namespace {

constexpr int ReadBoundMilliseconds = 30'000; ///< a client that says nothing for that long fails its script
constexpr int StallPollMilliseconds = 5;
constexpr std::size_t HeaderSize = 8;

/// The client has closed its end: the script stops here.
struct ClientGone
{
};

} // namespace

bool HostileServer::Peer::waitReadable(int milliseconds) const
{
    pollfd poller{m_socket, POLLIN, 0};
    return ::poll(&poller, 1, milliseconds) > 0;
}

void HostileServer::Peer::readExactly(std::uint8_t *bytes, std::size_t count)
{
    while (count > 0) {
        if (!waitReadable(ReadBoundMilliseconds)) {
            fail("The client said nothing where a message was expected.");
            throw ClientGone();
        }
        const ssize_t got = ::recv(m_socket, bytes, count, 0);
        if (got <= 0)
            throw ClientGone();
        bytes += got;
        count -= static_cast<std::size_t>(got);
    }
}

HostileServer::Peer::Message HostileServer::Peer::readMessage()
{
    Message message;
    for (bool last = false; !last;) {
        std::uint8_t header[HeaderSize];
        readExactly(header, sizeof header);
        const auto length = static_cast<std::size_t>(header[2] << 8 | header[3]);
        if (length < HeaderSize) {
            fail("The client sent a packet shorter than its header.");
            throw ClientGone();
        }
        const std::size_t start = message.payload.size();
        message.type = header[0];
        message.payload.resize(start + length - HeaderSize);
        readExactly(message.payload.data() + start, length - HeaderSize);
        last = header[1] & 1;
    }
    return message;
}

void HostileServer::Peer::send(std::span<const std::uint8_t> bytes)
{
    while (!bytes.empty()) {
        const ssize_t sent = ::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0)
            throw ClientGone();
        bytes = bytes.subspan(static_cast<std::size_t>(sent));
    }
}

void HostileServer::Peer::reset()
{
    // Dissolving the association is what sends an RST at once, while the listener still owns the descriptor.
    sockaddr nobody{};
    nobody.sa_family = AF_UNSPEC;
    static_cast<void>(::connect(m_socket, &nobody, sizeof nobody));
}

void HostileServer::Peer::stall()
{
    while (!m_server.m_released) {
        if (!waitReadable(StallPollMilliseconds))
            continue;
        std::uint8_t ignored[1024];
        if (::recv(m_socket, ignored, sizeof ignored, 0) <= 0)
            throw ClientGone();
    }
}

void HostileServer::Peer::fail(const std::string &what)
{
    const std::lock_guard lock(m_server.m_mutex);
    m_server.m_failures.push_back(what);
}

HostileServer::HostileServer(Script script)
    : HostileServer([script = std::move(script)](std::uint64_t) { return script; })
{
}

HostileServer::HostileServer(std::function<Script(std::uint64_t)> scripts)
    : m_scripts(std::move(scripts))
    , m_listener(std::make_unique<SampleServer::TcpListener>(
          "127.0.0.1", 0, [this](int socket, std::uint64_t number) { serve(socket, number); }))
{
}

HostileServer::~HostileServer()
{
    release();
}

std::uint16_t HostileServer::port() const
{
    return m_listener->port();
}

std::vector<std::string> HostileServer::failures() const
{
    const std::lock_guard lock(m_mutex);
    return m_failures;
}

void HostileServer::release()
{
    m_released = true;
}

void HostileServer::serve(int socket, std::uint64_t number)
{
    ++m_connections;
    Peer peer(*this, socket);
    try {
        for (const Step &step : m_scripts(number))
            step(peer);
    } catch (const ClientGone &) {
    }
}

HostileServer::Step HostileServer::expect(std::uint8_t packetType)
{
    return [packetType](Peer &peer) {
        const auto message = peer.readMessage();
        if (message.type != packetType)
            peer.fail("Expected a packet of type " + std::to_string(packetType) + " and got " +
                      std::to_string(message.type) + '.');
    };
}

HostileServer::Step HostileServer::send(Bytes bytes)
{
    return [bytes = std::move(bytes)](Peer &peer) { peer.send(bytes); };
}

HostileServer::Step HostileServer::sendFirst(std::size_t count, Bytes bytes)
{
    bytes.resize(std::min(count, bytes.size()));
    return send(std::move(bytes));
}

HostileServer::Step HostileServer::sendByteByByte(Bytes bytes)
{
    return [bytes = std::move(bytes)](Peer &peer) {
        for (const std::uint8_t &byte : bytes)
            peer.send({&byte, 1});
    };
}

HostileServer::Step HostileServer::reset()
{
    return [](Peer &peer) { peer.reset(); };
}

HostileServer::Step HostileServer::stall()
{
    return [](Peer &peer) { peer.stall(); };
}

HostileServer::Script HostileServer::acceptedLogin()
{
    using namespace HostileServerBytes;
    return {expect(PreloginPacket), send(packet(preloginAnswer())), expect(LoginPacket),
            send(packet(loginAnswer()))};
}

HostileServer::Script HostileServer::joined(Script first, const Script &second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}
