#pragma once

#include "LoginBytes.h"
#include "Wire/FileDescriptor.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

/// A small TDS 7.4 client of the tests' own. Every wait is bounded; what goes wrong throws
/// std::runtime_error.
class WireClient
{
public:
    using Bytes = std::vector<std::uint8_t>;

    explicit WireClient(std::uint16_t port);
    WireClient(WireClient &&) = default;
    virtual ~WireClient() = default;

    virtual void send(const Bytes &bytes);
    /// Sends a message in as many packets as it takes.
    void sendMessage(std::uint8_t type, const Bytes &payload, std::uint8_t extraStatus = 0,
                     std::size_t packetSize = 4096);
    /// The payload of the server's next message.
    Bytes readMessage();
    /// The bytes of the server's next packet, with its header.
    Bytes readPacket();
    /// Whether the server closes within the bound; what it still says is skipped.
    bool waitForClose(std::chrono::milliseconds bound = std::chrono::seconds(10));
    /// The errno with which waitForClose() saw the connection end; 0 for an orderly end.
    int lastError() const { return m_lastError; }
    /// Fills the buffer.
    void readBytes(Bytes &buffer) { readExactly(buffer.data(), buffer.size()); }
    void close();

    /// Prelogin and login; returns the answer to the login.
    Bytes login(const LoginBytes::Login &login = {});
    void sendBatch(const std::u16string &sql);
    void sendAttention();
    Bytes batch(const std::u16string &sql);

    /// The status of the DONE token that ends a message.
    static std::uint16_t finalStatus(const Bytes &message);
    /// Whether a message contains the bytes.
    static bool contains(const Bytes &message, const Bytes &bytes);
    /// The start of an ERROR token's content: its number, to look for with contains().
    static Bytes number(std::int32_t number);

protected:
    virtual void readExactly(std::uint8_t *bytes, std::size_t count);

private:
    SampleServer::FileDescriptor m_socket;
    int m_lastError = 0;
};
