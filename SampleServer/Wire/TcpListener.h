#pragma once

#include "Wire/FileDescriptor.h"
#include "Wire/WakeEvent.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <thread>

namespace SampleServer {

/// Accepts connections on a port and gives each a thread of its own.
class TcpListener
{
public:
    /// Serves one connected socket and returns when it is done; must not throw. `number` counts the
    /// connections from 0.
    using Handler = std::function<void(int socket, std::uint64_t number)>;

    /// Listens on an IPv4 or IPv6 address and a port, of which 0 means any free one.
    /// Throws std::system_error when that cannot be had, std::invalid_argument for what is no address.
    TcpListener(const std::string &address, std::uint16_t port, Handler handler);
    /// Stops: shuts all sockets down and waits for their handlers.
    ~TcpListener();
    TcpListener(const TcpListener &) = delete;
    TcpListener &operator=(const TcpListener &) = delete;

    std::uint16_t port() const { return m_port; }

private:
    struct Client
    {
        FileDescriptor socket;
        std::thread thread;
        bool finished = false;
    };

    void acceptClients();
    void startClient(FileDescriptor socket);
    void joinFinished();

    Handler m_handler;
    FileDescriptor m_socket;
    WakeEvent m_wakeUp; ///< something happened that the accepting thread must look at
    std::uint16_t m_port = 0;
    std::uint64_t m_accepted = 0; ///< accepting thread only
    std::atomic<bool> m_stopping = false;
    std::mutex m_mutex;
    std::list<Client>
        m_clients; ///< guarded by m_mutex; entries leave on the accepting thread or in the destructor
    std::thread m_thread;
};

} // namespace SampleServer
