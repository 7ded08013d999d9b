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

/// Accepts connections on a port and serves each on a separate thread.
class TcpListener
{
public:
    /// Serves one connected socket and returns when done; must not throw. `number` counts the connections
    /// from 0.
    using Handler = std::function<void(int socket, std::uint64_t number)>;

    /// Listens on an IPv4 or IPv6 address and a port, 0 for any free one. Throws std::system_error if that
    /// fails, std::invalid_argument for an invalid address.
    TcpListener(const std::string &address, std::uint16_t port, Handler handler);
    /// Shuts down all sockets and waits for their handlers.
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
    WakeEvent m_wakeUp; ///< wakes the accepting thread
    std::uint16_t m_port = 0;
    std::uint64_t m_accepted = 0; ///< accepting thread only
    std::atomic<bool> m_stopping = false;
    std::mutex m_mutex;
    std::list<Client> m_clients; ///< guarded by m_mutex; removed on the accepting thread or in the destructor
    std::thread m_thread;
};

} // namespace SampleServer
