#pragma once

#include "Wire/Transport.h"

namespace SampleServer {

/// A transport over a connected, blocking socket that the caller owns. If another thread calls shutdown() on
/// the socket, every call throws ConnectionLost.
class SocketTransport final : public Transport
{
public:
    explicit SocketTransport(int socket)
        : m_socket(socket)
    {
    }

    bool waitReadable(std::chrono::milliseconds timeout) override;
    std::size_t read(std::span<std::uint8_t> buffer) override;
    void write(std::span<const std::uint8_t> bytes) override;

private:
    int m_socket;
};

} // namespace SampleServer
