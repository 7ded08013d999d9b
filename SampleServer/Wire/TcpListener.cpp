#include "Wire/TcpListener.h"

#include "Wire/SocketAddress.h"

#include <array>
#include <cerrno>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <system_error>

namespace SampleServer {

namespace {

constexpr int RetryMilliseconds = 50; ///< before accepting again when the process is out of descriptors

void prepare(int socket)
{
    const int yes = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    ::setsockopt(socket, SOL_SOCKET, SO_KEEPALIVE, &yes, sizeof yes);
}

} // namespace

TcpListener::TcpListener(const std::string &address, std::uint16_t port, Handler handler)
    : m_handler(std::move(handler))
    , m_socket(boundSocket(SOCK_STREAM, address, port))
    , m_port(boundPort(m_socket.get()))
{
    if (::listen(m_socket.get(), SOMAXCONN) != 0)
        throw std::system_error(errno, std::generic_category(), "listen");
    m_thread = std::thread([this] { acceptClients(); });
}

TcpListener::~TcpListener()
{
    m_stopping = true;
    m_wakeUp.signal();
    m_thread.join();
    {
        const std::lock_guard lock(m_mutex);
        for (const Client &client : m_clients)
            ::shutdown(client.socket.get(), SHUT_RDWR);
    }
    // No more entries are added; the handlers still need the lock to report their end.
    for (Client &client : m_clients)
        client.thread.join();
}

void TcpListener::acceptClients()
{
    std::array<pollfd, 2> pollers{{{m_socket.get(), POLLIN, 0}, {m_wakeUp.descriptor(), POLLIN, 0}}};
    while (!m_stopping) {
        if (::poll(pollers.data(), pollers.size(), -1) < 0)
            continue;
        if (pollers[1].revents) {
            m_wakeUp.clear();
            joinFinished();
        }
        if (!pollers[0].revents || m_stopping)
            continue;
        FileDescriptor socket(::accept4(m_socket.get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (socket)
            startClient(std::move(socket));
        else if (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM)
            ::poll(&pollers[1], 1, RetryMilliseconds);
    }
}

void TcpListener::startClient(FileDescriptor socket)
{
    prepare(socket.get());
    const std::lock_guard lock(m_mutex);
    Client &client = m_clients.emplace_back();
    client.socket = std::move(socket);
    try {
        client.thread = std::thread([this, &client, number = m_accepted++] {
            m_handler(client.socket.get(), number);
            ::shutdown(client.socket.get(), SHUT_RDWR);
            {
                const std::lock_guard finishing(m_mutex);
                client.finished = true;
            }
            m_wakeUp.signal();
        });
    } catch (const std::system_error &) {
        m_clients.pop_back(); // no thread could be created: the client's connection is closed
    }
}

void TcpListener::joinFinished()
{
    std::list<Client> finished;
    {
        const std::lock_guard lock(m_mutex);
        for (auto client = m_clients.begin(); client != m_clients.end();) {
            const auto next = std::next(client);
            if (client->finished)
                finished.splice(finished.end(), m_clients, client);
            client = next;
        }
    }
    for (Client &client : finished)
        client.thread.join();
}

} // namespace SampleServer
