#pragma once

#include "Wire/ProtocolError.h"

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace SampleServer {

static_assert(std::endian::native == std::endian::little, "TDS is little-endian and so is this code");

/// Reads numbers and bytes from the front of a message. Reading past the end throws ProtocolError.
class ByteReader
{
public:
    explicit ByteReader(std::span<const std::uint8_t> bytes)
        : m_bytes(bytes)
    {
    }

    std::size_t remaining() const { return m_bytes.size(); }
    bool atEnd() const { return m_bytes.empty(); }

    template <std::integral T>
    T take()
    {
        T value;
        std::memcpy(&value, takeBytes(sizeof(T)).data(), sizeof(T));
        return value;
    }

    std::span<const std::uint8_t> takeBytes(std::size_t count)
    {
        if (count > m_bytes.size())
            throw ProtocolError("A message ends before its content.");
        const auto taken = m_bytes.first(count);
        m_bytes = m_bytes.subspan(count);
        return taken;
    }

private:
    std::span<const std::uint8_t> m_bytes;
};

} // namespace SampleServer
