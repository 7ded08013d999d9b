#pragma once

#include "WireClient.h"

#include <memory>

struct gnutls_session_int;
struct gnutls_certificate_credentials_st;

/// A client that can encrypt, written independently of the server's side.
class TlsWireClient final : public WireClient
{
public:
    explicit TlsWireClient(std::uint16_t port);
    ~TlsWireClient() override;

    /// Asks for encryption in a prelogin; what the server answers about it.
    std::uint8_t askForEncryption(std::uint8_t wish);
    /// From here on everything is encrypted. Wraps the handshake into packets of this size.
    void startTls(std::size_t packetSize = 4096);
    /// From here on everything is in clear.
    void stopTls() { m_session.reset(); }
    /// What send() would put on the wire.
    Bytes encrypted(const Bytes &bytes);
    /// The name of the TLS version that was agreed on.
    std::string version() const;

    void send(const Bytes &bytes) override;
    /// As it is, whether hands were shaken or not.
    void sendClear(const Bytes &bytes) { WireClient::send(bytes); }

private:
    static ssize_t pull(void *self, void *data, std::size_t size);
    static ssize_t push(void *self, const void *data, std::size_t size);
    void readExactly(std::uint8_t *bytes, std::size_t count) override;
    void flushHandshake();

    std::shared_ptr<gnutls_certificate_credentials_st> m_credentials;
    std::shared_ptr<gnutls_session_int> m_session;
    bool m_isShakingHands = false;
    std::size_t m_packetSize = 4096;
    Bytes m_outgoing; ///< written by GnuTLS, not sent yet
    Bytes m_incoming; ///< of the server's handshake, not yet read by GnuTLS
};
