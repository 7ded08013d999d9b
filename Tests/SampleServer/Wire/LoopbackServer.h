#pragma once

#include "Engine/Server.h"
#include "Wire/Connection.h"
#include "Wire/SocketTransport.h"
#include "Wire/TcpListener.h"

/// The wire on a free loopback port inside the test's process, with the scripted engine behind it.
class LoopbackServer
{
public:
    LoopbackServer()
        : LoopbackServer(defaultSettings())
    {
    }
    explicit LoopbackServer(const SampleServer::ServerSettings &settings)
        : m_settings(settings)
        , m_listener("127.0.0.1", 0, [this](int socket, std::uint64_t) {
            SampleServer::SocketTransport transport(socket);
            SampleServer::Connection(transport, m_settings).run();
        })
    {
    }

    static SampleServer::ServerSettings defaultSettings()
    {
        SampleServer::ServerSettings settings;
        settings.server = std::make_shared<SampleServer::Server>(SampleServer::Server::Options{});
        settings.password = "Sample-1";
        return settings;
    }

    std::uint16_t port() const { return m_listener.port(); }

private:
    SampleServer::ServerSettings m_settings;
    SampleServer::TcpListener m_listener; ///< last: its end waits for the connections, which use the rest
};
