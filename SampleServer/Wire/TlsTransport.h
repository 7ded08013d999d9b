#pragma once

#include "Wire/HandshakePackets.h"
#include "Wire/TlsCertificate.h"

#include <exception>
#include <memory>
#include <optional>
#include <vector>

struct gnutls_session_int;

namespace SampleServer {

/// A transport over another one that starts in clear and can switch to TLS 1.2, the newest that goes with the
/// handshake inside of TDS, and back.
/// Throws ProtocolError for what is no TLS.
class TlsTransport final : public Transport
{
public:
    using Clock = std::chrono::steady_clock;

    explicit TlsTransport(Transport &clear);
    ~TlsTransport() override;

    /// Shakes hands with the client inside of PRELOGIN packets; what follows is encrypted. Throws
    /// ProtocolError when that fails or is not done by the deadline.
    void start(const TlsCertificate &certificate, Clock::time_point deadline);
    /// What follows is in clear again; to be called when the client waits for an answer.
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
    std::optional<HandshakePackets> m_handshake;               ///< while hands are shaken
    std::unique_ptr<gnutls_session_int, SessionEnd> m_session; ///< null while in clear
    std::exception_ptr m_failure;                              ///< what came up below GnuTLS
    std::vector<std::uint8_t> m_record; ///< decrypted and not yet read: [m_begin, m_end)
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
};

} // namespace SampleServer
