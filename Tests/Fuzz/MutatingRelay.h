#pragma once

#include "Fuzz/ServerMutation.h"

#include <atomic>
#include <cstdint>
#include <memory>

namespace SampleServer {
class TcpListener;
}

/// A relay on a free loopback port to a server. It changes what the server sends, each connection in the same
/// way, and passes what the client sends as it is. A conversation in which the client awaits more than the
/// server has to send is ended by closing it.
class MutatingRelay
{
public:
    MutatingRelay(std::uint16_t serverPort, ServerMutation mutation);
    ~MutatingRelay();
    MutatingRelay(const MutatingRelay &) = delete;
    MutatingRelay &operator=(const MutatingRelay &) = delete;

    std::uint16_t port() const;
    /// How many bytes the server has sent on the connection on which it sent most.
    std::uint64_t longestConnection() const { return m_longest; }

private:
    void relay(int client);

    std::uint16_t m_serverPort;
    ServerMutation m_mutation;
    std::atomic<std::uint64_t> m_longest = 0;
    std::unique_ptr<SampleServer::TcpListener> m_listener;
};
