#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace SampleServer {
class TcpListener;
}

/// A server on a free loopback port, in threads of the test's process, that does what its script says and
/// nothing else: for what broken and malicious servers send. HostileServerBytes.h makes the bytes.
class HostileServer
{
public:
    using Bytes = std::vector<std::uint8_t>;

    /// A client's connection as the steps of a script see it.
    class Peer
    {
    public:
        struct Message
        {
            std::uint8_t type = 0;
            Bytes payload; ///< of all its packets, without their headers
        };

        /// Waits for a whole TDS message.
        Message readMessage();
        void send(std::span<const std::uint8_t> bytes);
        /// Ends the connection with an RST instead of a FIN; nothing can be sent after it.
        void reset();
        /// Says nothing until the client closes or HostileServer::release() is called.
        void stall();
        /// Notes what failures() returns.
        void fail(const std::string &what);

    private:
        friend class HostileServer;
        Peer(HostileServer &server, int socket)
            : m_server(server)
            , m_socket(socket)
        {
        }
        void readExactly(std::uint8_t *bytes, std::size_t count);
        bool waitReadable(int milliseconds) const;

        HostileServer &m_server;
        int m_socket;
    };

    /// Steps run one after another; after the last one the connection closes with a FIN. Where the client
    /// goes first, the rest of the steps is left out.
    using Step = std::function<void(Peer &)>;
    using Script = std::vector<Step>;

    /// Plays the same script for every connection.
    explicit HostileServer(Script script);
    /// Asks for the script of each connection; they are counted from 0. Called on the connection's thread.
    explicit HostileServer(std::function<Script(std::uint64_t connection)> scripts);
    ~HostileServer();
    HostileServer(const HostileServer &) = delete;
    HostileServer &operator=(const HostileServer &) = delete;

    std::uint16_t port() const;
    std::uint64_t connectionCount() const { return m_connections; }
    /// What clients did other than a script expected; empty when all went by it.
    std::vector<std::string> failures() const;
    /// Lets every stall(), now and later, go on.
    void release();

    // The steps that scripts are made of.

    /// Reads a message and notes a failure when it is of another type.
    static Step expect(std::uint8_t packetType);
    static Step send(Bytes bytes);
    /// Sends the first `count` bytes only.
    static Step sendFirst(std::size_t count, Bytes bytes);
    /// Sends every byte in a segment of its own, as far as the network lets it.
    static Step sendByteByByte(Bytes bytes);
    static Step reset();
    static Step stall();
    /// Prelogin and login of a client of TDS 7.2 or later, accepted.
    static Script acceptedLogin();
    static Script joined(Script first, const Script &second);

private:
    void serve(int socket, std::uint64_t number);

    std::function<Script(std::uint64_t)> m_scripts;
    std::atomic<std::uint64_t> m_connections = 0;
    std::atomic<bool> m_released = false;
    mutable std::mutex m_mutex;
    std::vector<std::string> m_failures; ///< guarded by m_mutex
    std::unique_ptr<SampleServer::TcpListener> m_listener;
};
