#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace SampleServer {
class TcpListener;
}

/// A relay on a free loopback port to a real server that spoils what the server says at one byte: with it a
/// test can cut a conversation at every place. What the client says passes unharmed unless a test changes it.
/// Keeps all that passes.
class HostileServerRelay
{
public:
    enum class Fault {
        None,    ///< a plain relay, to count the bytes of a whole conversation
        Close,   ///< FIN to the client, and the server is dropped
        Reset,   ///< RST to the client
        Stall,   ///< nothing more to the client; the connection stays until it closes
        Corrupt, ///< the byte at the place is inverted, everything after it passes
    };

    /// The fault strikes each connection after that many bytes from the server have passed.
    HostileServerRelay(std::uint16_t serverPort, Fault fault, std::uint64_t afterBytes);
    ~HostileServerRelay();
    HostileServerRelay(const HostileServerRelay &) = delete;
    HostileServerRelay &operator=(const HostileServerRelay &) = delete;

    /// Lets a test change what the client says, piece by piece as it comes, on the connection's thread. To be
    /// called before anybody connects.
    void changeClient(std::function<void(std::span<std::uint8_t>)> change) { m_change = std::move(change); }
    /// Replaces a text in the client's batches by another one of the same length, wherever it stands: so that
    /// the server refuses one kind of query. To be called before anybody connects.
    void replaceInBatches(std::u16string_view text, std::u16string_view replacement);
    /// From now on answers batches that contain this text itself, as a server does that refuses a statement;
    /// the server does not get them. An empty answer ends the connection instead. An empty text ends this.
    void interceptBatches(std::u16string_view text, std::vector<std::uint8_t> answer);
    /// How many batches have been intercepted.
    std::uint64_t interceptedBatches() const { return m_interceptedBatches; }
    /// Ends all connections, as a network does that goes away. Later ones are relayed.
    void cut();
    /// Relays connections from now on to another server.
    void leadTo(std::uint16_t serverPort) { m_serverPort = serverPort; }
    /// Moves the place of the fault.
    void strikeAfter(std::uint64_t bytes) { m_afterBytes = bytes; }

    std::uint16_t port() const;
    /// How many bytes from the server have passed, all connections together.
    std::uint64_t bytesFromServer() const { return m_bytesFromServer; }
    /// How often a client has spoken and was answered, all connections together.
    std::uint64_t roundTrips() const { return m_roundTrips; }
    /// What has passed in one direction, all connections one behind the other as it came.
    std::string saidByClient() const;
    std::string saidByServer() const;

private:
    void record(std::string &said, std::span<const std::uint8_t> bytes);
    void relay(int client);
    void pass(int server, int client);
    bool passToServer(int server, int client, std::vector<std::uint8_t> &message);
    bool passToClient(int server, int client, std::uint64_t &passed);

    std::atomic<std::uint16_t> m_serverPort;
    Fault m_fault;
    std::atomic<std::uint64_t> m_afterBytes;
    std::atomic<std::uint64_t> m_bytesFromServer = 0;
    std::atomic<std::uint64_t> m_roundTrips = 0;
    std::function<void(std::span<std::uint8_t>)> m_change;
    std::atomic<std::uint64_t> m_interceptedBatches = 0;
    mutable std::mutex m_mutex;
    std::string m_saidByClient; ///< guarded by m_mutex, as all below
    std::string m_saidByServer;
    std::set<int> m_clients;                        ///< the sockets of open connections
    std::string m_intercepted;                      ///< the bytes of the text; empty for none
    std::vector<std::uint8_t> m_interceptingAnswer; ///< empty ends the connection
    std::unique_ptr<SampleServer::TcpListener> m_listener;
};
