#pragma once

#include "Support/HostileServer.h"
#include "Support/HostileServerBytes.h"

#include <atomic>

/// A server that refuses every login with one error message, and counts them.
class LoginCounter
{
public:
    explicit LoginCounter(std::int32_t number = 18456, const char *text = "Login failed for user 'sa'.")
        : m_server({HostileServer::expect(HostileServerBytes::PreloginPacket),
                    HostileServer::send(HostileServerBytes::packet(HostileServerBytes::preloginAnswer())),
                    [this, number, text](HostileServer::Peer &peer) {
                        using namespace HostileServerBytes;
                        peer.readMessage(); // a client that only exchanges PRELOGIN leaves here
                        ++m_logins;
                        peer.send(packet(joined({message(number, 14, text), done(DoneError)})));
                    }})
    {
    }

    std::uint16_t port() const { return m_server.port(); }
    int logins() const { return m_logins; }

private:
    std::atomic<int> m_logins = 0;
    HostileServer m_server; ///< ends before the count
};
