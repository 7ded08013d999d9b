#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>

namespace SampleServer {

/// The stream of bytes to and from one client. Used by the connection's thread alone.
/// Every call throws ConnectionLost when the client is gone.
class Transport
{
public:
    static constexpr std::chrono::milliseconds Forever{-1};

    virtual ~Transport() = default;

    /// Waits until read() has something to say or the time has passed; true in the first case.
    virtual bool waitReadable(std::chrono::milliseconds timeout) = 0;
    /// Waits for at least one byte and returns how many were stored.
    virtual std::size_t read(std::span<std::uint8_t> buffer) = 0;
    /// Returns once everything is handed over.
    virtual void write(std::span<const std::uint8_t> bytes) = 0;
};

} // namespace SampleServer
