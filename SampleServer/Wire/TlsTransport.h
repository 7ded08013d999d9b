#pragma once

#include "Wire/HandshakePackets.h"
#include "Wire/TlsCertificate.h"

#include <exception>
#include <memory>
#include <optional>
#include <vector>

struct gnutls_session_int;

namespace SampleServer {

/// A transport over another one that starts unencrypted and can switch to TLS 1.2 and back. TLS 1.2 is the
/// newest version that supports the handshake inside TDS. Throws ProtocolError for invalid TLS data.
class TlsTransport final : public Transport
{
public:
    using Clock = std::chrono::steady_clock;

    explicit TlsTransport(Transport &clear);
    ~TlsTransport() override;

    /// Performs the handshake with the client inside PRELOGIN packets; later data is encrypted. Throws
    /// ProtocolError if that fails or exceeds the deadline.
    void start(const TlsCertificate &certificate, Clock::time_point deadline);
    /// Switches back to unencrypted data. Call while the client waits for an answer.
    void stop();

    bool waitReadable(std::chrono::milliseconds timeout) override;
    std::size_t read(std::span<std::uint8_t> buffer) override;
    void write(std::span<const std::uint8_t> bytes) override;

private:
    struct SessionEnd
    {
        void operator()(gnutls_session_int *session) const;
    };

    static ssize_t pull(void *self, void *data, std::size_t size);
    static ssize_t push(void *self, const void *data, std::size_t size);
    void shakeHands(Clock::time_point deadline);
    [[noreturn]] void fail(int result);
    Transport &below();
    bool decrypt();

    Transport &m_clear;
    std::optional<HandshakePackets> m_handshake;               ///< set during the handshake
    std::unique_ptr<gnutls_session_int, SessionEnd> m_session; ///< null while unencrypted
    std::exception_ptr m_failure;                              ///< an error of the transport below GnuTLS
    std::vector<std::uint8_t> m_record; ///< decrypted and not yet read: [m_begin, m_end)
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
};

} // namespace SampleServer
