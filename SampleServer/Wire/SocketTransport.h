#pragma once

#include "Wire/Transport.h"

namespace SampleServer {

/// A transport over a connected, blocking socket that someone else owns. A shutdown() of the socket by
/// another thread ends every call with ConnectionLost.
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
