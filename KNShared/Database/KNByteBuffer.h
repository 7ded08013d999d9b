#pragma once

#include <QByteArray>

#include <cstring>
#include <memory>

/// Bytes that are collected piece by piece, with room that grows and is kept when they are cleared. One
/// thread uses a buffer.
class KNByteBuffer
{
public:
    const char *data() const { return m_bytes.get(); }
    std::size_t size() const { return m_size; }
    void clear() { m_size = 0; }
    /// Keeps the first `size` bytes, which must not be more than there are.
    void truncate(std::size_t size) { m_size = size; }

    /// Room for `size` bytes behind the last one. What was written becomes part of the buffer by advanceTo().
    char *reserve(std::size_t size)
    {
        if (m_capacity - m_size < size)
            grow(size);
        return m_bytes.get() + m_size;
    }
    /// `end` lies in or behind the room that reserve() returned last.
    void advanceTo(const char *end) { m_size = static_cast<std::size_t>(end - m_bytes.get()); }

    void append(char byte)
    {
        *reserve(1) = byte;
        ++m_size;
    }
    void append(const void *bytes, std::size_t size)
    {
        if (size == 0)
            return;
        std::memcpy(reserve(size), bytes, size);
        m_size += size;
    }
    void append(QByteArrayView bytes) { append(bytes.data(), static_cast<std::size_t>(bytes.size())); }

private:
    void grow(std::size_t size)
    {
        const std::size_t capacity = std::max<std::size_t>(m_size + size, 2 * m_capacity);
        auto bytes = std::make_unique_for_overwrite<char[]>(capacity);
        if (m_size > 0)
            std::memcpy(bytes.get(), m_bytes.get(), m_size);
        m_bytes = std::move(bytes);
        m_capacity = capacity;
    }

    std::unique_ptr<char[]> m_bytes;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};
