#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>

namespace SampleServer {

/// The byte stream of one client. Used by the connection's thread only. Every call throws ConnectionLost if
/// the client has disconnected.
class Transport
{
public:
    static constexpr std::chrono::milliseconds Forever{-1};

    virtual ~Transport() = default;

    /// Waits until read() has data or an error, or the timeout expires; true in the first case.
    virtual bool waitReadable(std::chrono::milliseconds timeout) = 0;
    /// Waits for at least one byte and returns how many were stored.
    virtual std::size_t read(std::span<std::uint8_t> buffer) = 0;
    /// Returns once all bytes have been passed on.
    virtual void write(std::span<const std::uint8_t> bytes) = 0;
};

} // namespace SampleServer
