#include "Support/HostileServerRelay.h"

#include "Wire/FileDescriptor.h"
#include "Wire/TcpListener.h"

#include <algorithm>
#include <array>
#include <netinet/in.h>
#include <optional>
#include <utility>

#include <poll.h>
#include <span>
#include <sys/socket.h>

using SampleServer::FileDescriptor;

namespace {

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

/// What is there to read, at most as much as fits; empty at the end.
std::span<std::uint8_t> receive(int socket, std::span<std::uint8_t> buffer)
{
    const ssize_t got = ::recv(socket, buffer.data(), buffer.size(), 0);
    return buffer.first(got > 0 ? static_cast<std::size_t>(got) : 0);
}

void waitForClose(int client)
{
    std::array<std::uint8_t, 4096> ignored;
    while (!receive(client, ignored).empty()) {
    }
}

constexpr std::size_t HeaderSize = 8; // of a packet: type, status, two bytes of length, ...

/// Whether these packets end with the last one of a message.
bool isWhole(std::span<const std::uint8_t> bytes)
{
    bool isLast = false;
    while (!bytes.empty()) {
        const std::size_t length = bytes.size() < HeaderSize ? 0 : std::size_t{bytes[2]} << 8 | bytes[3];
        if (length < HeaderSize || bytes.size() < length)
            return false;
        isLast = bytes[1] & 1;
        bytes = bytes.subspan(length);
    }
    return isLast;
}

std::string bytesOf(std::u16string_view units)
{
    return std::string(reinterpret_cast<const char *>(units.data()), units.size() * sizeof(char16_t));
}

void sendReset(int socket)
{
    sockaddr nobody{};
    nobody.sa_family = AF_UNSPEC;
    static_cast<void>(::connect(socket, &nobody, sizeof nobody));
}

} // namespace

HostileServerRelay::HostileServerRelay(std::uint16_t serverPort, Fault fault, std::uint64_t afterBytes)
    : m_serverPort(serverPort)
    , m_fault(fault)
    , m_afterBytes(afterBytes)
    , m_listener(std::make_unique<SampleServer::TcpListener>(
          "127.0.0.1", 0, [this](int client, std::uint64_t) { relay(client); }))
{
}

HostileServerRelay::~HostileServerRelay() = default;

void HostileServerRelay::replaceInBatches(std::u16string_view text, std::u16string_view replacement)
{
    changeClient([from = bytesOf(text), to = bytesOf(replacement)](std::span<std::uint8_t> bytes) {
        const std::string_view said(reinterpret_cast<const char *>(bytes.data()), bytes.size());
        for (std::size_t at = said.find(from); at != std::string_view::npos; at = said.find(from, at + 1))
            std::copy(to.begin(), to.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
    });
}

void HostileServerRelay::interceptBatches(std::u16string_view text, std::vector<std::uint8_t> answer)
{
    const std::lock_guard lock(m_mutex);
    m_intercepted = bytesOf(text);
    m_interceptingAnswer = std::move(answer);
}

void HostileServerRelay::cut()
{
    const std::lock_guard lock(m_mutex);
    for (const int client : m_clients)
        ::shutdown(client, SHUT_RDWR);
}

std::uint16_t HostileServerRelay::port() const
{
    return m_listener->port();
}

std::string HostileServerRelay::saidByClient() const
{
    const std::lock_guard lock(m_mutex);
    return m_saidByClient;
}

std::string HostileServerRelay::saidByServer() const
{
    const std::lock_guard lock(m_mutex);
    return m_saidByServer;
}

void HostileServerRelay::record(std::string &said, std::span<const std::uint8_t> bytes)
{
    const std::lock_guard lock(m_mutex);
    said.append(bytes.begin(), bytes.end());
}

void HostileServerRelay::relay(int client)
{
    {
        const std::lock_guard lock(m_mutex);
        m_clients.insert(client);
    }
    if (const FileDescriptor server = connectTo(m_serverPort))
        pass(server.get(), client);
    const std::lock_guard lock(m_mutex);
    m_clients.erase(client);
}

void HostileServerRelay::pass(int server, int client)
{
    std::array<pollfd, 2> pollers{{{client, POLLIN, 0}, {server, POLLIN, 0}}};
    std::vector<std::uint8_t> message;
    std::uint64_t passed = 0;
    bool isAsking = false;
    while (::poll(pollers.data(), pollers.size(), -1) >= 0) {
        if (pollers[1].revents) {
            if (std::exchange(isAsking, false))
                ++m_roundTrips;
            if (!passToClient(server, client, passed))
                return;
        }
        if (pollers[0].revents) {
            isAsking = true;
            if (!passToServer(server, client, message))
                return;
        }
    }
}

/// Passes what the client has said, whole messages while batches are intercepted; false when the conversation
/// is over. `message` holds the part of a message that has not been passed.
bool HostileServerRelay::passToServer(int server, int client, std::vector<std::uint8_t> &message)
{
    std::array<std::uint8_t, 16384> buffer;
    const auto request = receive(client, buffer);
    record(m_saidByClient, request);
    if (m_change)
        m_change(request);
    if (request.empty())
        return false;
    message.insert(message.end(), request.begin(), request.end());
    std::optional<std::vector<std::uint8_t>> answer;
    {
        const std::lock_guard lock(m_mutex);
        if (!m_intercepted.empty() && !isWhole(message))
            return true;
        const std::string_view said(reinterpret_cast<const char *>(message.data()), message.size());
        if (!m_intercepted.empty() && said.find(m_intercepted) != std::string_view::npos)
            answer = m_interceptingAnswer;
    }
    const std::vector<std::uint8_t> whole = std::exchange(message, {});
    if (!answer)
        return sendAll(server, whole);
    ++m_interceptedBatches;
    return !answer->empty() && sendAll(client, *answer);
}

/// Passes what the server has said; false when the conversation is over.
bool HostileServerRelay::passToClient(int server, int client, std::uint64_t &passed)
{
    std::array<std::uint8_t, 16384> buffer;
    const auto answer = receive(server, buffer);
    if (answer.empty())
        return false;
    const std::uint64_t place = m_afterBytes;
    const bool strikes = m_fault != Fault::None && place < passed + answer.size() && passed <= place;
    const std::size_t good = strikes ? static_cast<std::size_t>(place - passed) : answer.size();
    record(m_saidByServer, answer);
    passed += answer.size();
    m_bytesFromServer += answer.size();
    if (strikes && m_fault == Fault::Corrupt) {
        answer[good] = static_cast<std::uint8_t>(~answer[good]);
        return sendAll(client, answer);
    }
    if (!sendAll(client, answer.first(good)))
        return false;
    if (strikes && m_fault == Fault::Reset)
        sendReset(client);
    else if (strikes && m_fault == Fault::Stall)
        waitForClose(client);
    return !strikes;
}
