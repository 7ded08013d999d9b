#include "Wire/PacketReader.h"

#include "Types/ResultSink.h"
#include "Wire/ProtocolError.h"

#include <algorithm>
#include <cstring>

namespace SampleServer {

namespace {

bool isClientPacket(PacketType type)
{
    switch (type) {
    case PacketType::SqlBatch:
    case PacketType::Rpc:
    case PacketType::Attention:
    case PacketType::BulkLoad:
    case PacketType::TransactionManager:
    case PacketType::Login7:
    case PacketType::Sspi:
    case PacketType::Prelogin:
        return true;
    case PacketType::TabularResult:
        break;
    }
    return false;
}

} // namespace

PacketReader::PacketReader(Transport &transport)
    : m_transport(transport)
    , m_buffer(MaximumPacketSize + 1)
    , m_messageLimit(MaximumPacketSize)
{
}

/// Adds received bytes to the buffer, which always has space for the largest packet.
void PacketReader::fill()
{
    if (m_deadline != Clock::time_point::max()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_deadline - Clock::now());
        if (!m_transport.waitReadable(std::max(left, std::chrono::milliseconds::zero())))
            throw ProtocolError("The client took too long to log in.");
    }
    if (m_begin > 0) {
        std::memmove(m_buffer.data(), m_buffer.data() + m_begin, buffered());
        m_end -= m_begin;
        m_begin = 0;
    }
    m_end += m_transport.read(std::span(m_buffer).subspan(m_end));
}

/// The length of the first packet in the buffer; its header must be complete.
std::size_t PacketReader::packetLength() const
{
    const std::size_t length = static_cast<std::size_t>(m_buffer[m_begin + 2] << 8 | m_buffer[m_begin + 3]);
    if (length < PacketHeaderSize || length > MaximumPacketSize)
        throw ProtocolError("A packet has an impossible length.");
    return length;
}

RequestMessage PacketReader::read()
{
    RequestMessage message;
    for (bool first = true;; first = false) {
        while (buffered() < PacketHeaderSize)
            fill();
        const std::size_t length = packetLength();
        const auto type = static_cast<PacketType>(m_buffer[m_begin]);
        const std::uint8_t status = m_buffer[m_begin + 1];
        if (!isClientPacket(type))
            throw ProtocolError("A packet has an unknown type.");
        if (type == PacketType::Attention) {
            message.payload.clear();
            message.status = 0;
        } else if (!first && type != message.type) {
            throw ProtocolError("A message changes its type between two packets.");
        }
        if (message.payload.size() + length - PacketHeaderSize > m_messageLimit)
            throw ProtocolError("A message is too long.");
        while (buffered() < length)
            fill();

        const auto packet = m_buffer.begin() + static_cast<std::ptrdiff_t>(m_begin);
        message.type = type;
        message.status |= status;
        message.payload.insert(message.payload.end(), packet + PacketHeaderSize,
                               packet + static_cast<std::ptrdiff_t>(length));
        m_begin += length;
        if (type == PacketType::Attention || status & PacketStatus::EndOfMessage)
            return message;
    }
}

bool PacketReader::takeAttention(std::chrono::milliseconds timeout)
{
    const auto end = Clock::now() + timeout;
    for (;;) {
        if (buffered() > 0 && m_buffer[m_begin] != static_cast<std::uint8_t>(PacketType::Attention)) {
            // The client sent a request before the response ended: it waits until the current one is done,
            // and so does its cancellation.
            if (timeout > std::chrono::milliseconds::zero())
                throw ProtocolError("A request was sent before the answer to the one before.");
            return false;
        }
        if (buffered() >= PacketHeaderSize && buffered() >= packetLength()) {
            m_begin += packetLength();
            return true;
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        if (!m_transport.waitReadable(std::max(left, std::chrono::milliseconds::zero())))
            return false;
        fill();
    }
}

} // namespace SampleServer
