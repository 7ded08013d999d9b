#pragma once

#include <QByteArray>

#include <cstring>
#include <memory>

/// A growing byte buffer; clearing it keeps its capacity. Used by one thread.
class KNByteBuffer
{
public:
    const char *data() const { return m_bytes.get(); }
    std::size_t size() const { return m_size; }
    void clear() { m_size = 0; }
    /// Keeps the first `size` bytes; `size` must not exceed the current size.
    void truncate(std::size_t size) { m_size = size; }

    /// Reserves `size` bytes behind the last one and returns their start. advanceTo() appends the bytes
    /// written there.
    char *reserve(std::size_t size)
    {
        if (m_capacity - m_size < size)
            grow(size);
        return m_bytes.get() + m_size;
    }
    /// Ends the buffer at `end`, a position in or directly behind the memory that reserve() returned last.
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
